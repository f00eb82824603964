// Disks that fill and folders that cannot be used, at each place where a job writes.

#include "JobRun.h"
#include "SmallDisk.h"

#include "engine/SavedState.h"
#include "foundation/FileLogger.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

const JobRequest wholeRoad{"", "", Stage::New, 0, {}};
const JobRequest delivery{"", "", Stage::Sent, 0, {}, "Deposition", false, false, false, false, DeliveryFormatAll};

void expectToldAndNotLost(const Outcome& outcome, const QString& words)
{
    EXPECT_FALSE(outcome.isLost);
    EXPECT_FALSE(outcome.hasHung);
    EXPECT_TRUE(outcome.told.join(u'\n').contains(words)) << outcome.told.join(u'\n').toStdString();
    for (const QString& text : outcome.told)
        FaultTable::expectReadable(text);
}

QString writeError()
{
    return u"could not be written whole: "_s;
}

} // namespace

TEST(LocalFaults, ADiskThatIsFullWhenAJobIsDeliveredIsToldAndTheFilesComeWhenDeliveredAgain)
{
    JobRun run(delivery, FaultKind::Silence);
    SmallDisk disk(run.path(u"delivery"_s));
    const auto mend = [&] {
        disk.free();
        disk.takeAway(); // Unpacking wants more room than the small disk has when it is empty.
    };
    const Outcome outcome = run.meet([&] { disk.fill(); }, mend);
    expectToldAndNotLost(outcome, writeError());
    EXPECT_EQ(outcome.then, u"completed; whole when delivered again"_s);
}

TEST(LocalFaults, ADiskThatIsFullWhenARecordingIsConvertedIsToldAndTheJobGoesOnInTheNextRun)
{
    JobRun run(wholeRoad, FaultKind::Silence);
    SmallDisk disk(run.path(u"temp"_s));
    const Outcome outcome = run.meet([&] { disk.fill(); }, [&] { disk.free(); });
    expectToldAndNotLost(outcome, u"a.wav"_s);
    EXPECT_TRUE(outcome.then.contains(u"next run"_s)) << outcome.then.toStdString();
}

TEST(LocalFaults, AFileInTheWayOfTheDeliveryFolderIsTold)
{
    JobRun run(delivery, FaultKind::Silence);
    const QString folder = run.path(u"delivery"_s);
    const Outcome outcome =
        run.meet([&] { run.writeFile(u"delivery"_s, "in the way"); }, [&] { QFile::remove(folder); });
    expectToldAndNotLost(outcome, u"could not be made"_s);
    EXPECT_EQ(outcome.then, u"completed; whole when delivered again"_s);
}

// A delivery that has its first file when the volume that it goes to disappears.
class VolumeRun : public JobRun
{
public:
    VolumeRun() : JobRun(delivery, FaultKind::Silence), m_disk(path(u"delivery"_s)) {}

    [[nodiscard]] Outcome loseVolume()
    {
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, &look, [&] {
            if (service.hanging() == 0)
                return;
            look.stop();
            takeAway();
            service.releaseHangs();
        });
        return meet(
            [&] {
                // The names, the end of their list, and the first file.
                const auto listed = static_cast<int>(service.job(883)->deliverables.size());
                service.addOverride("test_downloadjob2.php", {.times = listed + 2});
                service.addOverride("test_downloadjob2.php", {.hang = true, .times = 1});
                look.start(std::chrono::milliseconds(5));
            },
            [] {});
    }

private:
    void takeAway()
    {
        // Where mounting is not permitted, another folder is there at once.
        const QString folder = path(u"delivery"_s);
        if (!m_disk.takeAway()) {
            ASSERT_TRUE(QDir().rename(folder, path(u"gone"_s)) && QDir().mkdir(folder));
        }
    }

    SmallDisk m_disk;
};

TEST(LocalFaults, AVolumeThatDisappearsDuringADeliveryIsToldAndTheFilesComeWhenDeliveredAgain)
{
    VolumeRun run;
    const Outcome outcome = run.loseVolume();
    expectToldAndNotLost(outcome, u"was moved or taken away meanwhile, with the files that were in it"_s);
    EXPECT_EQ(outcome.then, u"completed; whole when delivered again"_s);
}

TEST(LocalFaults, AFileInTheWayOfTheTemporaryFolderIsTold)
{
    JobRun run(wholeRoad, FaultKind::Silence);
    const QString folder = run.path(u"temp"_s);
    const Outcome outcome = run.meet([&] { run.writeFile(u"temp"_s, "in the way"); }, [&] { QFile::remove(folder); });
    expectToldAndNotLost(outcome, u"a.wav.mp3 cannot be read"_s);
}

class LocalFaultsTest : public ServiceEngineTest
{};

TEST_F(LocalFaultsTest, AStateThatCannotBeSavedIsToldAndTheFileIsAsItWas)
{
    const QString folder = path(u"state"_s);
    SmallDisk disk(folder);
    model().addJobsObject(jobOf({u"first.wav"_s}));
    ASSERT_FALSE(model().saveState(folder));
    disk.fill();
    model().addJobsObject(jobOf({u"second.wav"_s}));
    const auto error = model().saveState(folder);
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->localizedDescription.contains(model().stateFilePath(folder)))
        << error->localizedDescription.toStdString();
    const auto saved = SavedState::read(model().stateFilePath(folder));
    EXPECT_FALSE(saved.problem);
    EXPECT_EQ(saved.jobs.size(), 1U);
    disk.free();
    EXPECT_FALSE(model().saveState(folder));
    EXPECT_EQ(SavedState::read(model().stateFilePath(folder)).jobs.size(), 2U);
}

TEST_F(LocalFaultsTest, ALogOnAFullDiskGoesOnWhenThereIsRoomAgain)
{
    const QString folder = path(u"log"_s);
    SmallDisk disk(folder);
    FileLogger logger(folder);
    ASSERT_TRUE(logger.isOpen());
    disk.fill();
    for (int line = 0; line < 5000; ++line)
        logger.append("a line that is lost\n");
    logger.flush();
    disk.free();
    logger.append("the next line\n");
    logger.flush();
    EXPECT_TRUE(readFile(logger.sortedLogFilePaths().value(0)).endsWith("the next line\n"));
}
