#include "settings/Bookmark.h"

#include "support/TemporaryHome.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

class BookmarkTest : public TemporaryHome
{
protected:
    static QByteArray created(const QString& path) { return std::get<QByteArray>(Bookmark::create(path)); }
};

TEST_F(BookmarkTest, ResolvesToTheFileItWasMadeOf)
{
    const QString file = writeFile(u"Ünïcode \"clip\".mov"_s, "x");
    const auto resolved = Bookmark::resolve(created(file));
    EXPECT_EQ(resolved.path, file);
    EXPECT_FALSE(resolved.isStale);
    EXPECT_FALSE(resolved.error);
}

TEST_F(BookmarkTest, IsStaleWhenAnotherFileHasTakenThePath)
{
    const QString file = writeFile(u"clip.mov"_s, "x");
    const QByteArray bookmark = created(file);
    const QString other = writeFile(u"other.mov"_s, "y");
    ASSERT_TRUE(QFile::remove(file));
    ASSERT_TRUE(QFile::rename(other, file));
    const auto resolved = Bookmark::resolve(bookmark);
    EXPECT_EQ(resolved.path, file);
    EXPECT_TRUE(resolved.isStale);
    EXPECT_FALSE(resolved.error);
}

TEST_F(BookmarkTest, IsNotStaleWhenTheSameFileWasWrittenTo)
{
    const QString file = writeFile(u"clip.mov"_s, "x");
    const QByteArray bookmark = created(file);
    writeFile(u"clip.mov"_s, "more");
    EXPECT_FALSE(Bookmark::resolve(bookmark).isStale);
}

TEST_F(BookmarkTest, TellsThePathAndTheErrorWhenTheFileIsGone)
{
    const QString file = writeFile(u"clip.mov"_s, "x");
    const QByteArray bookmark = created(file);
    ASSERT_TRUE(QFile::remove(file));
    const auto resolved = Bookmark::resolve(bookmark);
    EXPECT_EQ(resolved.path, file);
    ASSERT_TRUE(resolved.error);
    EXPECT_EQ(resolved.error->domain, ErrorDomain::Platform);
    EXPECT_TRUE(resolved.error->localizedDescription.contains(file));
}

TEST_F(BookmarkTest, CannotBeMadeOfAFileThatIsNotThere)
{
    EXPECT_TRUE(std::holds_alternative<Error>(Bookmark::create(path(u"none.mov"_s))));
}

TEST_F(BookmarkTest, UnreadableDataGiveAnErrorAndNoPath)
{
    for (const QByteArray& garbage : {QByteArray(), QByteArray("garbage"), QByteArray("[]"), QByteArray("{\"path\":7}"),
                                      QByteArray("{}"), QByteArray("\0\xff\x01", 3), QByteArray("{\"path\":\"\"}")}) {
        const auto resolved = Bookmark::resolve(garbage);
        EXPECT_TRUE(resolved.path.isEmpty()) << garbage.constData();
        EXPECT_TRUE(resolved.error) << garbage.constData();
    }
}

} // namespace
