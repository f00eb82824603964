#pragma once

#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

#include <functional>

// What `work` writes to standard output and standard error.
struct CapturedOutput
{
    explicit CapturedOutput(const std::function<void()>& work)
    {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        work();
        out = QString::fromStdString(testing::internal::GetCapturedStdout());
        err = QString::fromStdString(testing::internal::GetCapturedStderr());
    }
    [[nodiscard]] QStringList outLines() const { return out.split(u'\n', Qt::SkipEmptyParts); }

    QString out;
    QString err;
};
