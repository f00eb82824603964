#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"
#include "transcript/DepositionFileParser.h"

#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class TranscriptFile : public TemporaryHome
{
protected:
    std::shared_ptr<DepositionFileParser> parse(const QByteArray& contents)
    {
        return DepositionFileParser::depositionFileParserWithFilePath(writeFile(QStringLiteral("depo.txt"), contents));
    }
    std::string summary(const QByteArray& contents)
    {
        const auto parser = parse(contents);
        if (!parser)
            return "unreadable";
        return (parser->deponentFirstName() + u'|' + parser->deponentLastName() + u'|' +
                (parser->dateString().isNull() ? QStringLiteral("none") : parser->dateString()))
            .toStdString();
    }
};

const QByteArray coverPage = "\f                                                           1\r\n"
                             " 1           IN THE DISTRICT COURT OF HARRIS COUNTY, TEXAS\r\n"
                             " 2   ACME DRILLING, INC.,        )\r\n"
                             " 3            Plaintiff,         )\r\n"
                             " 4   vs.                         )  CAUSE NO. 2009-31415\r\n"
                             " 5   MARIA GONZALEZ,             )\r\n"
                             " 6            Defendant.         )\r\n"
                             " 7\r\n"
                             " 8           ORAL AND VIDEOTAPED DEPOSITION OF\r\n"
                             " 9                  MARIA L. GONZALEZ\r\n"
                             "10                  Sept. 21, 2009\r\n"
                             "11\r\n"
                             "12           taken at the offices of counsel\r\n";

TEST_F(TranscriptFile, CoverPageWithMarginNumbersGivesNameAndDate)
{
    EXPECT_EQ(summary(coverPage), "MARIA L.|GONZALEZ|21 september 2009");
}

TEST_F(TranscriptFile, CoverPageWithNameOnThePhrasesLine)
{
    EXPECT_EQ(summary("                 UNITED STATES DISTRICT COURT\r\n"
                      "                   DISTRICT OF NEVADA\r\n"
                      "\r\n"
                      "          VIDEOTAPED DEPOSITION OF Dr. William H. Harper, M.D.\r\n"
                      "          taken on behalf of the Defendant, on Thursday,\r\n"
                      "          January 5, 2010, at 9:04 a.m., before me\r\n"),
              "Dr. William H.|Harper|05 january 2010");
}

TEST_F(TranscriptFile, WindowsBytesDeepInsideDoNotHideTheCoverPage)
{
    QByteArray contents = coverPage;
    while (contents.size() < 166'000)
        contents += "13   Q.  Where were you then?\r\n";
    contents += "14   A.  I wasn\x92t there \x97 or was I?\r\n";
    EXPECT_EQ(summary(contents), "MARIA L.|GONZALEZ|21 september 2009");
}

TEST_F(TranscriptFile, LineFeedsAloneMakeOneLineWithoutADate)
{
    EXPECT_EQ(summary("Deposition of Jane Doe, taken\non May 3, 2011\nin Reno\n"), "Jane|Doe|none");
    EXPECT_EQ(summary("Deposition of Jane Doe, taken\ron May 3, 2011\rin Reno\r"), "Jane|Doe|none");
}

TEST_F(TranscriptFile, OnlyACarriageReturnAndALineFeedTogetherEndALine)
{
    EXPECT_EQ(summary("Deposition of\r\nJane Doe\r\nMay 5, 2010\r\n"), "Jane|Doe|05 may 2010");
    EXPECT_EQ(summary("\rDeposition of\r\n\rJane Doe\r\nMay 5, 2010\r\n\r"), "Jane|Doe|05 may 2010");
    EXPECT_EQ(summary("\n\rDeposition of\r\nJane Doe\n\rMay 5, 2010\r\n"), "Jane|Doe\n\rMay|05 may 2010");
    EXPECT_EQ(summary("Deposition of\r\r\nJane Doe\r\nMay 5, 2010\r\n\r\n"), "||05 may 2010");
    EXPECT_EQ(summary("May 5, 2010\r\nDeposition of Jane Doe\r"), "Jane|Doe|05 may 2010");
}

TEST_F(TranscriptFile, OneLineHasNoDate)
{
    EXPECT_EQ(summary("May 3, 2011"), "||none");
}

TEST_F(TranscriptFile, DateIsLookedForFromEightLinesAboveTheDeponentToSevenBelow)
{
    const auto numbered = [](int dateLine, const QByteArray& stray) {
        QByteArray text = stray + "\r\n";
        for (int i = 1; i < 40; ++i)
            text += i == dateLine ? "May 3, 2011\r\n" : i == 20 ? "Deposition of Jane Doe\r\n" : "x\r\n";
        return text;
    };
    EXPECT_EQ(summary(numbered(12, "you may")), "Jane|Doe|03 may 2011");
    EXPECT_EQ(summary(numbered(27, "you may")), "Jane|Doe|03 may 2011");
    // Outside the range the search of the whole transcript ends at the first month word.
    EXPECT_EQ(summary(numbered(11, "you may")), "Jane|Doe|none");
    EXPECT_EQ(summary(numbered(28, "you may")), "Jane|Doe|none");
    EXPECT_EQ(summary(numbered(28, "x")), "Jane|Doe|03 may 2011");
}

TEST_F(TranscriptFile, WithoutADeponentTheDateIsLookedForOnTheFirstEightLines)
{
    EXPECT_EQ(summary("a\r\nb\r\nc\r\nd\r\ne\r\nf\r\ng\r\nMay 3, 2011\r\nJune 4, 2012\r\nx\r\n"), "||03 may 2011");
}

TEST_F(TranscriptFile, TwoEmptyLinesBelowThePhraseLeaveTheNamesEmptyAndTheDateIsFound)
{
    const auto parser = parse("x\r\nDEPOSITION OF\r\n\r\n\r\nMay 3, 2011\r\ny");
    ASSERT_NE(parser, nullptr);
    EXPECT_EQ(parser->deponentFirstName(), QString());
    EXPECT_EQ(parser->deponentLastName(), QString());
    EXPECT_EQ(parser->dateString(), QStringLiteral("03 may 2011"));
}

TEST_F(TranscriptFile, CorporateWitnessThrowsAndGivesNothing)
{
    EXPECT_THROW((void)parse("30(b)(6)\r\nDEPOSITION OF JOHN SMITH\r\nMay 3, 2011\r\n"), DeponentNameOutOfRange);
    EXPECT_THROW((void)parse("DEPOSITION OF ACME 30(b)(6)\r\n"), std::out_of_range);
}

TEST_F(TranscriptFile, EmptyFileGivesEmptyFields)
{
    const auto parser = parse("");
    ASSERT_NE(parser, nullptr);
    EXPECT_TRUE(parser->deponentFirstName().isNull());
    EXPECT_TRUE(parser->deponentLastName().isNull());
    EXPECT_TRUE(parser->dateString().isNull());
}

TEST_F(TranscriptFile, WhatCannotBeReadIsLoggedAndGivesNothing)
{
    const RecordedLog log;
    EXPECT_EQ(DepositionFileParser::depositionFileParserWithFilePath(path(QStringLiteral("missing.txt"))), nullptr);
    EXPECT_EQ(DepositionFileParser::depositionFileParserWithFilePath(path(QStringLiteral("."))), nullptr);
    EXPECT_EQ(DepositionFileParser::depositionFileParserWithFilePath(QString()), nullptr);
    const QString pipe = path(QStringLiteral("pipe.txt"));
    ASSERT_EQ(mkfifo(qUtf8Printable(pipe), 0600), 0);
    EXPECT_EQ(DepositionFileParser::depositionFileParserWithFilePath(pipe), nullptr);
    EXPECT_EQ(DepositionFileParser::depositionFileParserWithFilePath(QStringLiteral("/dev/zero")), nullptr);
    EXPECT_EQ(parse(QByteArray("\xFF\xFE\x41", 3)), nullptr);
    EXPECT_EQ(log.count(QStringLiteral("[error] [main] Error \"")), 6);
    EXPECT_TRUE(log.contains(QStringLiteral("missing.txt\": No such file")));
    EXPECT_TRUE(log.contains(QStringLiteral("pipe.txt\" is not a regular file")));
    EXPECT_TRUE(log.contains(QStringLiteral("depo.txt\" is text in no known encoding")));
}

TEST_F(TranscriptFile, TooLargeFileIsRefusedUnread)
{
    const RecordedLog log;
    const QString file = writeFile(QStringLiteral("huge.txt"), "x");
    ASSERT_EQ(truncate(qUtf8Printable(file), 64LL * 1024 * 1024 + 1), 0);
    EXPECT_EQ(DepositionFileParser::depositionFileParserWithFilePath(file), nullptr);
    EXPECT_TRUE(log.contains(QStringLiteral("too large for a transcript")));
}

// Sanitizers take address space of their own, and end the program where memory does not suffice.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// No more than `bytes` of address space can be taken in addition while this lives.
class AddressSpaceLimit
{
public:
    explicit AddressSpaceLimit(rlim_t bytes)
    {
        std::uint64_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &m_old);
        const rlimit lowered{pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + bytes, m_old.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_AS, &lowered), 0);
    }
    ~AddressSpaceLimit() { setrlimit(RLIMIT_AS, &m_old); }
    AddressSpaceLimit(const AddressSpaceLimit&) = delete;
    AddressSpaceLimit& operator=(const AddressSpaceLimit&) = delete;

private:
    rlimit m_old{};
};

TEST_F(TranscriptFile, FileThatMemoryDoesNotSufficeForIsLoggedAndGivesNothing)
{
    const RecordedLog log;
    const QString file = writeFile(QStringLiteral("large.txt"), "x");
    ASSERT_EQ(truncate(qUtf8Printable(file), 60LL * 1024 * 1024), 0);
    {
        const AddressSpaceLimit limit(32LL * 1024 * 1024);
        EXPECT_EQ(DepositionFileParser::depositionFileParserWithFilePath(file), nullptr);
    }
    EXPECT_TRUE(log.contains(QStringLiteral("[error] [main] Error \"") + file + QStringLiteral("\": memory")));
}
#endif

TEST_F(TranscriptFile, BinaryFileGivesEmptyFields)
{
    QByteArray contents("\x7F"
                        "ELF\x02\x01\x01");
    for (int i = 0; i < 100'000; ++i)
        contents += static_cast<char>((i * 7) ^ (i >> 3));
    EXPECT_EQ(summary(contents), "||none");
    EXPECT_EQ(summary(QByteArray(100'000, '\0')), "||none");
}

TEST_F(TranscriptFile, TenMegabytesOfLinesAreReadInOneGo)
{
    QByteArray contents;
    while (contents.size() < 10 * 1024 * 1024)
        contents += "   13   Q.  Where were you then?\r\n";
    EXPECT_EQ(summary(contents), "||none");
    EXPECT_EQ(summary(coverPage + contents), "MARIA L.|GONZALEZ|21 september 2009");
}

TEST_F(TranscriptFile, HugeLinesTakeLinearTime)
{
    const QByteArray words = QByteArray("7 ").repeated(1'000'000);
    EXPECT_EQ(summary(words), "||none");
    EXPECT_EQ(summary("Deposition of " + words), "|7|none");
    // Margin numbers without end, words that never are significant, and numbers that stand behind carriage returns.
    EXPECT_EQ(summary("Deposition of\r\n" + words + "\r\nx"), "|7|none");
    EXPECT_EQ(summary("Deposition of " + QByteArray("j. ").repeated(600'000) + "Doe\r\ntaken").substr(0, 2), "j.");
    EXPECT_EQ(summary("Deposition of\r\n" + QByteArray("\r ").repeated(400'000) + QByteArray("1").repeated(400'000) +
                      QByteArray(" 2").repeated(400'000) + "\r\nx"),
              "||none");
    // A month at the end of each of many words.
    EXPECT_EQ(summary(QByteArray("may ").repeated(500'000) + "3 2011\r\nx"), "||03 may 2011");
}

TEST_F(TranscriptFile, HugeNameThatNearlyRepeatsItselfTakesLinearTime)
{
    const QByteArray run(1'000'000, 'a');
    EXPECT_EQ(summary("Deposition of " + run + run + " b" + run + "\r\ntaken").size(), 2'000'000U + 1'000'001U + 6U);
}

} // namespace
