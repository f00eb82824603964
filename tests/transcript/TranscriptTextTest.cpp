#include "transcript/TranscriptText.h"

#include <QStringEncoder>
#include <gtest/gtest.h>

namespace {

const QString english =
    QStringLiteral("DEPOSITION OF JOS\u00c9 N\u00da\u00d1EZ\r\nit\u2019s taken \u2014 \U0001F600\r\n");

QByteArray encoded(QStringConverter::Encoding encoding, QStringConverter::Flag flag = QStringConverter::Flag::Default)
{
    QStringEncoder encoder(encoding, flag);
    return encoder.encode(english);
}

// Made in place: `bytes` need not outlive the call.
std::string decoded(const QByteArray& bytes)
{
    const auto text = TranscriptText::decode(bytes);
    return text ? text->toStdString() : "none";
}

TEST(TranscriptEncoding, EachByteOrderMarkIsFollowedAndDropped)
{
    for (const auto encoding : {QStringConverter::Utf8, QStringConverter::Utf16LE, QStringConverter::Utf16BE,
                                QStringConverter::Utf32LE, QStringConverter::Utf32BE})
        EXPECT_EQ(decoded(encoded(encoding, QStringConverter::Flag::WriteBom)), english.toStdString()) << encoding;
}

TEST(TranscriptEncoding, ValidUtf8IsUtf8)
{
    EXPECT_EQ(decoded(english.toUtf8()), english.toStdString());
    EXPECT_EQ(decoded("plain ASCII\f\r\n"), "plain ASCII\f\r\n");
    EXPECT_EQ(decoded(""), "");
    EXPECT_EQ(decoded("\xEF\xBB\xBF"), "");
}

TEST(TranscriptEncoding, UnmarkedUtf16IsTakenOnlyWhenBeyondDoubt)
{
    EXPECT_EQ(decoded(encoded(QStringConverter::Utf16LE)), english.toStdString());
    EXPECT_EQ(decoded(encoded(QStringConverter::Utf16BE)), english.toStdString());
    const std::string zeros("a\0b\0cdefghijklmnop", 18);
    EXPECT_EQ(decoded(QByteArray::fromStdString(zeros)), zeros);
    const std::string both("a\0\0\0b\0\0\0", 8);
    EXPECT_EQ(decoded(QByteArray::fromStdString(both)), both);
    const std::string odd("a\0b\0c\0d", 7);
    EXPECT_EQ(decoded(QByteArray::fromStdString(odd)), odd);
}

TEST(TranscriptEncoding, OneWindowsByteDeepInsideMakesTheFileWindows1252)
{
    QByteArray bytes;
    while (bytes.size() < 160'000)
        bytes += "  12   Q.  And where were you employed at the time of the accident?\r\n";
    const auto text = TranscriptText::decode(bytes + "A.  I don\x92t know \x96 caf\xE9, Mu\xF1oz.\r\n" + bytes);
    ASSERT_TRUE(text.has_value());
    EXPECT_TRUE(text->contains(u"A.  I don\u2019t know \u2013 caf\u00e9, Mu\u00f1oz.\r\n"));
    EXPECT_EQ(text->size(), 2 * bytes.size() + 33);
}

TEST(TranscriptEncoding, MarkedUtf8WithAStrayWindowsByteIsStillRead)
{
    EXPECT_EQ(decoded("\xEF\xBB\xBF"
                      "don\x92t"),
              "don\u2019t");
}

TEST(TranscriptEncoding, EveryByteHasAMeaning)
{
    QByteArray bytes("all letters here are plain, and there are more of them than there are of all the others, "
                     "so that these bytes are taken for the ones that a Western system would write into a file ");
    for (int c = 1; c < 256; ++c)
        bytes += static_cast<char>(c);
    const auto text = TranscriptText::decode(bytes);
    ASSERT_TRUE(text.has_value());
    EXPECT_EQ(text->size(), bytes.size());
    EXPECT_EQ(text->back(), QChar(0xff));
    EXPECT_TRUE(text->contains(QChar(0x20ac)));
}

TEST(TranscriptEncoding, TextOfForeignLettersIsDetected)
{
    const QString russian = QStringLiteral("\u041f\u043e\u043a\u0430\u0437\u0430\u043d\u0438\u044f "
                                           "\u0441\u0432\u0438\u0434\u0435\u0442\u0435\u043b\u044f "
                                           "\u0431\u044b\u043b\u0438 \u0434\u0430\u043d\u044b \u0432 "
                                           "\u0433\u043e\u0440\u043e\u0434\u0435 \u0438 \u043d\u0430 "
                                           "\u0441\u0443\u0434\u0435 \u043f\u043e\u0434 "
                                           "\u043f\u0440\u0438\u0441\u044f\u0433\u043e\u0439\r\n");
    QByteArray bytes;
    for (const QChar c : russian) {
        const ushort unit = c.unicode();
        bytes += static_cast<char>(unit < 0x80 ? unit : unit - 0x0410 + 0xc0);
    }
    EXPECT_EQ(decoded(bytes), russian.toStdString());
}

TEST(TranscriptEncoding, MarkFollowedBySomethingElseIsNoText)
{
    EXPECT_EQ(decoded(QByteArray("\xFF\xFE\x41", 3)), "none");
    EXPECT_EQ(decoded(QByteArray("\xFF\xFE\x00\xD8\x41\x00", 6)), "none");
    EXPECT_EQ(decoded(QByteArray("\x00\x00\xFE\xFF\x7F\x00\x00\x00", 8)), "none");
}

TEST(TranscriptEncoding, AnyBytesAreTakenWithoutHarm)
{
    for (const int step : {1, 3, 7, 101, 191}) {
        QByteArray bytes;
        for (int i = 0; i < 20'000; ++i)
            bytes += static_cast<char>((i * step + i / 251) & 0xff);
        for (const int cut : {0, 1, 2, 5})
            EXPECT_TRUE(TranscriptText::decode(bytes.mid(cut)).has_value());
    }
}

} // namespace
