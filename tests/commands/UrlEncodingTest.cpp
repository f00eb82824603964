#include "commands/UrlEncoding.h"

#include "commands/DataRange.h"
#include "commands/PointerHolder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// What every ASCII character becomes, those that are `kept` as themselves.
void expectAsciiTable(QString (*encode)(const QString&), const QString& kept)
{
    for (char16_t code = 0; code < 0x80; ++code) {
        const QString character(QChar{code});
        const QString escaped = u"%"_s + u"%1"_s.arg(int{code}, 2, 16, QChar(u'0')).toUpper();
        EXPECT_EQ(encode(character), kept.contains(QChar(code)) ? character : escaped) << "character " << int{code};
    }
}

const QString alphanumerics = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"_s;

} // namespace

TEST(UrlEncodingTest, TheFullEncodingKeepsUnreservedAsciiCharactersAlone)
{
    expectAsciiTable(&UrlEncoding::urlEncodeUsingEncoding, alphanumerics + u"-._~"_s);
}

TEST(UrlEncodingTest, TheQueryEncodingKeepsWhatMayStandInAQuery)
{
    expectAsciiTable(&UrlEncoding::urlQueryString, alphanumerics + u"!$&'()*+,-./:;=?@_~"_s);
}

TEST(UrlEncodingTest, TheQueryEncodingLetsAValueBreakItsFieldApartBecauseTheServiceExpectsThat)
{
    EXPECT_EQ(UrlEncoding::urlQueryString(u"a b&c=d"_s), u"a%20b&c=d"_s);
    EXPECT_EQ(UrlEncoding::urlEncodeUsingEncoding(u"a b&c=d"_s), u"a%20b%26c%3Dd"_s);
}

TEST(UrlEncodingTest, TextOutsideAsciiIsEscapedFromItsUtf8)
{
    for (const auto& encode : {&UrlEncoding::urlEncodeUsingEncoding, &UrlEncoding::urlQueryString}) {
        EXPECT_EQ(encode(u"é€"_s), u"%C3%A9%E2%82%AC"_s);
        EXPECT_EQ(encode(u"😀"_s), u"%F0%9F%98%80"_s);
        EXPECT_EQ(encode(QString()), QString());
    }
}

TEST(DataRangeTest, ThePatternIsFoundAtItsFirstPlace)
{
    const auto range = DataRange::dataRange("xxabcabc", "abc");
    EXPECT_EQ(range.location, 2);
    EXPECT_EQ(range.length, 3);
    EXPECT_EQ(DataRange::dataRange("abc", "abc").location, 0);
    EXPECT_EQ(DataRange::dataRange("aab", "ab").location, 1);
    EXPECT_EQ(DataRange::dataRange(QByteArray("a\0b", 3), QByteArray("\0b", 2)).location, 1);
}

TEST(DataRangeTest, APatternThatIsNotThereIsAtTheLargestNumber)
{
    const auto missing = DataRange::dataRange("abc", "abd");
    EXPECT_EQ(missing.location, 9223372036854775807);
    EXPECT_EQ(missing.length, 3);
    EXPECT_EQ(DataRange::dataRange("ab", "abc").location, 9223372036854775807);
    EXPECT_EQ(DataRange::dataRange("", "a").location, 9223372036854775807);
}

TEST(PointerHolderTest, ThePointerIsCarriedAndNotOwned)
{
    int value = 7;
    PointerHolder holder = PointerHolder::pointerHolderWithPtr(&value);
    EXPECT_EQ(holder.pointer(), &value);
    holder.setPointer(nullptr);
    EXPECT_EQ(holder.pointer(), nullptr);
    EXPECT_EQ(value, 7);
}
