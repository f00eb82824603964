#pragma once

#include "media/AudioExtractor.h"
#include "support/RecordedLog.h"
#include "support/ScriptedFfmpeg.h"
#include "support/TemporaryHome.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <mutex>
#include <sys/resource.h>
#include <thread>

// The errors that an extractor reports, and the threads on which it does.
class RecordedErrors : public AudioExtractorErrorObserver
{
public:
    void audioExtractorHandleError(AudioExtractor& extractor, const Error& error) override;

    [[nodiscard]] QList<Error> errors() const;
    [[nodiscard]] QStringList descriptions() const;
    [[nodiscard]] std::thread::id thread() const;

private:
    mutable std::mutex m_mutex; // guards all below
    QList<Error> m_errors;
    std::thread::id m_thread;
};

// No descriptor can be opened while this lives.
class NoDescriptorsLeft
{
public:
    NoDescriptorsLeft();
    ~NoDescriptorsLeft();
    NoDescriptorsLeft(const NoDescriptorsLeft&) = delete;
    NoDescriptorsLeft& operator=(const NoDescriptorsLeft&) = delete;

private:
    rlimit m_old{};
};

// Runs work on a thread of its own; its end is waited for with the main loop turning.
class Worker
{
public:
    explicit Worker(std::function<void()> work);
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    [[nodiscard]] bool hasEnded() const { return m_hasEnded; }
    // False when it did not end within the time.
    [[nodiscard]] bool join(std::chrono::milliseconds limit = std::chrono::seconds(30));

private:
    std::atomic<bool> m_hasEnded = false;
    std::thread m_thread;
};

class ExtractorFixture : public TemporaryHome
{
protected:
    [[nodiscard]] std::shared_ptr<MediaFile> mediaFile(const QString& path) const;
    // With the fixture's observer and the scripted ffmpeg.
    [[nodiscard]] std::shared_ptr<AudioExtractor> scriptedExtractor(const std::shared_ptr<MediaFile>& file);
    // With the fixture's observer and the real one.
    [[nodiscard]] std::shared_ptr<AudioExtractor> realExtractor(const std::shared_ptr<MediaFile>& file);
    // Each runs the operation on a worker and waits for its end and for what it posted.
    void extractInfo(const std::shared_ptr<AudioExtractor>& extractor);
    void convertToMp3(const std::shared_ptr<AudioExtractor>& extractor, const QString& path);

    RecordedLog m_log;
    RecordedErrors m_observer;
    ScriptedFfmpeg m_ffmpeg;

private:
    void run(const std::function<void()>& work);
};
