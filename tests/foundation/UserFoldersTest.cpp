#include "foundation/UserFolders.h"

#include "support/TemporaryHome.h"

#include <QFile>

#include <pwd.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

class UserFoldersTest : public TemporaryHome
{};

} // namespace

TEST_F(UserFoldersTest, EveryProgramGoesByOneName)
{
    EXPECT_EQ(UserFolders::executableName, u"Quillpost"_s);
}

TEST_F(UserFoldersTest, TheFoldersThatTheUserNamedAreUsed)
{
    qputenv("XDG_CONFIG_HOME", "/x/config");
    qputenv("XDG_DATA_HOME", "/x/data/");
    qputenv("XDG_STATE_HOME", "/x//state");
    EXPECT_EQ(UserFolders::settingsFilePath(), u"/x/config/Quillpost/Quillpost.ini"_s);
    EXPECT_EQ(UserFolders::applicationSupportFolder(), u"/x/data"_s);
    EXPECT_EQ(UserFolders::logFolder(), u"/x/state/Quillpost"_s);
}

TEST_F(UserFoldersTest, WithoutThemFoldersLieBelowTheHome)
{
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
        qunsetenv(variable);
    EXPECT_EQ(UserFolders::homeFolder(), path(QString()));
    EXPECT_EQ(UserFolders::settingsFilePath(), path(u".config/Quillpost/Quillpost.ini"_s));
    EXPECT_EQ(UserFolders::applicationSupportFolder(), path(u".local/share"_s));
    EXPECT_EQ(UserFolders::logFolder(), path(u".local/state/Quillpost"_s));
}

TEST_F(UserFoldersTest, RelativeBaseFoldersAreIgnored)
{
    qputenv("XDG_DATA_HOME", "data");
    EXPECT_EQ(UserFolders::applicationSupportFolder(), path(u".local/share"_s));
    qputenv("XDG_DATA_HOME", "");
    EXPECT_EQ(UserFolders::applicationSupportFolder(), path(u".local/share"_s));
}

TEST_F(UserFoldersTest, WithoutAHomeInTheEnvironmentTheAccountsOwnIsUsed)
{
    const passwd* const account = getpwuid(getuid());
    ASSERT_NE(account, nullptr);
    qunsetenv("HOME");
    EXPECT_EQ(UserFolders::homeFolder(), QFile::decodeName(account->pw_dir));
}
