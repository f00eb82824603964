#include "support/TemporaryHome.h"

#include "foundation/UserFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

TemporaryHome::TemporaryHome() : m_oldHome(qgetenv("HOME"))
{
    EXPECT_TRUE(m_home.isValid());
    qputenv("HOME", QFile::encodeName(m_home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(path(QStringLiteral(".config"))));
    qputenv("XDG_DATA_HOME", QFile::encodeName(path(QStringLiteral(".local/share"))));
    qputenv("XDG_STATE_HOME", QFile::encodeName(path(QStringLiteral(".local/state"))));
    m_defaults = std::make_unique<UserDefaults>(UserFolders::settingsFilePath());
    UserDefaults::setStandard(m_defaults.get());
}

TemporaryHome::~TemporaryHome()
{
    m_defaults.reset();
    qputenv("HOME", m_oldHome);
}

QString TemporaryHome::path(const QString& relative) const
{
    return m_home.filePath(relative);
}

QString TemporaryHome::writeFile(const QString& relative, const QByteArray& contents) const
{
    const QString file = path(relative);
    QDir().mkpath(QFileInfo(file).absolutePath());
    QFile out(file);
    EXPECT_TRUE(out.open(QIODevice::WriteOnly)) << qPrintable(file);
    EXPECT_EQ(out.write(contents), contents.size());
    return file;
}

QByteArray TemporaryHome::readFile(const QString& path)
{
    QFile in(path);
    EXPECT_TRUE(in.open(QIODevice::ReadOnly)) << qPrintable(path);
    return in.readAll();
}
