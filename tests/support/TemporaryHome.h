#pragma once

#include "foundation/UserDefaults.h"

#include <QString>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>

// A fixture whose every test has a home folder of its own, empty, with the base folders of the user below it and
// standard user defaults in it.
class TemporaryHome : public testing::Test
{
protected:
    TemporaryHome();
    ~TemporaryHome() override;

    // An absolute path below the home; the file or folder need not exist.
    [[nodiscard]] QString path(const QString& relative) const;
    // Writes a file below the home, with its folders, and returns its path.
    QString writeFile(const QString& relative, const QByteArray& contents) const;
    [[nodiscard]] static QByteArray readFile(const QString& path);

    UserDefaults& defaults() { return *m_defaults; }

private:
    QTemporaryDir m_home;
    QByteArray m_oldHome;
    std::unique_ptr<UserDefaults> m_defaults;
};
