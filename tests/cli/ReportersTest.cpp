#include "CapturedOutput.h"

#include "cli/JsonReporter.h"
#include "cli/LiveReporter.h"
#include "cli/PlainReporter.h"
#include "foundation/Secrets.h"
#include "model/JobStatus.h"

#include <QJsonDocument>
#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

ProgressRow job(int status, const QString& statusText)
{
    ProgressRow row;
    row.depoNum = 883;
    row.name = QStringLiteral("Doe.txt");
    row.status = status;
    row.statusText = statusText;
    return row;
}

ProgressRow uploading(double processed)
{
    ProgressRow row = job(JobStatusUploading, QStringLiteral("Uploading files"));
    row.segment = 1;
    row.processed = processed;
    row.total = 100.0;
    return row;
}

std::vector<std::string> lines(const QString& text)
{
    std::vector<std::string> all;
    for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts))
        all.push_back(line.toStdString());
    return all;
}

const ProgressRow submitting = job(JobStatusSubmittingDetails, QStringLiteral("Submitting Job"));
const ProgressRow submitted = job(JobStatusDetailsSubmitted, QStringLiteral("Submitting Job"));

} // namespace

TEST(PlainReporter, saysAStateOnce)
{
    PlainReporter reporter;
    const CapturedOutput captured([&] {
        reporter.rowChanged(submitting);
        reporter.rowChanged(submitted);
        reporter.rowChanged(job(JobStatusUploaded, QStringLiteral("Files uploaded")));
        reporter.rowChanged(submitting);
    });
    EXPECT_THAT(lines(captured.out), ElementsAre("883 Doe.txt: Submitting Job", "883 Doe.txt: Files uploaded",
                                                 "883 Doe.txt: Submitting Job"));
}

TEST(PlainReporter, saysNothingOfAStateWithoutWords)
{
    PlainReporter reporter;
    EXPECT_EQ(CapturedOutput([&] { reporter.rowChanged(job(JobStatusOnServer, QString())); }).out, QString());
}

TEST(PlainReporter, saysEachFurtherTenth)
{
    PlainReporter reporter;
    const CapturedOutput captured([&] {
        reporter.rowChanged(uploading(0));
        for (const double processed : {3.0, 9.9, 10.0, 15.0, 47.0, 100.0, 100.0})
            reporter.rowsAre({submitted, uploading(processed)});
    });
    EXPECT_THAT(lines(captured.out),
                ElementsAre("  1. Doe.txt: Uploading files 0 %", "  1. Doe.txt: Uploading files 10 %",
                            "  1. Doe.txt: Uploading files 47 %", "  1. Doe.txt: Uploading files 100 %"));
}

TEST(PlainReporter, keepsStandardOutputForResults)
{
    PlainReporter reporter;
    const CapturedOutput captured([&] {
        reporter.note(QStringLiteral("a note"));
        reporter.error(QStringLiteral("an errör"));
        reporter.result(QStringLiteral("4711"), {{QStringLiteral("event"), QStringLiteral("login")}});
    });
    EXPECT_EQ(captured.out, QStringLiteral("4711\n"));
    EXPECT_EQ(captured.err, QStringLiteral("a note\nan errör\n"));
}

TEST(JsonReporter, tellsAllOfARow)
{
    JsonReporter reporter;
    ProgressRow row = uploading(25);
    row.orderNum = 5120;
    row.score = 92;
    row.serverStatus = QStringLiteral("Uploading");
    const CapturedOutput captured([&] { reporter.rowChanged(row); });
    ASSERT_EQ(captured.outLines().size(), 1);
    EXPECT_EQ(captured.out.trimmed().toStdString(),
              R"({"depo":883,"event":"file","name":"Doe.txt","order":5120,"progress":0.25,"score":92,"segment":1,)"
              R"("serverJob":false,"serverStatus":"Uploading","status":9,"statusText":"Uploading files"})");
}

TEST(JsonReporter, hasNullsForWhatIsNotKnown)
{
    JsonReporter reporter;
    ProgressRow row = job(JobStatusIdle, QString());
    row.depoNum.reset();
    const CapturedOutput captured([&] { reporter.rowChanged(row); });
    const QJsonObject object = QJsonDocument::fromJson(captured.out.toUtf8()).object();
    for (const char* key : {"depo", "order", "progress", "score", "serverStatus", "statusText"})
        EXPECT_TRUE(object.value(QLatin1StringView(key)).isNull()) << key;
    EXPECT_FALSE(object.contains(QStringLiteral("segment")));
}

TEST(JsonReporter, hasALineForEveryChangeAndNoOther)
{
    JsonReporter reporter;
    const CapturedOutput captured([&] {
        reporter.rowChanged(submitting);
        reporter.rowChanged(submitting);
        reporter.rowChanged(submitted);
        reporter.rowsAre({submitted, uploading(1)});
        reporter.rowsAre({submitted, uploading(1)});
        reporter.rowsAre({submitted, uploading(2)});
    });
    EXPECT_EQ(captured.outLines().size(), 4) << captured.out.toStdString();
}

TEST(JsonReporter, putsNotesErrorsAndResultsOnLinesOfTheirOwn)
{
    JsonReporter reporter;
    const CapturedOutput captured([&] {
        reporter.note(QStringLiteral("two\nlines"));
        reporter.error(QStringLiteral("\"bad\""));
        reporter.result(QStringLiteral("4711"), {{QStringLiteral("event"), QStringLiteral("login")}});
    });
    EXPECT_THAT(lines(captured.out), ElementsAre(R"({"event":"note","message":"two\nlines"})",
                                                 R"({"event":"error","message":"\"bad\""})", R"({"event":"login"})"));
    EXPECT_EQ(captured.err, QStringLiteral("\"bad\"\n"));
}

TEST(LiveReporter, drawsItsLinesOverThemselves)
{
    LiveReporter reporter;
    const CapturedOutput first([&] { reporter.rowsAre({submitting, uploading(0)}); });
    EXPECT_EQ(first.outLines().size(), 2);
    EXPECT_FALSE(first.out.contains(u'\x1b'));
    EXPECT_EQ(CapturedOutput([&] {
                  reporter.rowsAre({submitting, uploading(0)});
              }).out,
              QString())
        << "What is the same is not drawn again.";
    const CapturedOutput second([&] { reporter.rowsAre({submitting, uploading(50)}); });
    EXPECT_TRUE(second.out.startsWith(QStringLiteral("\x1b[2A\r\x1b[J"))) << second.out.toStdString();
    EXPECT_THAT(second.out.toStdString(), HasSubstr("[##########..........]  50 %"));
}

TEST(LiveReporter, letsWordsScrollByAboveItsLines)
{
    LiveReporter reporter;
    const CapturedOutput captured([&] {
        reporter.rowsAre({submitting});
        reporter.error(QStringLiteral("bad"));
        reporter.result(QStringLiteral("done"), {});
    });
    EXPECT_EQ(captured.err, QStringLiteral("bad\n"));
    EXPECT_EQ(captured.out.count(QStringLiteral("\x1b[1A\r\x1b[J")), 2);
    EXPECT_LT(captured.out.indexOf(QStringLiteral("done")), captured.out.lastIndexOf(QStringLiteral("Doe.txt")));
}

TEST(LiveReporter, staysLowerThanATerminal)
{
    LiveReporter reporter;
    const CapturedOutput captured([&] { reporter.rowsAre(std::vector<ProgressRow>(200, submitting)); });
    EXPECT_EQ(captured.outLines().size(), 20);
    EXPECT_THAT(captured.outLines().constLast().toStdString(), HasSubstr("and 181 more"));
    const CapturedOutput justFits([&] { reporter.rowsAre(std::vector<ProgressRow>(20, submitted)); });
    EXPECT_THAT(justFits.out.toStdString(), testing::Not(HasSubstr("more")));
}

TEST(EveryReporter, masksAPasswordInTheServicesWords)
{
    Secrets::add(QStringLiteral("rare=\"Word\"&77"));
    const QString words = QStringLiteral("Bad request: pass=rare=\"Word\"&77");
    JsonReporter json;
    PlainReporter plain;
    LiveReporter live;
    for (Reporter* const reporter :
         {static_cast<Reporter*>(&json), static_cast<Reporter*>(&plain), static_cast<Reporter*>(&live)}) {
        const CapturedOutput captured([&] {
            reporter->error(words);
            reporter->note(words);
        });
        const std::string shown = (captured.out + captured.err).toStdString();
        EXPECT_THAT(shown, HasSubstr("Bad request: pass=***"));
        EXPECT_THAT(shown, Not(HasSubstr("Word")));
    }
}

TEST(EveryReporter, masksAPasswordInTheServicesNameOfAState)
{
    Secrets::add(QStringLiteral("rare=Status&77"));
    const auto onServer = Job::job();
    onServer->setStatus(JobStatusOnServer);
    onServer->setServerStatus(QStringLiteral("pass=rare=Status&77"));
    const ProgressRow row = ProgressRow::ofJob(*onServer);
    EXPECT_EQ(row.serverStatus, QStringLiteral("pass=***"));
    EXPECT_FALSE(row.statusText.contains(QStringLiteral("Status&77")));
}
