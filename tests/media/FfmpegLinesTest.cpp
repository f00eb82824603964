#include "media/FfmpegLines.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(FfmpegLines, CutsAtEveryNewlineOfAscii)
{
    FfmpegLines lines;
    EXPECT_EQ(lines.add("a\nb\vc\fd\re\r\nf\n"),
              (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d"),
                           QStringLiteral("e"), QString(), QStringLiteral("f"), QString()}));
}

TEST(FfmpegLines, CutsAtNothingElse)
{
    FfmpegLines lines;
    EXPECT_EQ(lines.add("a\tb\x08 c\x0e\n").first(), QStringLiteral("a\tb\x08 c\x0e"));
}

TEST(FfmpegLines, YieldProgressThatEndsInABareCarriageReturnLineByLine)
{
    FfmpegLines lines;
    EXPECT_EQ(lines.add("time=1\rtime=2\r"),
              (QStringList{QStringLiteral("time=1"), QStringLiteral("time=2"), QString()}));
    EXPECT_EQ(lines.add("time=3\r"), (QStringList{QStringLiteral("time=3"), QString()}));
}

TEST(FfmpegLines, JoinALineThatIsCutAcrossTwoPieces)
{
    FfmpegLines lines;
    EXPECT_EQ(lines.add("one\ntw"), QStringList{QStringLiteral("one")});
    EXPECT_EQ(lines.add("o\nthree"), QStringList{QStringLiteral("two")});
    EXPECT_EQ(lines.add("\n").first(), QStringLiteral("three"));
}

// The streams and times that are found depend on the very sequence of lines, so the repetition is part of it.
TEST(FfmpegLines, PutWhatALineEndCompletedInFrontOfThePiecesAfterItOnceMore)
{
    FfmpegLines lines;
    EXPECT_EQ(lines.add("fir"), QStringList());
    EXPECT_EQ(lines.add("st\n"), (QStringList{QStringLiteral("first"), QString()}));
    EXPECT_EQ(lines.add("second\nthird\n"),
              (QStringList{QStringLiteral("firsecond"), QStringLiteral("third"), QString()}));
    EXPECT_EQ(lines.add("fourth\nfi"), QStringList{QStringLiteral("firfourth")});
    EXPECT_EQ(lines.add("fth\n"), (QStringList{QStringLiteral("fifth"), QString()}));
}

TEST(FfmpegLines, KeepNothingAfterPiecesOfWholeLines)
{
    FfmpegLines lines;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(lines.add("line\n"), (QStringList{QStringLiteral("line"), QString()}));
}

TEST(FfmpegLines, ReadNamesOutsideAsciiAsUtf8AlsoWhenAPieceEndsInsideALetter)
{
    FfmpegLines lines;
    EXPECT_EQ(lines.add("M\xc3"), QStringList());
    EXPECT_EQ(lines.add("\xbcller.wav\n").first(), QStringLiteral("Müller.wav"));
}

TEST(FfmpegLines, AreNotCutByLettersWhoseBytesLookLikeSeparators)
{
    FfmpegLines lines;
    // NEXT LINE alone and in UTF-8, LINE SEPARATOR and PARAGRAPH SEPARATOR in UTF-8.
    EXPECT_EQ(lines.add("a\x85 b\xc2\x85 c\xe2\x80\xa8 d\xe2\x80\xa9 e\n").size(), 2);
}

TEST(FfmpegLines, ReplaceBytesThatAreNotText)
{
    FfmpegLines lines;
    EXPECT_EQ(lines.add("a\xff\xfe z\n").first(), QStringLiteral("a\ufffd\ufffd z"));
}

TEST(FfmpegLines, KeepTheBeginningOfALineThatNeverEnds)
{
    FfmpegLines lines;
    const QByteArray piece(50 * 1024, 'x');
    EXPECT_EQ(lines.add("Stream #0"), QStringList());
    for (int i = 0; i < 200; ++i)
        EXPECT_EQ(lines.add(piece), QStringList());
    const QString line = lines.add("the end\n").first();
    EXPECT_EQ(line.size(), FfmpegLines::longestUnfinishedLine + 7);
    EXPECT_TRUE(line.startsWith(QStringLiteral("Stream #0xxx")));
    EXPECT_TRUE(line.endsWith(QStringLiteral("xxxthe end")));
}

TEST(FfmpegLines, DoNotGrowWhenWhatIsKeptIsPutInFrontOverAndOver)
{
    FfmpegLines lines;
    const QByteArray piece(1000, 'x');
    qsizetype longest = 0;
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(lines.add(piece), QStringList());
        longest = std::max(longest, lines.add("bitrate=N/A\r").first().size());
    }
    EXPECT_EQ(longest, FfmpegLines::longestUnfinishedLine + 11);
}
