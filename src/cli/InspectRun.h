#pragma once

#include "cli/Runs.h"
#include "foundation/WorkerThreads.h"
#include "media/AudioExtractor.h"

#include <QJsonObject>

#include <memory>
#include <mutex>

// Prints what the parser finds in transcripts and what the extractor finds in recordings, in the order given. Files are
// read on a worker thread, so that an interruption is heard.
class InspectRun : public Run
{
    Q_OBJECT
public:
    using Run::Run;
    ~InspectRun() override;
    void start() override;

private:
    struct Finding
    {
        QString line;
        QJsonObject object;
        QString problem;
    };
    void inspectAll();
    [[nodiscard]] Finding inspect(const QString& file);
    [[nodiscard]] Finding inspectTranscript(const QString& file, const QString& path) const;
    [[nodiscard]] Finding inspectRecording(const QString& file, const QString& path);
    void print(const Finding& finding);

    bool m_hasProblem = false; // main thread
    std::mutex m_extractorMutex;
    std::shared_ptr<AudioExtractor> m_extractor; // guarded by m_extractorMutex
    bool m_isEnding = false;                     // guarded by m_extractorMutex
    WorkerThreads m_threads;                     // last: its thread uses all the others
};
