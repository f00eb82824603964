#include "CliTest.h"

#include "settings/SettingsKey.h"
#include "support/Waiting.h"

#include <QFile>

using DemoService::valueOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class Submit : public CliTest
{
protected:
    // The value of a registration's field as the service read it.
    [[nodiscard]] std::string detail(const std::string& name) const
    {
        return service.jobs().empty() ? std::string("(no job)") : valueOf(service.jobs().front().details, name);
    }

    // Holds the job back after its registration: for tests of the registration alone.
    ChildProgram& submitNoFurtherThanRegistration(const QStringList& options)
    {
        service.addOverride("add_segment.php", {.reply = "NO", .times = 1});
        return run(order({recording(QStringLiteral("a.wav"))}) + options);
    }
};

} // namespace

TEST_F(Submit, takesAJobToItsDeliveredFiles)
{
    // Given in the wrong order and with letter case that would sort the other way.
    const QString second = recording(QStringLiteral("b-part.wav"), 2);
    const QString first = recording(QStringLiteral("A-part.mp3"), 1);
    ChildProgram& program = run(order({second, first}));
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    EXPECT_EQ(text(program.standardError()), "");
    EXPECT_THAT(service.refusals(), ElementsAre());

    ASSERT_EQ(service.jobs().size(), 1U);
    const DemoService::Job job = service.jobs().front();
    EXPECT_TRUE(job.delivered);
    EXPECT_EQ(job.transcript, readFile(transcript()).toStdString());
    ASSERT_EQ(job.segments.size(), 2U);
    EXPECT_EQ(job.segments[0].sourceName, "A-part.mp3");
    EXPECT_EQ(job.segments[1].sourceName, "b-part.wav");
    EXPECT_EQ(job.segments[1].durationMs, 2000);
    for (const auto& segment : job.segments) {
        EXPECT_EQ(segment.uploads, 1);
        EXPECT_EQ(segment.product, "11") << "The rates were asked for before.";
        EXPECT_THAT(segment.format, HasSubstr("Audio: "));
    }
    EXPECT_EQ(valueOf(job.details, "deponentFirst"), "Jane Q");
    EXPECT_EQ(valueOf(job.details, "deponentLast"), "Doe");
    EXPECT_EQ(valueOf(job.details, "depoDate"), "2026-03-04");
    EXPECT_EQ(valueOf(job.details, "serviceLevel"), "11");
    EXPECT_EQ(valueOf(job.details, "autoSyncOnly"), "1");
    EXPECT_EQ(valueOf(job.details, "totalSegmentCount"), "2");

    const QString folder = QStringLiteral("Doe_030426_%1/").arg(job.depoNumber);
    for (const char* file : {"Universal_ASCII/Doe-Jane-2026-03-04.txt", "RealLegal/Doe-Jane-2026-03-04_rl.xml",
                             "Korvane/index.html", "Ostrova/autorun.inf"})
        EXPECT_TRUE(deliveredFiles().contains(folder + QString::fromLatin1(file))) << file;
    EXPECT_EQ(
        text(program.outputLines().constLast()),
        text(QStringLiteral("Job %1 is completed; its files are in %2").arg(job.depoNumber).arg(deliveryFolder())));
}

TEST_F(Submit, sendsWhatTheOptionsSayRatherThanWhatTheTranscriptSays)
{
    ChildProgram& program = submitNoFurtherThanRegistration(
        {QStringLiteral("--first"), QStringLiteral("J.R."), QStringLiteral("--last"), QStringLiteral("Müller & Sohn"),
         QStringLiteral("--date"), QStringLiteral("2024-12-30"), QStringLiteral("--caption"),
         QStringLiteral("Doe \"v\" Rail = 5%"), QStringLiteral("--format"), QStringLiteral("reallegal xml")});
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_EQ(detail("deponentFirst"), "JR");
    EXPECT_EQ(detail("deponentLast"), "Müller & Sohn");
    EXPECT_EQ(detail("depoDate"), "2024-12-30");
    EXPECT_EQ(detail("shortCaption"), "Doe \"v\" Rail = 5%");
    EXPECT_EQ(detail("transcriptDestinationFormat"), "RealLegal XML");
    EXPECT_THAT(service.refusals(), ElementsAre());
}

TEST_F(Submit, sendsRushAndInterpreterWithTheLevelThatGoesWithThem)
{
    ChildProgram& program =
        submitNoFurtherThanRegistration({QStringLiteral("--level"), QStringLiteral("man48"), QStringLiteral("--rush"),
                                         QStringLiteral("--interpreter")});
    EXPECT_EQ(detail("rush"), "1");
    EXPECT_EQ(detail("translation"), "1");
    EXPECT_EQ(detail("autoSyncOnly"), "0");
    EXPECT_EQ(detail("serviceLevel"), "24") << "Man48 has no rush service; Man24 has.";
    EXPECT_THAT(text(program.standardError()), HasSubstr("Man48 is not offered with rush service: Man24 is ordered."));
}

TEST_F(Submit, sendsTheLevelThatWasNamed)
{
    submitNoFurtherThanRegistration({QStringLiteral("--level"), QStringLiteral("Man72")});
    EXPECT_EQ(detail("serviceLevel"), "72");
    EXPECT_EQ(detail("rush"), "0");
    EXPECT_EQ(detail("translation"), "0");
}

TEST_F(Submit, doesNotOrderALevelThatTheServiceDoesNotOffer)
{
    service.setRates({.unattended = {0, 10}});
    ChildProgram& program = run(order({recording(QStringLiteral("a.wav"))}) +
                                QStringList{QStringLiteral("--level"), QStringLiteral("Unattended")});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_THAT(text(program.standardError()), HasSubstr("does not offer this account the Unattended level"));
    EXPECT_EQ(service.count("jobdetails.php"), 0);
}

TEST_F(Submit, doesNotOrderTheLogFormatWhereItIsNotOffered)
{
    service.setLogFormat(false);
    ChildProgram& program = run(order({recording(QStringLiteral("a.wav"))}) +
                                QStringList{QStringLiteral("--format"), QStringLiteral("LOG")});
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_THAT(text(program.standardError()), HasSubstr("LOG format"));
    EXPECT_EQ(service.count("is_fti.php"), 1);
    EXPECT_EQ(service.count("jobdetails.php"), 0);
}

TEST_F(Submit, ordersTheLogFormatWhereItIsOffered)
{
    submitNoFurtherThanRegistration({QStringLiteral("--format"), QStringLiteral("LOG")});
    EXPECT_EQ(detail("transcriptDestinationFormat"), "LOG");
}

TEST_F(Submit, sendsNothingForFilesThatCannotBeTaken)
{
    const QString missing = path(QStringLiteral("files/missing.wav"));
    ChildProgram& program = run(order({recording(QStringLiteral("a.wav")), missing}));
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_THAT(text(program.standardError()), HasSubstr(text(missing)));
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(Submit, sendsNothingWhenAFolderCannotBeMade)
{
    const QString inTheWay = writeFile(QStringLiteral("in-the-way"), "a file");
    ASSERT_TRUE(QFile::link(inTheWay, deliveryFolder()));
    ChildProgram& program = run(order({recording(QStringLiteral("a.wav"))}));
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_THAT(text(program.standardError()), HasSubstr("The delivery folder: "));
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(Submit, carriesAwkwardNamesThereAndBack)
{
    const QString copy = path(QStringLiteral("files/O'Hara & \"Søn\" [v2].txt"));
    ASSERT_TRUE(QFile::copy(transcript(), copy));
    const QString film = recording(QStringLiteral("Tape \"1\" & [Zürich] 'x' Error.wav"));
    const QString dash = recording(QStringLiteral("-leading dash;=%20.wav"));
    ChildProgram& program =
        run({QStringLiteral("submit"), QStringLiteral("--transcript"), copy, QStringLiteral("--media"), film, dash});
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    EXPECT_THAT(service.refusals(), ElementsAre());
    ASSERT_EQ(service.jobs().size(), 1U);
    const DemoService::Job job = service.jobs().front();
    EXPECT_EQ(job.transcriptName, "O'Hara & \"Søn\" [v2].txt");
    ASSERT_EQ(job.segments.size(), 2U);
    EXPECT_EQ(job.segments[0].sourceName, "-leading dash;=%20.wav");
    EXPECT_THAT(job.segments[0].uploadName, HasSubstr("[-leading dash;=%20.wav,1000]"));
    EXPECT_EQ(job.segments[1].sourceName, "Tape \"1\" & [Zürich] 'x' Error.wav");
    EXPECT_TRUE(deliveredFiles().contains(
        QStringLiteral("Doe_030426_%1/Universal_ASCII/O'Hara & \"Søn\" [v2].txt").arg(job.depoNumber)))
        << text(deliveredFiles().join(u'\n'));
}

TEST_F(Submit, worksOnWhenTheSettingsFileHasLimitsBelowOne)
{
    defaults().setValue(SettingsKey::MaxNumberOfFfmpegProcesses, 0);
    defaults().setValue(SettingsKey::MaxNumberOfUploads, -3);
    defaults().synchronize();
    ChildProgram& program = run(order({recording(QStringLiteral("a.wav"))}));
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
}

TEST_F(Submit, preparesASegmentAgainWhenTheServiceAsksForIt)
{
    // The turnaround leaves time to ask.
    service.setTurnaround(std::chrono::milliseconds(1500));
    service.addOverride("get_rates2.php", {.status = 200, .reply = "not JSON", .times = 1});
    ChildProgram& program = start(order({recording(QStringLiteral("a.wav"))}));
    const int firstDepo = DemoService::Options().firstDepoNumber;
    ASSERT_TRUE(Waiting::until([&] {
        const auto job = service.job(firstDepo);
        return job && job->transcript.has_value();
    }));
    ASSERT_TRUE(service.askAgain(firstDepo, {.segment = 1, .channels = DemoService::Channels::Mono}));
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 0) << text(program.standardError());
    EXPECT_EQ(service.job(firstDepo)->segments.front().uploads, 2);
    EXPECT_THAT(text(program.standardError()), HasSubstr("told no prices"));
}
