#include "foundation/PrivateFolder.h"

#include "support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

class PrivateFolders : public TemporaryHome
{
protected:
    PrivateFolders() : m_oldMask(::umask(0)) {}
    ~PrivateFolders() override { ::umask(m_oldMask); }

    [[nodiscard]] unsigned modeOf(const QString& relative) const
    {
        struct stat facts = {};
        EXPECT_EQ(::stat(QFile::encodeName(path(relative)).constData(), &facts), 0) << qPrintable(relative);
        return facts.st_mode & 0777U;
    }

private:
    const mode_t m_oldMask;
};

} // namespace

TEST_F(PrivateFolders, AreForTheUserAloneAtEveryLevelWhateverTheMask)
{
    EXPECT_TRUE(PrivateFolder::make(path(u"a/b/c"_s)));
    for (const QString& level : {u"a"_s, u"a/b"_s, u"a/b/c"_s})
        EXPECT_EQ(modeOf(level), 0700U) << qPrintable(level);
}

TEST_F(PrivateFolders, StayAsTheyAreWhereTheyAreThere)
{
    ASSERT_TRUE(QDir().mkpath(path(u"shared"_s)));
    EXPECT_TRUE(PrivateFolder::make(path(u"shared/own"_s)));
    EXPECT_EQ(modeOf(u"shared"_s), 0777U);
    EXPECT_EQ(modeOf(u"shared/own"_s), 0700U);
    EXPECT_TRUE(PrivateFolder::make(path(u"shared"_s)));
    EXPECT_EQ(modeOf(u"shared"_s), 0777U);
}

TEST_F(PrivateFolders, CannotBeMadeInAFileOrOfNoName)
{
    writeFile(u"file"_s, "x");
    EXPECT_FALSE(PrivateFolder::make(path(u"file"_s)));
    EXPECT_FALSE(PrivateFolder::make(path(u"file/below"_s)));
    EXPECT_FALSE(PrivateFolder::make(QString()));
}

TEST_F(PrivateFolders, MayHaveASlashAtTheEnd)
{
    EXPECT_TRUE(PrivateFolder::make(path(u"a/b/"_s)));
    EXPECT_EQ(modeOf(u"a/b"_s), 0700U);
}
