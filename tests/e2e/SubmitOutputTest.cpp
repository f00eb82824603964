#include "CliTest.h"

#include "model/JobStatus.h"

#include <set>

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

namespace {

class SubmitOutput : public CliTest
{
protected:
    static QString value(const QJsonObject& object, const char* key)
    {
        return object.value(QLatin1StringView(key)).toVariant().toString();
    }
};

} // namespace

TEST_F(SubmitOutput, isOneObjectALineForEveryChange)
{
    ChildProgram& program = run(QStringList{QStringLiteral("--json")} +
                                order({recording(QStringLiteral("a.wav")), recording(QStringLiteral("b.wav"))}));
    ASSERT_EQ(program.exitCode(), 0) << text(program.standardError());
    const auto all = objects(program);
    for (std::size_t i = 1; i < all.size(); ++i)
        EXPECT_NE(all[i], all[i - 1]) << "A line that tells no change.";

    std::vector<int> statuses;
    for (const QJsonObject& object : objects(program, QStringLiteral("job"))) {
        EXPECT_EQ(text(value(object, "name")), "Doe-Jane-2026-03-04.txt");
        if (const int status = object.value(QStringLiteral("status")).toInt();
            statuses.empty() || statuses.back() != status)
            statuses.push_back(status);
    }
    ASSERT_FALSE(statuses.empty());
    EXPECT_EQ(statuses.front(), JobStatusIdle);
    EXPECT_EQ(statuses.back(), JobStatusCompleted);
    for (const int status : {JobStatusSubmittingDetails, JobStatusConverting, JobStatusUploading, JobStatusUploaded,
                             JobStatusOnServer, JobStatusReadyForDownload, JobStatusDownloading})
        EXPECT_THAT(statuses, testing::Contains(status));

    std::set<std::pair<QString, int>> files;
    for (const QJsonObject& object : objects(program, QStringLiteral("file")))
        files.emplace(value(object, "name"), object.value(QStringLiteral("segment")).toInt());
    EXPECT_EQ(files, (std::set<std::pair<QString, int>>{{QStringLiteral("a.wav"), 1}, {QStringLiteral("b.wav"), 2}}));

    const QJsonObject last = all.back();
    EXPECT_EQ(text(value(last, "event")), "completed");
    EXPECT_EQ(text(value(last, "deliveryFolder")), text(deliveryFolder()));
}

TEST_F(SubmitOutput, numbersTheSegmentsOfTheServicesJobsAsTheServiceDoes)
{
    const int other = service.addServerJob("Roe-Richard.txt", 3);
    ASSERT_TRUE(service.holdWord(other, "Splitting"));
    service.addOverride("jobdetails.php", {.status = 200, .reply = "no", .delay = std::chrono::milliseconds(500)});
    ChildProgram& program = run(QStringList{QStringLiteral("--json")} + order({recording(QStringLiteral("a.wav"))}));
    std::set<std::pair<QString, int>> files;
    for (const QJsonObject& object : objects(program, QStringLiteral("file"))) {
        if (object.value(QStringLiteral("serverJob")).toBool())
            files.emplace(value(object, "name"), object.value(QStringLiteral("segment")).toInt());
    }
    EXPECT_EQ(files, (std::set<std::pair<QString, int>>{{QStringLiteral("Segment 1"), 1},
                                                        {QStringLiteral("Segment 2"), 2},
                                                        {QStringLiteral("Segment 3"), 3}}));
}

TEST_F(SubmitOutput, isPlainLinesWithoutATerminal)
{
    ChildProgram& program = run(order({recording(QStringLiteral("a.wav"))}));
    ASSERT_EQ(program.exitCode(), 0);
    EXPECT_THAT(text(program.standardOutput()), Not(HasSubstr("\x1b")));
    EXPECT_THAT(text(program.standardOutput()), HasSubstr("\n  1. a.wav: Uploading files"));
    EXPECT_THAT(text(program.standardOutput()), HasSubstr("Doe-Jane-2026-03-04.txt: Completed\nJob "));
    for (const QString& line : program.outputLines())
        EXPECT_FALSE(line.trimmed().endsWith(u':')) << text(line);
}

TEST_F(SubmitOutput, isDrawnOverItselfOnATerminal)
{
    ChildProgram& program = start(order({recording(QStringLiteral("a.wav"))}), ChildProgram::Terminal::ForAll);
    waitForEnd(program);
    EXPECT_EQ(program.exitCode(), 0);
    const QString shown = program.shown();
    EXPECT_THAT(text(shown), ContainsRegex("883 Doe-Jane-2026-03-04\\.txt +Completed"));
    EXPECT_THAT(text(shown), ContainsRegex("  1\\. a\\.wav +Uploading files +\\[[#.]+\\] +[0-9]+ %"));
    EXPECT_THAT(text(shown), HasSubstr("\x1b[2A\r\x1b[J")) << "Two lines up, and clear: the job and its file.";
    EXPECT_THAT(text(shown), HasSubstr("Job 883 is completed; its files are in "));
    for (const QString& line : shown.split(QStringLiteral("\r\n")))
        EXPECT_LT(line.size(), 100 + 12) << "No line wraps: " << text(line);
}

TEST_F(SubmitOutput, namesTheKnownOnesForAnUnknownFormatOrLevel)
{
    const QString file = recording(QStringLiteral("a.wav"));
    ChildProgram& format = run(order({file}) + QStringList{QStringLiteral("--format"), QStringLiteral("PDF")});
    EXPECT_EQ(format.exitCode(), 1);
    EXPECT_THAT(text(format.standardError()), HasSubstr("RealLegal XML, PTF/VID"));
    ChildProgram& level = run(order({file}) + QStringList{QStringLiteral("--level"), QStringLiteral("Man96")});
    EXPECT_EQ(level.exitCode(), 1);
    EXPECT_THAT(text(level.standardError()), HasSubstr("AutoSync, Man24, Man48, Man72, Unattended"));
    EXPECT_TRUE(service.requests().empty());
}
