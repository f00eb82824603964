#include "engine/StateKeeper.h"

#include "engine/JobModel.h"
#include "engine/SavedState.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <algorithm>

namespace {

// Between two pictures. Together with the writing it stays well below the second that a crash may cost.
constexpr auto gatheringTime = std::chrono::milliseconds(250);
// Of the main thread, for encoding; then input and drawing have theirs.
constexpr auto longestTurn = std::chrono::milliseconds(5);
// After a failure, so that a full disk is tried again though nothing changes.
constexpr auto retryTime = std::chrono::seconds(5);

} // namespace

StateKeeper::StateKeeper(JobModel& model, QString path) : m_model(model), m_path(std::move(path))
{
    m_changes->keeper = this;
    for (QTimer* const timer : {&m_gathering, &m_retry}) {
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, &StateKeeper::encodeInTurns);
    }
    connect(&model, &JobModel::jobAdded, this, &StateKeeper::follow);
    connect(&model, &JobModel::jobRemoved, this, [this](const std::shared_ptr<Job>& job) { unfollow(job.get()); });
    for (const auto& job : model.jobs())
        follow(job);
    m_threads.start("state keeper", [this] { writeThreadProc(); });
}

StateKeeper::~StateKeeper()
{
    m_changes->keeper = nullptr;
    for (auto& [job, followed] : m_followed) {
        for (const auto& connection : followed.connections)
            disconnect(connection);
    }
    settle();
    {
        const std::scoped_lock lock(m_mutex);
        m_isEnding = true;
    }
    m_wake.notify_one();
    while (!m_threads.waitUntilAllEnded(std::chrono::seconds(1))) {
    }
}

void StateKeeper::settle()
{
    m_gathering.stop();
    m_retry.stop();
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return !m_picture && !m_isWriting; });
}

void StateKeeper::goOn()
{
    m_mustWrite = true;
    arm();
}

void StateKeeper::finish()
{
    takePicture();
    settle();
    callWaiting(m_lastTaken);
}

// Following

void StateKeeper::follow(const std::shared_ptr<Job>& job)
{
    if (job->serverJob())
        return;
    Followed& followed = m_followed[job.get()];
    const auto note = [changes = m_changes, raw = job.get()] { Changes::note(changes, raw); };
    followed.connections.push_back(connect(job.get(), &MediaObject::rowChanged, note));
    for (const auto& mediaFile : job->mediaFiles())
        followed.connections.push_back(connect(mediaFile.get(), &MediaObject::rowChanged, note));
    note();
}

void StateKeeper::unfollow(const Job* job)
{
    const auto found = m_followed.find(job);
    if (found == m_followed.end())
        return;
    for (const auto& connection : found->second.connections)
        disconnect(connection);
    m_mustWrite = m_mustWrite || found->second.archive;
    m_followed.erase(found);
    arm();
}

void StateKeeper::Changes::note(const std::shared_ptr<Changes>& changes, const Job* job)
{
    {
        const std::scoped_lock lock(changes->mutex);
        if (changes->last != job)
            changes->jobs.insert(job);
        changes->last = job;
        if (std::exchange(changes->isTold, true))
            return;
    }
    // In a turn of its own, also on the main thread: the change that this tells of is still being made.
    MainThread::post([changes] {
        if (changes->keeper != nullptr)
            changes->keeper->arm();
    });
}

void StateKeeper::arm()
{
    if (m_gathering.isActive())
        return;
    const std::chrono::milliseconds passed(m_sinceLastPicture.isValid() ? m_sinceLastPicture.elapsed()
                                                                        : gatheringTime.count());
    m_gathering.start(std::max(gatheringTime - passed, std::chrono::milliseconds(0)));
}

// Writing

void StateKeeper::collectChanged()
{
    const std::scoped_lock lock(m_changes->mutex);
    m_changed.insert(m_changed.end(), m_changes->jobs.begin(), m_changes->jobs.end());
    m_changes->jobs.clear();
    m_changes->last = nullptr;
    m_changes->isTold = false;
}

bool StateKeeper::encodeChanged(QDeadlineTimer deadline)
{
    for (; !m_changed.empty() && !deadline.hasExpired(); m_changed.pop_back()) {
        const auto followed = m_followed.find(m_changed.back());
        if (followed == m_followed.end())
            continue;
        const Job& job = *m_changed.back();
        auto archive = SavedState::isKept(job) ? job.encode() : std::nullopt;
        // Progress is a change of a row, but none of what is kept.
        if (archive == followed->second.archive)
            continue;
        followed->second.archive = std::move(archive);
        m_mustWrite = true;
    }
    return m_changed.empty();
}

void StateKeeper::encodeInTurns()
{
    // Jobs that change all the time must not keep the others from their picture.
    if (m_changed.empty())
        collectChanged();
    if (!encodeChanged(QDeadlineTimer(longestTurn))) {
        m_gathering.start(std::chrono::milliseconds(0));
        return;
    }
    writePicture();
    // What came in between two turns has told nobody.
    const std::scoped_lock lock(m_changes->mutex);
    if (!m_changes->jobs.empty())
        arm();
}

void StateKeeper::takePicture()
{
    m_gathering.stop();
    collectChanged();
    encodeChanged();
    writePicture();
}

void StateKeeper::writePicture()
{
    if (!m_mustWrite && !m_hasFailed)
        return;
    m_mustWrite = false;
    QJsonArray archives;
    for (const auto& job : m_model.jobs()) {
        if (const auto followed = m_followed.find(job.get()); followed != m_followed.end() && followed->second.archive)
            archives.append(*followed->second.archive);
    }
    m_sinceLastPicture.start();
    {
        const std::scoped_lock lock(m_mutex);
        m_picture = Picture{++m_lastTaken, std::move(archives)};
    }
    m_wake.notify_one();
}

void StateKeeper::writeThreadProc()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_wake.wait(lock, [this] { return m_picture || m_isEnding; });
        if (m_isEnding)
            return;
        const Picture picture = *std::exchange(m_picture, std::nullopt);
        m_isWriting = true;
        lock.unlock();
        const auto error = SavedState::writeArchives(m_path, picture.archives);
        MainThread::post([changes = m_changes, number = picture.number, error] {
            if (changes->keeper != nullptr)
                changes->keeper->written(number, error);
        });
        lock.lock();
        m_isWriting = false;
        m_idle.notify_all();
    }
}

void StateKeeper::whenSaved(std::function<void()> then)
{
    takePicture();
    if (m_lastWritten == m_lastTaken)
        then();
    else
        m_waiting.emplace_back(m_lastTaken, std::move(then));
}

void StateKeeper::callWaiting(std::uint64_t number)
{
    while (!m_waiting.empty() && m_waiting.front().first <= number) {
        const auto then = std::move(m_waiting.front().second);
        m_waiting.pop_front();
        then();
    }
}

void StateKeeper::written(std::uint64_t number, const std::optional<Error>& error)
{
    m_lastWritten = number;
    const bool failedBefore = std::exchange(m_hasFailed, error.has_value());
    callWaiting(number);
    if (!error)
        return;
    m_retry.start(retryTime);
    if (failedBefore)
        return;
    Log::error("Unable to save the jobs: {}", error->localizedDescription);
    Q_EMIT writingFailed(*error); // Last: the user may take hours to read it.
}
