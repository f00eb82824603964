#include "model/PathBookmarks.h"

#include "foundation/UserFolders.h"
#include "model/MediaFile.h"
#include "settings/Bookmark.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class PathBookmarksTest : public TemporaryHome
{
protected:
    static QString urlText(const QString& file) { return QString::fromLatin1(QUrl::fromLocalFile(file).toEncoded()); }
    RecordedLog m_log;
};

TEST_F(PathBookmarksTest, AFileIsFoundByTheBookmarkOfItsPath)
{
    const QString file = writeFile(u"clip é.mov"_s, "x");
    EXPECT_TRUE(MediaObject::getBookmarkedURL(file).isEmpty());
    MediaObject::saveBookmark(file);
    EXPECT_EQ(MediaObject::getBookmarkedURL(file), QUrl::fromLocalFile(file));
    EXPECT_FALSE(Bookmark::resolve(defaults().value(file).toByteArray()).error);
}

TEST_F(PathBookmarksTest, TheEntrySurvivesARestart)
{
    const QString file = writeFile(u"clip.mov"_s, "x");
    PathBookmarks::saveBookmark(file);
    defaults().synchronize();
    UserDefaults later(UserFolders::settingsFilePath());
    EXPECT_EQ(later.value(file), defaults().value(file));
    EXPECT_TRUE(later.value(file).isValid());
}

TEST_F(PathBookmarksTest, TheKeyIsThePathWithItsPercentEscapesRemoved)
{
    const QString file = writeFile(u"a%20b.mov"_s, "x");
    PathBookmarks::saveBookmark(file);
    EXPECT_TRUE(defaults().isStored(path(u"a b.mov"_s)));
    EXPECT_FALSE(defaults().isStored(file));
    EXPECT_EQ(PathBookmarks::getBookmarkedURL(file), QUrl::fromLocalFile(file));
}

TEST_F(PathBookmarksTest, AnEntryOfAnotherFileUnderTheSameKeyIsNotTaken)
{
    const QString escaped = writeFile(u"a%20b.mov"_s, "x");
    const QString plain = writeFile(u"a b.mov"_s, "y");
    PathBookmarks::saveBookmark(escaped);
    EXPECT_TRUE(PathBookmarks::getBookmarkedURL(plain).isEmpty());
    EXPECT_EQ(MediaFile::mediaFileWithPath(plain)->sourceFilePath(), plain);
}

TEST_F(PathBookmarksTest, AFileThatIsGoneIsNothingAndLogged)
{
    const QString file = writeFile(u"clip.mov"_s, "x");
    PathBookmarks::saveBookmark(file);
    ASSERT_TRUE(QFile::remove(file));
    EXPECT_TRUE(PathBookmarks::getBookmarkedURL(file).isEmpty());
    EXPECT_TRUE(m_log.contains(u"[error] [main] Unable to create url from persisted bookmark, filePath = "_s + file +
                               u", error = "_s));
    EXPECT_TRUE(defaults().isStored(file));
}

TEST_F(PathBookmarksTest, AnUnreadableEntryIsNothingAndLogged)
{
    const QString file = writeFile(u"clip.mov"_s, "x");
    defaults().setValue(file, QByteArray("garbage"));
    EXPECT_TRUE(PathBookmarks::getBookmarkedURL(file).isEmpty());
    EXPECT_TRUE(m_log.contains(u"[error] [main] Unable to create url from persisted bookmark, filePath = "_s + file));
}

TEST_F(PathBookmarksTest, AFileThatIsNotThereIsNotRemembered)
{
    const QString file = path(u"none é.mov"_s);
    PathBookmarks::saveBookmark(file);
    EXPECT_FALSE(defaults().isStored(file));
    EXPECT_TRUE(
        m_log.contains(u"[error] [main] Unable to create bookmark for url = "_s + urlText(file) + u", error = "_s));
}

TEST_F(PathBookmarksTest, AFailedBookmarkLeavesTheOldEntry)
{
    const QString file = writeFile(u"clip.mov"_s, "x");
    PathBookmarks::saveBookmark(file);
    const QVariant old = defaults().value(file);
    ASSERT_TRUE(QFile::remove(file));
    PathBookmarks::saveBookmark(file);
    EXPECT_EQ(defaults().value(file), old);
}

TEST_F(PathBookmarksTest, NoPathIsNothingAndNoError)
{
    PathBookmarks::saveBookmark(QString());
    EXPECT_TRUE(PathBookmarks::getBookmarkedURL(QString()).isEmpty());
    EXPECT_EQ(m_log.text(), QString());
}

TEST_F(PathBookmarksTest, AStaleEntryIsMadeAfresh)
{
    const QString file = writeFile(u"clip.mov"_s, "x");
    PathBookmarks::saveBookmark(file);
    const QString other = writeFile(u"other.mov"_s, "y");
    ASSERT_TRUE(QFile::remove(file));
    ASSERT_TRUE(QFile::rename(other, file));
    ASSERT_TRUE(Bookmark::resolve(defaults().value(file).toByteArray()).isStale);
    EXPECT_EQ(PathBookmarks::getBookmarkedURL(file), QUrl::fromLocalFile(file));
    EXPECT_FALSE(Bookmark::resolve(defaults().value(file).toByteArray()).isStale);
}

TEST_F(PathBookmarksTest, ARefusedAccessIsLoggedAndAnEmptyUrlIsNone)
{
    EXPECT_TRUE(PathBookmarks::startAccessing(QUrl()));
    const QString file = writeFile(u"clip.mov"_s, "x");
    EXPECT_TRUE(PathBookmarks::startAccessing(QUrl::fromLocalFile(file)));
    EXPECT_EQ(m_log.text(), QString());
    ASSERT_TRUE(QFile::remove(file));
    EXPECT_FALSE(PathBookmarks::startAccessing(QUrl::fromLocalFile(file)));
    EXPECT_TRUE(m_log.contains(u"[error] [main] Unable to start accessing security scoped url = "_s + urlText(file)));
}

} // namespace
