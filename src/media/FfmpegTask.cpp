#include "media/FfmpegTask.h"

#include "media/ChildProcess.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds timeToEndAfterClosing{1000};
constexpr milliseconds timeBetweenLooks{50};
constexpr milliseconds timeToEndWhenAsked{300};
constexpr milliseconds timeToEndWhenKilled{5000};
// A line that ffmpeg writes in parts comes within this time; a reader of progress does not notice it.
constexpr milliseconds timeToEndALine{20};
constexpr qsizetype largestPiece = 64 * 1024;

class Descriptor
{
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int number() const { return m_number; }
    void reset(int number)
    {
        close();
        m_number = number;
    }
    void close()
    {
        if (m_number >= 0)
            ::close(std::exchange(m_number, -1));
    }

private:
    int m_number;
};

QString systemMessage()
{
    return QString::fromStdString(std::generic_category().message(errno));
}

int millisecondsUntil(Clock::time_point deadline)
{
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::max<std::int64_t>(0, left.count()));
}

enum class Readiness { Output, TimeIsUp, Terminated };

// Waits for output (or its end), for terminate(), or for the deadline; without a deadline for as long as it takes.
Readiness waitForOutput(int output, int wake, const Clock::time_point* deadline)
{
    for (;;) {
        std::array<pollfd, 2> sources{pollfd{output, POLLIN, 0}, pollfd{wake, POLLIN, 0}};
        const int ready = ::poll(sources.data(), sources.size(), deadline ? millisecondsUntil(*deadline) : -1);
        if (ready < 0 && errno == EINTR)
            continue;
        if (sources[1].revents != 0)
            return Readiness::Terminated;
        if (ready != 0)
            return Readiness::Output;
        return Readiness::TimeIsUp;
    }
}

// Appends what is available; false at the end of the output.
bool readAvailable(int output, QByteArray& piece)
{
    std::array<char, 16 * 1024> buffer;
    for (;;) {
        const ssize_t count = ::read(output, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        piece.append(buffer.data(), count);
        return true;
    }
}

bool endsALine(const QByteArray& piece)
{
    return piece.endsWith('\n') || piece.endsWith('\r');
}

// Hands over the output until its end. False when terminate() came first.
bool readToEnd(int output, int wake, const std::function<void(QByteArrayView)>& handOver)
{
    for (;;) {
        if (waitForOutput(output, wake, nullptr) == Readiness::Terminated)
            return false;
        QByteArray piece;
        bool isOpen = readAvailable(output, piece);
        const Clock::time_point deadline = Clock::now() + timeToEndALine;
        while (isOpen && !endsALine(piece) && piece.size() < largestPiece) {
            const Readiness readiness = waitForOutput(output, wake, &deadline);
            if (readiness == Readiness::Terminated)
                return false;
            if (readiness == Readiness::TimeIsUp)
                break;
            isOpen = readAvailable(output, piece);
        }
        if (!piece.isEmpty())
            handOver(piece);
        if (!isOpen)
            return true;
    }
}

// Lets a child that was asked to end write its last words, which nobody reads. True at the end of the output.
bool discardOutput(int output, Clock::time_point deadline)
{
    QByteArray discarded;
    while (Clock::now() < deadline) {
        pollfd source{output, POLLIN, 0};
        if (::poll(&source, 1, millisecondsUntil(deadline)) <= 0)
            return false;
        discarded.clear();
        if (!readAvailable(output, discarded))
            return true;
    }
    return false;
}

// Ends the child and what it started, politely, then by force, and takes up its exit status. That is taken up only
// when no signal is to be sent any more, so that the number cannot have come to mean another process.
void endChild(ChildProcess& child, int output)
{
    const Clock::time_point deadline = Clock::now() + timeToEndWhenAsked;
    child.signalGroup(SIGTERM);
    if (discardOutput(output, deadline) && child.waitForEnd(milliseconds(millisecondsUntil(deadline))))
        return;
    child.signalGroup(SIGKILL);
    [[maybe_unused]] const bool ended = child.waitForEnd(timeToEndWhenKilled);
}

// Waits for the end of a child that has closed its output. False when it lives on, or terminate() came first.
bool endsByItself(ChildProcess& child, const std::atomic<bool>& terminated)
{
    const Clock::time_point deadline = Clock::now() + timeToEndAfterClosing;
    while (!terminated && Clock::now() < deadline) {
        if (child.waitForEnd(timeBetweenLooks))
            return true;
    }
    return false;
}

} // namespace

FfmpegTask::FfmpegTask(QString launchPath)
    : m_launchPath(std::move(launchPath)), m_wakeDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{}

FfmpegTask::~FfmpegTask()
{
    if (m_wakeDescriptor >= 0)
        ::close(m_wakeDescriptor);
}

void FfmpegTask::terminate()
{
    m_terminated = true;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_wakeDescriptor, &one, sizeof one);
}

QString FfmpegTask::launch(const QStringList& arguments, const std::function<void(QByteArrayView)>& output)
{
    if (m_terminated)
        return {};
    if (m_launched.exchange(true))
        return QStringLiteral("the task was launched before");
    if (!isUsable())
        return QStringLiteral("no event descriptor could be made");
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return systemMessage();
    const Descriptor readingEnd(ends[0]);
    Descriptor writingEnd(ends[1]);

    ChildProcess child;
    const QString failure = child.start(m_launchPath, arguments, writingEnd.number());
    writingEnd.close();
    if (!failure.isEmpty())
        return failure;

    if (!readToEnd(readingEnd.number(), m_wakeDescriptor, output) || !endsByItself(child, m_terminated))
        endChild(child, readingEnd.number());
    return {};
}
