#include "cli/Terminal.h"

#include "cli/RowText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(Terminal, wordsCannotDriveIt)
{
    EXPECT_EQ(Terminal::withoutControls(u"\x1b[2Jgone\a\r\0.x"_s), u"\ufffd[2Jgone\ufffd\ufffd\ufffd.x"_s);
    EXPECT_EQ(Terminal::withoutControls(QString(QChar(0x9b)) + u"2J"_s), u"\ufffd2J"_s);
}

TEST(Terminal, keepsLineEndsTabsAndLetters)
{
    EXPECT_EQ(Terminal::withoutControls(u"M\u00fcller\n\t& Co \u2026"_s), u"M\u00fcller\n\t& Co \u2026"_s);
}

TEST(Terminal, aNameWithALineEndTakesOneLineOfTheBlock)
{
    ProgressRow row;
    row.name = u"two\nlines\x1b[H"_s;
    const QString line = RowText::live(row, 80);
    EXPECT_FALSE(line.contains(u'\n'));
    EXPECT_FALSE(line.contains(QChar(0x1b)));
    EXPECT_TRUE(line.startsWith(u"two lines"_s)) << qPrintable(line);
}
