#pragma once

#include "foundation/Error.h"
#include "foundation/WorkerThreads.h"
#include "model/Job.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QTimer>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

class JobModel;

// Keeps the file of a user's unfinished local jobs in step with them while the program works, so that a crash or a
// power cut costs less than the last second. The first change after a pause is written at once, those that follow are
// gathered. What changed is encoded on the main thread, between two changes of a job and never within one, thousands of
// jobs in several turns; the file is written beside, flushed and renamed on a thread of its own. Main thread.
class StateKeeper : public QObject
{
    Q_OBJECT
public:
    // Follows the model's jobs from now on. The model outlives it.
    StateKeeper(JobModel& model, QString path);
    ~StateKeeper() override; // settle()
    StateKeeper(const StateKeeper&) = delete;
    StateKeeper& operator=(const StateKeeper&) = delete;

    [[nodiscard]] const QString& path() const { return m_path; }
    // Nothing that was seen before is written after this has returned: for somebody who writes the file himself, and
    // calls goOn() then.
    void settle();
    void goOn();
    // Everything as it is now is on disk, or could not be brought there, when this has returned, and who waited for
    // that is called.
    void finish();
    // Calls back, on the main thread, as soon as the jobs as they are now are on disk, or cannot be brought there. At
    // once when they are; never once this object is gone.
    void whenSaved(std::function<void()> then);

Q_SIGNALS:
    // The file cannot be written, told once until it can be again.
    void writingFailed(const Error& error);

private:
    // The jobs that changed on any thread. Shared with the connections, which may run while this object goes.
    struct Changes
    {
        static void note(const std::shared_ptr<Changes>& changes, const Job* job);

        std::mutex mutex; // guards the three below
        std::unordered_set<const Job*> jobs;
        const Job* last = nullptr; // of these, noted last: most change in several ways in a row
        bool isTold = false;
        StateKeeper* keeper = nullptr; // main thread
    };
    struct Followed
    {
        std::optional<QJsonObject> archive; // nothing for a job that is not kept
        std::vector<QMetaObject::Connection> connections;
    };

    void follow(const std::shared_ptr<Job>& job);
    void unfollow(const Job* job);
    void arm();
    // What the gathering has led to: a picture, when all that changed is encoded.
    void encodeInTurns();
    void takePicture();
    void collectChanged();
    // Of what is collected; all of it unless there is a deadline. True when nothing is left.
    bool encodeChanged(QDeadlineTimer deadline = QDeadlineTimer(QDeadlineTimer::Forever));
    void writePicture();
    void callWaiting(std::uint64_t number);
    void writeThreadProc();
    void written(std::uint64_t number, const std::optional<Error>& error);

    JobModel& m_model;
    const QString m_path;
    const std::shared_ptr<Changes> m_changes = std::make_shared<Changes>();
    std::unordered_map<const Job*, Followed> m_followed;
    std::vector<const Job*> m_changed; // and not encoded yet; some may be gone
    bool m_mustWrite = false;          // the file may differ from the jobs
    bool m_hasFailed = false;
    QTimer m_gathering;
    QTimer m_retry;
    QElapsedTimer m_sinceLastPicture;
    std::uint64_t m_lastTaken = 0; // the pictures' numbers
    std::uint64_t m_lastWritten = 0;
    std::deque<std::pair<std::uint64_t, std::function<void()>>> m_waiting; // by the picture that each waits for

    struct Picture
    {
        std::uint64_t number;
        QJsonArray archives;
    };

    std::mutex m_mutex; // guards the members below
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::optional<Picture> m_picture; // to be written; a newer one takes its place
    bool m_isWriting = false;
    bool m_isEnding = false;

    WorkerThreads m_threads; // last: its thread uses the others
};
