#include "foundation/PathText.h"

#include <QDir>
#include <QList>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Cases = QList<std::pair<QString, QString>>;

} // namespace

TEST(PathTextTest, LastPathComponent)
{
    const Cases cases{{u"/a/b.mov"_s, u"b.mov"_s}, {u"b.mov"_s, u"b.mov"_s}, {u"/a/b/"_s, u"b"_s},
                      {u"a/"_s, u"a"_s},           {u"/a//"_s, u"a"_s},      {u"/"_s, u"/"_s},
                      {u"//"_s, u"/"_s},           {QString(), QString()}};
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(PathText::lastPathComponent(path), expected) << qPrintable(path);
}

TEST(PathTextTest, PathExtension)
{
    const Cases cases{{u"/a/b.mov"_s, u"mov"_s},     {u"b.tar.gz"_s, u"gz"_s}, {u"/a.b/c"_s, QString()},
                      {u".profile"_s, QString()},    {u"b."_s, QString()},     {u"b"_s, QString()},
                      {u".profile.txt"_s, u"txt"_s}, {QString(), QString()},   {u"b.MOV/"_s, u"MOV"_s},
                      {u"a b.m v"_s, u"m v"_s}};
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(PathText::pathExtension(path), expected) << qPrintable(path);
}

TEST(PathTextTest, AppendingAComponentPutsOneSlashBetween)
{
    EXPECT_EQ(PathText::appendingPathComponent(u"/a"_s, u"b"_s), u"/a/b"_s);
    EXPECT_EQ(PathText::appendingPathComponent(u"/a/"_s, u"b"_s), u"/a/b"_s);
    EXPECT_EQ(PathText::appendingPathComponent(u"/"_s, u"b"_s), u"/b"_s);
    EXPECT_EQ(PathText::appendingPathComponent(u"/a"_s, QString()), u"/a"_s);
    EXPECT_EQ(PathText::appendingPathComponent(QString(), u"b"_s), u"b"_s);
}

TEST(PathTextTest, StandardizedPathFoldsSlashesAndPoints)
{
    const Cases cases{{u"/a//b"_s, u"/a/b"_s},
                      {u"/a/./b/../c"_s, u"/a/c"_s},
                      {u"C:////out////Smith_rl.xml"_s, u"C:/out/Smith_rl.xml"_s},
                      {u"/a/b/"_s, u"/a/b"_s},
                      {u"~"_s, QDir::homePath()},
                      {u"~/b"_s, QDir::homePath() + u"/b"_s},
                      {u"/a/~"_s, u"/a/~"_s},
                      {u"~b"_s, u"~b"_s},
                      {QString(), QString()}};
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(PathText::standardizedPath(path), expected) << qPrintable(path);
}
