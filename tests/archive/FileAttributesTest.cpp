#include "archive/FileAttributes.h"

#include "support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <unistd.h>

namespace {

using FileAttributes::attributesOfItemAtPath;

class FileAttributesTest : public TemporaryHome
{
protected:
    QString link(const QString& target, const char* name)
    {
        const QString place = path(QString::fromUtf8(name));
        EXPECT_EQ(symlink(qUtf8Printable(target), qUtf8Printable(place)), 0);
        return place;
    }
};

TEST_F(FileAttributesTest, FileHasItsSizeAndDate)
{
    const QString file = writeFile(QStringLiteral("a.txt"), "12345");
    QFile opened(file);
    ASSERT_TRUE(opened.open(QIODevice::ReadWrite));
    const QDateTime date(QDate(2009, 9, 21), QTime(13, 14, 15));
    ASSERT_TRUE(opened.setFileTime(date, QFileDevice::FileModificationTime));
    opened.close();
    const auto attributes = attributesOfItemAtPath(file, false);
    ASSERT_TRUE(attributes.has_value());
    EXPECT_EQ(attributes->size, 5U);
    EXPECT_EQ(attributes->modificationDate, date);
    EXPECT_FALSE(attributes->isSymbolicLink);
}

TEST_F(FileAttributesTest, LinkIsDescribedItselfOrFollowedToItsEnd)
{
    writeFile(QStringLiteral("sub/a.txt"), "12345");
    link(QStringLiteral("a.txt"), "sub/relative");
    const QString first = link(path(QStringLiteral("sub/relative")), "absolute");
    const auto itself = attributesOfItemAtPath(first, false);
    ASSERT_TRUE(itself.has_value());
    EXPECT_TRUE(itself->isSymbolicLink);
    const auto end = attributesOfItemAtPath(first, true);
    ASSERT_TRUE(end.has_value());
    EXPECT_FALSE(end->isSymbolicLink);
    EXPECT_EQ(end->size, 5U);
}

TEST_F(FileAttributesTest, MissingItemAndLinksThatLeadNowhereOrInCirclesAreErrors)
{
    Error error;
    EXPECT_FALSE(attributesOfItemAtPath(path(QStringLiteral("none")), true, &error).has_value());
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_EQ(error.domain, ErrorDomain::Platform);
    EXPECT_TRUE(error.localizedDescription.startsWith(path(QStringLiteral("none"))));
    EXPECT_FALSE(attributesOfItemAtPath(link(QStringLiteral("none"), "dangling"), true, &error).has_value());
    EXPECT_EQ(error.code, ENOENT);
    link(QStringLiteral("there"), "back");
    EXPECT_FALSE(attributesOfItemAtPath(link(QStringLiteral("back"), "there"), true, &error).has_value());
    EXPECT_EQ(error.code, ELOOP);
    EXPECT_FALSE(attributesOfItemAtPath(path(QStringLiteral("none")), true).has_value());
}

} // namespace
