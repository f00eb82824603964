#include "foundation/UserFolders.h"

#include "foundation/PathText.h"

#include <QDir>

namespace {

QString baseFolder(const char* variable, const QString& belowHome)
{
    // The base folder standard has relative paths ignored.
    if (const QString folder = qEnvironmentVariable(variable); QDir::isAbsolutePath(folder))
        return QDir::cleanPath(folder);
    const QString home = UserFolders::homeFolder();
    return home.isEmpty() ? QString() : PathText::appendingPathComponent(home, belowHome);
}

QString inside(const QString& folder, const QString& name)
{
    return folder.isEmpty() ? QString() : PathText::appendingPathComponent(folder, name);
}

} // namespace

QString UserFolders::settingsFilePath()
{
    return inside(baseFolder("XDG_CONFIG_HOME", QStringLiteral(".config")),
                  executableName + u'/' + executableName + QStringLiteral(".ini"));
}

QString UserFolders::applicationSupportFolder()
{
    return baseFolder("XDG_DATA_HOME", QStringLiteral(".local/share"));
}

QString UserFolders::logFolder()
{
    return inside(baseFolder("XDG_STATE_HOME", QStringLiteral(".local/state")), executableName);
}

QString UserFolders::homeFolder()
{
    return QDir::homePath();
}
