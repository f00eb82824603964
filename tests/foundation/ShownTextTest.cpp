#include "foundation/ShownText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ShownTextTest, OrdinaryWordsAreShownAsTheyAre)
{
    for (const QString& words : {QString(), u"Invalid user name or password"_s, u"UPLOAD COMPLETE\r\n"_s,
                                 u"Zoë\tsaid: „no“ \U0001F600"_s, QString(1000, u'x')})
        EXPECT_EQ(ShownText::of(words), words);
}

TEST(ShownTextTest, ControlCharactersAreNotShown)
{
    EXPECT_EQ(ShownText::of(QString::fromLatin1("a\0b\x1b[2J\x7f\x90", 9)), u"a\ufffdb\ufffd[2J\ufffd\ufffd"_s);
}

TEST(ShownTextTest, WhatIsTooLongIsCutAndSaysHowLongItWas)
{
    EXPECT_EQ(ShownText::of(QString(1001, u'x')), QString(1000, u'x') + u"… (1001 characters)"_s);
    // Not in the middle of a character.
    EXPECT_EQ(ShownText::of(QString(999, u'x') + u"\U0001F600 and more"_s),
              QString(999, u'x') + u"… (1010 characters)"_s);
}
