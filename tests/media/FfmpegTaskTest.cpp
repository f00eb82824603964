#include "media/FfmpegTask.h"

#include "ExtractorFixture.h"

#include "media/ChildProcess.h"
#include "support/Waiting.h"

#include <QFile>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

using namespace std::chrono_literals;

namespace {

// Standard input, output and error are closed while this lives, as in a program whose starter closed them.
class ClosedStandardDescriptors
{
public:
    ClosedStandardDescriptors()
    {
        for (int descriptor = 0; descriptor < 3; ++descriptor) {
            m_kept.push_back(::fcntl(descriptor, F_DUPFD_CLOEXEC, 100));
            ::close(descriptor);
        }
    }
    ~ClosedStandardDescriptors()
    {
        for (int descriptor = 0; descriptor < 3; ++descriptor) {
            ::dup2(m_kept[static_cast<std::size_t>(descriptor)], descriptor);
            ::close(m_kept[static_cast<std::size_t>(descriptor)]);
        }
    }
    ClosedStandardDescriptors(const ClosedStandardDescriptors&) = delete;
    ClosedStandardDescriptors& operator=(const ClosedStandardDescriptors&) = delete;

private:
    std::vector<int> m_kept;
};

class FfmpegTaskTest : public ExtractorFixture
{
protected:
    // Runs the scripted program to its end and returns the pieces that came.
    QByteArrayList piecesOf(FfmpegTask& task, const QStringList& arguments = {})
    {
        QByteArrayList pieces;
        EXPECT_EQ(task.launch(arguments, [&](QByteArrayView piece) { pieces.append(piece.toByteArray()); }), QString());
        return pieces;
    }

    FfmpegTask m_task{m_ffmpeg.path()};
};

} // namespace

TEST_F(FfmpegTaskTest, PassesEachArgumentAsItStands)
{
    const QStringList arguments{QStringLiteral("-i"), QStringLiteral("/a b/\"Jo's\" & $(x) [1] Müller*.wav"),
                                QStringLiteral(""), QStringLiteral("-y")};
    EXPECT_EQ(piecesOf(m_task, arguments).join(), QByteArray());
    EXPECT_EQ(m_ffmpeg.runs(), QList<QStringList>{arguments});
}

TEST_F(FfmpegTaskTest, HandsOverEveryByteOfALongOutput)
{
    QByteArray output;
    for (int i = 0; i < 12000; ++i)
        output += "[mpeg1video @ 0x55] ac-tex damaged at " + QByteArray::number(i) + '\n';
    m_ffmpeg.prints(output);
    const QByteArrayList pieces = piecesOf(m_task);
    EXPECT_EQ(pieces.join(), output);
    // What is read is handed over before the end.
    EXPECT_GT(pieces.size(), 1);
}

TEST_F(FfmpegTaskTest, HandsOverOutputWhileTheChildRunsAlsoAnUnfinishedLine)
{
    m_ffmpeg.prints("one\r").waitsForRelease(QStringLiteral("1"));
    m_ffmpeg.prints("tw").waitsForRelease(QStringLiteral("2")).prints("o\n");
    QByteArrayList pieces;
    const QString failure = m_task.launch({}, [&](QByteArrayView piece) {
        pieces.append(piece.toByteArray());
        m_ffmpeg.release(QString::number(pieces.size()));
    });
    EXPECT_EQ(failure, QString());
    EXPECT_EQ(pieces, (QByteArrayList{"one\r", "tw", "o\n"}));
}

TEST_F(FfmpegTaskTest, KeepsALineTogetherThatIsWrittenInPartsWithoutPausing)
{
    m_ffmpeg.shell("for n in 1 2 3 4 5 6 7 8 9 10; do printf '  Str' >&2; printf 'eam #0:' >&2; echo $n >&2; done");
    // A machine under load may hold up the child between two parts; not in every run.
    bool everKeptTogether = false;
    for (int attempt = 0; attempt < 5 && !everKeptTogether; ++attempt) {
        FfmpegTask task(m_ffmpeg.path());
        const QByteArrayList pieces = piecesOf(task);
        EXPECT_EQ(pieces.join().count("  Stream #0:"), 10);
        everKeptTogether = std::all_of(pieces.begin(), pieces.end(), [](auto& piece) { return piece.endsWith('\n'); });
    }
    EXPECT_TRUE(everKeptTogether);
}

TEST_F(FfmpegTaskTest, ReadsNothingFromStandardInputAndDropsStandardOutput)
{
    m_ffmpeg.shell("files=$(readlink /proc/$$/fd/0 /proc/$$/fd/1)\necho \"$files\" >&2");
    EXPECT_EQ(piecesOf(m_task).join().toStdString(), "/dev/null\n/dev/null\n");
}

TEST_F(FfmpegTaskTest, GivesTheChildItsStandardDescriptorsWhereTheProgramHasNone)
{
    m_ffmpeg.shell("files=$(readlink /proc/$$/fd/0 /proc/$$/fd/1)\necho \"$files\" >&2");
    QByteArrayList outputs;
    QStringList failures;
    {
        const ClosedStandardDescriptors closed;
        const auto run = [&](FfmpegTask& task) {
            QByteArray output;
            failures.append(task.launch({}, [&](QByteArrayView piece) { output += piece.toByteArray(); }));
            outputs.append(output);
        };
        // Made before, its event descriptor leaves one more of the three numbers to the pipe.
        run(m_task);
        FfmpegTask taskOfThisMoment(m_ffmpeg.path());
        run(taskOfThisMoment);
    }
    EXPECT_EQ(failures, (QStringList{QString(), QString()}));
    EXPECT_EQ(outputs, (QByteArrayList{"/dev/null\n/dev/null\n", "/dev/null\n/dev/null\n"}));
}

TEST_F(FfmpegTaskTest, KeepsTheFilesThatTheChildMakesFromOthersWhateverTheMask)
{
    m_ffmpeg.shell("echo sound > \"$folder/made\"");
    const mode_t oldMask = ::umask(0);
    EXPECT_EQ(piecesOf(m_task).join(), QByteArray());
    ::umask(oldMask);
    EXPECT_EQ(QFile::permissions(m_ffmpeg.file(QStringLiteral("made"))) &
                  (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
              QFile::Permissions());
}

TEST_F(FfmpegTaskTest, GivesTheChildAProcessGroupOfItsOwn)
{
    m_ffmpeg.waitsForRelease(QStringLiteral("go"));
    Worker worker([this] { piecesOf(m_task); });
    EXPECT_TRUE(Waiting::until([this] { return m_ffmpeg.hasReached(QStringLiteral("go")); }));
    const auto processId = static_cast<pid_t>(m_ffmpeg.processIds().value(0));
    EXPECT_EQ(::getpgid(processId), processId);
    m_ffmpeg.release(QStringLiteral("go"));
    EXPECT_TRUE(worker.join());
}

TEST_F(FfmpegTaskTest, SaysWhyAProgramCannotBeLaunched)
{
    const auto ignore = [](QByteArrayView) { ADD_FAILURE() << "there is no output"; };
    FfmpegTask missing(path(QStringLiteral("nothing/ffmpeg")));
    EXPECT_NE(missing.launch({}, ignore), QString());
    FfmpegTask notAProgram(writeFile(QStringLiteral("ffmpeg"), "notes"));
    EXPECT_NE(notAProgram.launch({}, ignore), QString());
}

TEST_F(FfmpegTaskTest, SaysWhyAlsoWhereTheProgramHasNoStandardDescriptors)
{
    const int output = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ASSERT_GT(output, STDERR_FILENO);
    QString failure;
    {
        const ClosedStandardDescriptors closed;
        ChildProcess child;
        failure = child.start(path(QStringLiteral("nothing/ffmpeg")), {}, output);
    }
    ::close(output);
    EXPECT_TRUE(failure.contains(QStringLiteral("No such file"))) << qPrintable(failure);
}

TEST_F(FfmpegTaskTest, IsUsableUnlessTheSystemHasNoDescriptorForIt)
{
    EXPECT_TRUE(m_task.isUsable());
    std::optional<FfmpegTask> task;
    {
        const NoDescriptorsLeft none;
        task.emplace(m_ffmpeg.path());
    }
    EXPECT_FALSE(task->isUsable());
    EXPECT_NE(task->launch({}, [](QByteArrayView) { ADD_FAILURE() << "launched"; }), QString());
}

TEST_F(FfmpegTaskTest, CanBeLaunchedOnce)
{
    m_ffmpeg.prints("once\n");
    EXPECT_EQ(piecesOf(m_task).join(), "once\n");
    EXPECT_EQ(m_task.launch({}, [](QByteArrayView) { ADD_FAILURE() << "launched again"; }),
              QStringLiteral("the task was launched before"));
    EXPECT_EQ(m_ffmpeg.runs().size(), 1);
}

TEST_F(FfmpegTaskTest, WaitsForAChildThatFinishesItsWorkAfterClosingItsOutput)
{
    m_ffmpeg.closesItsOutput().waits(100ms).writesOutputFile("whole");
    const QString output = path(QStringLiteral("out.mp3"));
    piecesOf(m_task, {output});
    EXPECT_EQ(readFile(output), "whole");
}

TEST_F(FfmpegTaskTest, EndsAChildThatLivesOnAfterClosingItsOutput)
{
    m_ffmpeg.prints("last words\n").closesItsOutput().hangs();
    EXPECT_EQ(piecesOf(m_task).join(), "last words\n");
    EXPECT_EQ(m_ffmpeg.processIds().size(), 1);
    EXPECT_EQ(m_ffmpeg.runningCount(), 0);
}

TEST_F(FfmpegTaskTest, TerminatedWhileAChildThatClosedItsOutputLivesOnReturnsAtOnce)
{
    m_ffmpeg.ignoresRequestsToEnd().closesItsOutput().waitsForRelease(QStringLiteral("never"));
    Worker worker([this] { piecesOf(m_task); });
    EXPECT_TRUE(Waiting::until([this] { return m_ffmpeg.hasReached(QStringLiteral("never")); }));
    m_task.terminate();
    EXPECT_TRUE(worker.join());
    EXPECT_EQ(m_ffmpeg.runningCount(), 0);
}

TEST_F(FfmpegTaskTest, TerminatedBeforeItsLaunchRunsNothing)
{
    m_task.terminate();
    EXPECT_TRUE(m_task.isTerminated());
    EXPECT_EQ(piecesOf(m_task), QByteArrayList());
    EXPECT_EQ(m_ffmpeg.runs().size(), 0);
}

TEST_F(FfmpegTaskTest, TerminatedAsksTheChildToEndBeforeItIsKilled)
{
    m_ffmpeg.shell("trap 'echo bye >&2; : > \"$folder/ended-in-order\"; exit 0' TERM");
    m_ffmpeg.waitsForRelease(QStringLiteral("never"));
    QByteArrayList pieces;
    Worker worker([&] { pieces = piecesOf(m_task); });
    EXPECT_TRUE(Waiting::until([this] { return m_ffmpeg.hasReached(QStringLiteral("never")); }));
    m_task.terminate();
    EXPECT_TRUE(worker.join());
    EXPECT_TRUE(QFile::exists(m_ffmpeg.file(QStringLiteral("ended-in-order"))));
    EXPECT_EQ(pieces, QByteArrayList()) << "words after terminate() are nobody's";
    EXPECT_EQ(m_ffmpeg.runningCount(), 0);
}

TEST_F(FfmpegTaskTest, TerminatedKillsAChildThatIgnoresTheRequest)
{
    m_ffmpeg.ignoresRequestsToEnd().waitsForRelease(QStringLiteral("never"));
    Worker worker([this] { piecesOf(m_task); });
    EXPECT_TRUE(Waiting::until([this] { return m_ffmpeg.hasReached(QStringLiteral("never")); }));
    const auto start = std::chrono::steady_clock::now();
    m_task.terminate();
    EXPECT_TRUE(worker.join());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_EQ(m_ffmpeg.runningCount(), 0);
}

TEST_F(FfmpegTaskTest, TerminatedKillsWhatTheChildStarted)
{
    m_ffmpeg.shell("(trap '' TERM; exec sleep 1000000) & echo $! > \"$folder/started\"");
    m_ffmpeg.waitsForRelease(QStringLiteral("never"));
    Worker worker([this] { piecesOf(m_task); });
    EXPECT_TRUE(Waiting::until([this] { return m_ffmpeg.hasReached(QStringLiteral("never")); }));
    const qint64 started = readFile(m_ffmpeg.file(QStringLiteral("started"))).trimmed().toLongLong();
    EXPECT_TRUE(ScriptedFfmpeg::isRunning(started));
    m_task.terminate();
    EXPECT_TRUE(worker.join());
    EXPECT_TRUE(Waiting::until([started] { return !ScriptedFfmpeg::isRunning(started); }));
    EXPECT_EQ(m_ffmpeg.runningCount(), 0);
}

TEST_F(FfmpegTaskTest, TerminatedWhileTheChildPoursOutWordsReturnsSoon)
{
    m_ffmpeg.ignoresRequestsToEnd().shell("exec yes 'ac-tex damaged' >&2");
    std::atomic<int> pieces = 0;
    Worker worker([&] { EXPECT_EQ(m_task.launch({}, [&pieces](QByteArrayView) { ++pieces; }), QString()); });
    EXPECT_TRUE(Waiting::until([&] { return pieces > 3; }));
    m_task.terminate();
    EXPECT_TRUE(worker.join());
    EXPECT_EQ(m_ffmpeg.runningCount(), 0);
}

TEST_F(FfmpegTaskTest, TerminatedAtAnyMomentLeavesNoChild)
{
    m_ffmpeg.hangs();
    for (int round = 0; round < 24; ++round) {
        FfmpegTask task(m_ffmpeg.path());
        Worker worker([&task] { [[maybe_unused]] const QString failure = task.launch({}, [](QByteArrayView) {}); });
        Waiting::turnMainLoopFor(std::chrono::milliseconds(round / 2));
        task.terminate();
        ASSERT_TRUE(worker.join()) << "round " << round;
    }
    EXPECT_EQ(m_ffmpeg.runningCount(), 0);
}

TEST_F(FfmpegTaskTest, LeavesNoChildBehindWhenTheProgramIsKilled)
{
    // The program that is killed is this one, started again; the environment tells it the folder of the first.
    constexpr const char* variable = "QUILLPOST_TEST_CHILD_RECORD";
    if (!qEnvironmentVariableIsSet(variable))
        qputenv(variable, m_ffmpeg.file(QStringLiteral("child")).toUtf8());
    const QString record = qEnvironmentVariable(variable);
    m_ffmpeg.shell("echo $$ > '" + record.toUtf8() + ".new'; mv '" + record.toUtf8() + ".new' '" + record.toUtf8() +
                   "'");
    m_ffmpeg.ignoresRequestsToEnd().hangs();
    EXPECT_EXIT(
        {
            const Worker worker([this] { piecesOf(m_task); });
            if (Waiting::until([&record] { return QFile::exists(record); }))
                ::raise(SIGKILL);
        },
        testing::KilledBySignal(SIGKILL), "");
    qunsetenv(variable);
    const qint64 child = readFile(record).trimmed().toLongLong();
    ASSERT_GT(child, 0);
    EXPECT_TRUE(Waiting::until([child] { return !ScriptedFfmpeg::isRunning(child); }));
}
