#include "settings/ShortCaptionCache.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(ShortCaptionCacheTest, ReadsBackWhatWasArchivedInItsOrder)
{
    const QStringList captions{u"Smith v. Jones"_s, u"Ünïcode, \"quoted\""_s, u"A\nB"_s, u""_s};
    EXPECT_EQ(ShortCaptionCache::unarchived(ShortCaptionCache::archived(captions)), captions);
}

TEST(ShortCaptionCacheTest, AnEmptyArchiveIsAnArray)
{
    EXPECT_EQ(ShortCaptionCache::archived({}), QByteArray("[]"));
    EXPECT_TRUE(ShortCaptionCache::unarchived(ShortCaptionCache::archived({})).isEmpty());
}

TEST(ShortCaptionCacheTest, WhatIsNoTextIsLeftOut)
{
    EXPECT_EQ(ShortCaptionCache::unarchived(QByteArray("[1, \"a\", null, [\"x\"], {}, \"b\"]")),
              QStringList({u"a"_s, u"b"_s}));
}

TEST(ShortCaptionCacheTest, WhatIsNoArchiveHoldsNoCaptions)
{
    EXPECT_TRUE(ShortCaptionCache::unarchived(QVariant()).isEmpty());
    EXPECT_TRUE(ShortCaptionCache::unarchived(42).isEmpty());
    EXPECT_TRUE(ShortCaptionCache::unarchived(QByteArray("{\"a\":\"b\"}")).isEmpty());
    EXPECT_TRUE(ShortCaptionCache::unarchived(QByteArray("[\"cut off")).isEmpty());
}

} // namespace
