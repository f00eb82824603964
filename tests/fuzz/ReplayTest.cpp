#include "FuzzTarget.h"

#include "foundation/MainThread.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

void FuzzTarget::require(bool holds, const char* text)
{
    EXPECT_TRUE(holds) << text;
}

namespace {

class Replay : public testing::TestWithParam<FuzzTarget::Entry>
{
protected:
    // How many there were.
    int runFilesOf(const char* kind)
    {
        const QDir folder(QStringLiteral(QUILLPOST_FUZZ_FOLDER "/%1/%2")
                              .arg(QString::fromLatin1(kind), QString::fromLatin1(GetParam().name)));
        const QStringList names = folder.entryList(QDir::Files, QDir::Name);
        for (const QString& name : names) {
            SCOPED_TRACE(qPrintable(folder.filePath(name)));
            QFile file(folder.filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            const QByteArray input = file.readAll();
            GetParam().run(input);
            MainThread::drain();
        }
        return static_cast<int>(names.size());
    }

    const FuzzTarget::Surroundings m_surroundings;
};

TEST_P(Replay, HoldsForEveryInputThatTheFuzzerStartsFrom)
{
    EXPECT_GT(runFilesOf("corpus"), 0);
}

TEST_P(Replay, HoldsForEveryInputThatOnceWasAFind)
{
    (void)runFilesOf("regressions");
}

INSTANTIATE_TEST_SUITE_P(Target, Replay, testing::ValuesIn(FuzzTarget::all()),
                         [](const testing::TestParamInfo<FuzzTarget::Entry>& target) { return target.param.name; });

TEST(FuzzTargetTest, WhatDoesNotHoldFailsTheTest)
{
    EXPECT_NONFATAL_FAILURE(FuzzTarget::require(false, "reading twice gives the same"), "reading twice gives the same");
}

} // namespace
