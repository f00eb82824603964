#include "cli/Order.h"

#include "support/TemporaryHome.h"
#include "transcript/TranscriptFileType.h"

#include <QDir>
#include <QFile>
#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

const QByteArray cover =
    "   1   Deposition of Jane Q. Doe\r\n   2\r\n   3   Wednesday, March 4, 2026\r\n   4   9:32 a.m.\r\n";

class OrderTest : public TemporaryHome
{
protected:
    OrderTest()
    {
        options.transcript = writeFile(QStringLiteral("Doe.txt"), cover);
        options.media << writeFile(QStringLiteral("a.wav"), "sound");
    }

    Order::Prepared prepared()
    {
        auto result = Order::prepare(options);
        if (const auto* const problem = std::get_if<QString>(&result)) {
            ADD_FAILURE() << problem->toStdString();
            return {Job::job(), {}};
        }
        return std::get<Order::Prepared>(std::move(result));
    }
    std::string problem()
    {
        auto result = Order::prepare(options);
        const auto* const words = std::get_if<QString>(&result);
        return words != nullptr ? words->toStdString() : "(no problem)";
    }
    static QStringList namesOf(const Job& job)
    {
        QStringList names;
        for (const auto& file : job.mediaFiles())
            names << file->name();
        return names;
    }
    // The level that is ordered, and the remarks.
    std::pair<int, QStringList> ordered(std::optional<int> level, bool rush, bool interpreter)
    {
        options.processingLevel = level;
        options.rush = rush;
        options.viaInterpreter = interpreter;
        const auto job = Job::job();
        const QStringList remarks = Order::applyServiceOptions(options, *job);
        EXPECT_EQ(job->rush(), rush);
        EXPECT_EQ(job->viaInterpreter(), interpreter);
        return {job->processingLevel(), remarks};
    }

    SubmitOptions options;
};

} // namespace

TEST_F(OrderTest, prefillsNamesAndDateFromTheTranscript)
{
    const auto order = prepared();
    EXPECT_EQ(order.job->deponentFirstName(), QStringLiteral("Jane Q."));
    EXPECT_EQ(order.job->deponentLastName(), QStringLiteral("Doe"));
    EXPECT_EQ(order.job->depositionDate().date(), QDate(2026, 3, 4));
    EXPECT_EQ(order.job->transcriptFile(), options.transcript);
    EXPECT_EQ(order.remarks, QStringList());
}

TEST_F(OrderTest, prefersWhatTheUserGave)
{
    options.firstName = QString(); // on purpose without one
    options.lastName = QStringLiteral("Roe");
    options.date = QDate(2020, 2, 29);
    options.caption = QStringLiteral("Doe v. Rail");
    options.deliveryFormat = DeliveryFormatLOG;
    const auto order = prepared();
    EXPECT_EQ(order.job->deponentFirstName(), QString());
    EXPECT_EQ(order.job->deponentLastName(), QStringLiteral("Roe"));
    EXPECT_EQ(order.job->depositionDate().date(), QDate(2020, 2, 29));
    EXPECT_EQ(order.job->shortCaption(), QStringLiteral("Doe v. Rail"));
    EXPECT_EQ(order.job->deliveryFormat(), DeliveryFormatLOG);
}

TEST_F(OrderTest, prefillsTheRestWhereTheUserGaveSome)
{
    options.lastName = QStringLiteral("Roe");
    const auto order = prepared();
    EXPECT_EQ(order.job->deponentFirstName(), QStringLiteral("Jane Q."));
    EXPECT_EQ(order.job->deponentLastName(), QStringLiteral("Roe"));
    EXPECT_EQ(order.job->depositionDate().date(), QDate(2026, 3, 4));
}

TEST_F(OrderTest, datesAnOrderTodayWhereTheTranscriptHasNoDate)
{
    options.transcript = writeFile(QStringLiteral("nothing.txt"), "Nothing to be found.\r\n");
    const QDate before = QDate::currentDate();
    const auto order = prepared();
    EXPECT_EQ(order.job->deponentLastName(), QString());
    EXPECT_GE(order.job->depositionDate().date(), before);
    EXPECT_LE(order.job->depositionDate().date(), QDate::currentDate());
}

TEST_F(OrderTest, prefillsNothingForACorporateWitness)
{
    options.transcript =
        writeFile(QStringLiteral("corporate.txt"), "  30(b)(6)\r\n  DEPOSITION OF JOHN SMITH\r\n  March 4, 2026\r\n");
    const auto order = prepared();
    EXPECT_EQ(order.job->deponentFirstName(), QString());
    EXPECT_EQ(order.job->deponentLastName(), QString());
    EXPECT_NE(order.job->depositionDate().date(), QDate(2026, 3, 4));
    ASSERT_EQ(order.remarks.size(), 1);
    EXPECT_THAT(order.remarks.front().toStdString(), HasSubstr("corporate witness"));
}

TEST_F(OrderTest, doesNotParseTranscriptsOfOtherTypes)
{
    options.transcript = writeFile(QStringLiteral("Doe.ptx"), cover);
    EXPECT_EQ(prepared().job->deponentLastName(), QString());
    EXPECT_EQ(prepared().remarks, QStringList()) << "PTX is taken without a remark.";
}

TEST_F(OrderTest, warnsOfATranscriptOfUnknownType)
{
    options.transcript = writeFile(QStringLiteral("Doe.docx"), cover);
    EXPECT_EQ(prepared().remarks, QStringList(TranscriptFileType::unknownTypeWarning));
}

TEST_F(OrderTest, refusesATranscriptWithoutExtension)
{
    options.transcript = writeFile(QStringLiteral("Doe"), cover);
    EXPECT_EQ(problem(), "Transcript files must have extension in order to be processed.");
}

TEST_F(OrderTest, refusesFilesThatCannotBeTaken)
{
    const QString folder = path(QStringLiteral("."));
    options.media << path(QStringLiteral("none.wav"));
    EXPECT_THAT(problem(), HasSubstr("/none.wav does not exist."));
    options.media.last() = folder;
    EXPECT_THAT(problem(), HasSubstr("is not a file."));
    options.media.last() = writeFile(QStringLiteral("Roe.PTX"), "x");
    EXPECT_THAT(problem(), HasSubstr("Roe.PTX is a transcript, not a recording."));
    options.media.last() = writeFile(QStringLiteral("Roe.xml"), "x");
    EXPECT_THAT(problem(), HasSubstr("Roe.xml is a transcript, not a recording."));
    options.media.last() = writeFile(QStringLiteral("sound"), "x");
    EXPECT_THAT(problem(), HasSubstr("sound needs an extension"));
    options.media.removeLast();
    EXPECT_EQ(problem(), "(no problem)");

    options.transcript = path(QStringLiteral("none.txt"));
    EXPECT_THAT(problem(), HasSubstr("The transcript "));
    EXPECT_THAT(problem(), HasSubstr("/none.txt does not exist."));
    options.transcript = folder;
    EXPECT_THAT(problem(), HasSubstr("is not a file."));
}

TEST_F(OrderTest, sortsRecordingsByFileNameIgnoringLetterCase)
{
    options.media = {writeFile(QStringLiteral("1/c.wav"), "x"), writeFile(QStringLiteral("2/B.wav"), "x"),
                     writeFile(QStringLiteral("3/a.wav"), "x")};
    EXPECT_EQ(namesOf(*prepared().job),
              (QStringList{QStringLiteral("a.wav"), QStringLiteral("B.wav"), QStringLiteral("c.wav")}));
}

TEST_F(OrderTest, takesARecordingOnce)
{
    options.media << options.media.front() << path(QStringLiteral("./a.wav"));
    const auto order = prepared();
    EXPECT_EQ(namesOf(*order.job), QStringList(QStringLiteral("a.wav")));
    ASSERT_EQ(order.remarks.size(), 2);
    EXPECT_THAT(order.remarks.front().toStdString(), HasSubstr("was given twice; it is taken once."));
}

TEST_F(OrderTest, refusesTwoRecordingsWhoseNamesDifferInLetterCaseAlone)
{
    options.media << writeFile(QStringLiteral("A.wav"), "another sound");
    EXPECT_THAT(problem(), HasSubstr("must differ in more than letter case"));
}

TEST_F(OrderTest, takesRelativePaths)
{
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(path(QString())));
    options.transcript = QStringLiteral("Doe.txt");
    options.media = {QStringLiteral("./a.wav")};
    const auto order = prepared();
    EXPECT_TRUE(QFile::exists(order.job->mediaFiles().front()->sourceFilePath()));
    EXPECT_TRUE(order.job->mediaFiles().front()->sourceFilePath().startsWith(u'/'));
    EXPECT_TRUE(order.job->transcriptFile().startsWith(u'/'));
    EXPECT_TRUE(QDir::setCurrent(before));
}

TEST_F(OrderTest, ordersTheLevelThatWasNamed)
{
    for (const int level : {ProcessingLevelAutoSync, ProcessingLevelMan24, ProcessingLevelMan48, ProcessingLevelMan72,
                            ProcessingLevelUnattended})
        EXPECT_EQ(ordered(level, false, false), std::pair(level, QStringList()));
    EXPECT_EQ(ordered(std::nullopt, false, false), std::pair(int(ProcessingLevelAutoSync), QStringList()));
}

TEST_F(OrderTest, movesToALevelThatIsOfferedWithRushService)
{
    EXPECT_EQ(ordered(ProcessingLevelMan24, true, false).first, ProcessingLevelMan24);
    EXPECT_EQ(ordered(ProcessingLevelAutoSync, true, false).first, ProcessingLevelAutoSync);
    for (const int level : {ProcessingLevelMan48, ProcessingLevelMan72}) {
        const auto [moved, remarks] = ordered(level, true, false);
        EXPECT_NE(moved, level);
        ASSERT_EQ(remarks.size(), 1);
        EXPECT_THAT(remarks.front().toStdString(), HasSubstr("is not offered with rush service"));
    }
}

TEST_F(OrderTest, movesToALevelThatIsOfferedWithAnInterpreter)
{
    const auto [moved, remarks] = ordered(ProcessingLevelAutoSync, false, true);
    EXPECT_NE(moved, ProcessingLevelAutoSync);
    ASSERT_EQ(remarks.size(), 1);
    EXPECT_THAT(remarks.front().toStdString(), HasSubstr("AutoSync is not offered with an interpreter: Man"));
    EXPECT_EQ(ordered(ProcessingLevelMan72, false, true).first, ProcessingLevelMan72);
    EXPECT_NE(ordered(std::nullopt, false, true).first, ProcessingLevelAutoSync);
}

TEST_F(OrderTest, saysAlsoWhichLevelTakesThePlaceOfOneThatNobodyNamed)
{
    // An interpreted deposition costs more than the automatic level that the user may have counted on.
    const auto remarks = ordered(std::nullopt, false, true).second;
    ASSERT_EQ(remarks.size(), 1);
    EXPECT_THAT(remarks.front().toStdString(), HasSubstr("AutoSync is not offered with an interpreter: Man"));
}
