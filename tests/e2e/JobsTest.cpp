#include "CliTest.h"

using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

class Jobs : public CliTest
{
protected:
    [[nodiscard]] static QJsonObject find(const std::vector<QJsonObject>& all, int depo)
    {
        for (const QJsonObject& object : all) {
            if (object.value(QStringLiteral("depo")).toInt() == depo)
                return object;
        }
        ADD_FAILURE() << "no job " << depo;
        return {};
    }
};

} // namespace

TEST_F(Jobs, areNoneAtFirst)
{
    ChildProgram& program = run({QStringLiteral("jobs")});
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_EQ(text(program.standardOutput()), "");
    EXPECT_EQ(text(program.standardError()), "No jobs.\n");
}

TEST_F(Jobs, areThoseOfTheServiceAndTheSavedOnes)
{
    service.addOverride("add_segment.php", {.reply = "NO", .times = 1});
    EXPECT_EQ(run(order({recording(QStringLiteral("a.wav"), 2)})).exitCode(), 3);
    const int saved = service.jobs().front().depoNumber;
    const int elsewhere = service.addServerJob("Roe Richard.txt", 2);
    service.clearRequests();

    ChildProgram& json = run({QStringLiteral("jobs"), QStringLiteral("--json")});
    EXPECT_EQ(json.exitCode(), 0);
    const auto jobs = objects(json, QStringLiteral("job"));
    EXPECT_EQ(jobs.size(), 2U);
    const QJsonObject own = find(jobs, saved);
    EXPECT_EQ(text(own.value(QStringLiteral("name")).toString()), "Doe-Jane-2026-03-04.txt");
    EXPECT_EQ(text(own.value(QStringLiteral("status")).toString()), "Uploading");
    EXPECT_EQ(own.value(QStringLiteral("order")).toInt(), 5120);
    EXPECT_EQ(own.value(QStringLiteral("duration")).toDouble(), 2);
    EXPECT_TRUE(own.value(QStringLiteral("score")).isNull());
    EXPECT_TRUE(own.value(QStringLiteral("saved")).toBool());
    EXPECT_TRUE(own.value(QStringLiteral("onService")).toBool());
    const QJsonObject other = find(jobs, elsewhere);
    EXPECT_EQ(text(other.value(QStringLiteral("name")).toString()), "Roe Richard.txt");
    EXPECT_EQ(text(other.value(QStringLiteral("status")).toString()), "Joined");
    EXPECT_FALSE(other.value(QStringLiteral("saved")).toBool());
    EXPECT_GT(other.value(QStringLiteral("score")).toInt(), 0);
    EXPECT_GT(other.value(QStringLiteral("duration")).toDouble(), 0);
    EXPECT_EQ(objects(json, QStringLiteral("file")).size(), 3U);

    ChildProgram& table = run({QStringLiteral("jobs")});
    EXPECT_EQ(table.exitCode(), 0);
    EXPECT_THAT(text(table.outputLines().constFirst()), HasSubstr("STATUS"));
    EXPECT_THAT(text(table.standardOutput()),
                ContainsRegex("883 +5120 +Uploading +- +0:00:02 +service, saved +Doe-Jane-2026-03-04\\.txt\n"));
    EXPECT_THAT(text(table.standardOutput()), ContainsRegex("884 +- +Joined +[0-9]+ +[0-9:]+ +service +Roe Richard"));
    EXPECT_EQ(service.count("jobdetails.php") + service.count("add_segment.php"), 0) << "Nothing is worked on.";
}

TEST_F(Jobs, thatAreSavedAreListedWithoutTheService)
{
    service.addOverride("jobdetails.php", {.reply = "later"});
    EXPECT_EQ(run(order({recording(QStringLiteral("a.wav"))})).exitCode(), 3);
    service.addOverride("checkstatus.php", {.status = 500});
    ChildProgram& program = run({QStringLiteral("jobs")});
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_THAT(text(program.standardError()), HasSubstr("The status cannot be asked for: cURL error( 22, "));
    EXPECT_THAT(text(program.standardOutput()), ContainsRegex("saved +Doe-Jane-2026-03-04\\.txt\n"));
}
