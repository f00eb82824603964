#include "foundation/UserFolders.h"

#include "foundation/PathText.h"

#include <QDir>
#include <QFile>

#include <pwd.h>
#include <unistd.h>

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
    const QString home = qEnvironmentVariable("HOME");
    if (QDir::isAbsolutePath(home))
        return QDir::cleanPath(home);
    // Services and jobs of the system run without the variable; Qt would then call the top folder a home.
    const passwd* const account = getpwuid(getuid());
    return account && account->pw_dir ? QDir::cleanPath(QFile::decodeName(account->pw_dir)) : QString();
}
