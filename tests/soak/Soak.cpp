#include "Soak.h"

#include "Delivery.h"

#include "engine/OrderlyEnd.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/NumberReading.h"
#include "foundation/Text.h"
#include "media/ChildProcess.h"
#include "media/FfmpegLocation.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::size_t longestListOfCompleted = 10;
constexpr int recordings = 8;
constexpr int transcripts = 10;
constexpr int linesOfATranscript = 40;
constexpr double pollInterval = 0.5; // seconds; a minute in the program
constexpr std::chrono::milliseconds patienceWithAJob{60000};
constexpr std::chrono::milliseconds pauseBeforeTryingAgain{300};
constexpr std::chrono::seconds longestConversion{30};
constexpr std::chrono::milliseconds timeOfAMeasure{4000};
constexpr double largestGrowth = 0.05;

void say(const QString& line)
{
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

void turnMainLoop()
{
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
}

} // namespace

Soak::Soak(const SoakOptions& options) : m_options(options), m_faults(options.seed) {}

Soak::~Soak()
{
    if (m_model)
        static_cast<void>(OrderlyEnd::endAllWork(*m_model, *m_processor));
    m_processor.reset();
    m_model.reset();
    Log::shutDown();
    UserDefaults::setStandard(nullptr);
}

bool Soak::makeFiles()
{
    for (int i = 0; i < recordings; ++i) {
        const QString path = m_folder.filePath(Text::format("recording {}.wav", i));
        // Not through QProcess: thread sanitizers lose sight of a thread that starts one.
        ChildProcess ffmpeg;
        const QString problem =
            ffmpeg.start(FfmpegLocation::ffmpegPath(FfmpegLocation::programFolder()),
                         {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"), QStringLiteral("lavfi"),
                          QStringLiteral("-i"), Text::format("sine=frequency={}:duration=1", 300 + 40 * i), path},
                         STDERR_FILENO);
        if (!problem.isEmpty() || !ffmpeg.waitForEnd(longestConversion) || QFileInfo(path).size() == 0)
            return false;
        m_recordings << path;
    }
    for (int i = 0; i < transcripts; ++i) {
        QFile file(m_folder.filePath(Text::format("transcript {}.txt", i)));
        if (!file.open(QIODevice::WriteOnly))
            return false;
        for (int line = 1; line <= linesOfATranscript; ++line)
            file.write(Text::format("Q. Is this line {} of transcript {}?\r\n", line, i).toUtf8());
        m_transcripts << file.fileName();
    }
    return true;
}

void Soak::makeEngine()
{
    const auto hosts = std::get<ServiceHosts>(ServiceHosts::fromTexts(m_service.secureHost(), m_service.fileHost()));
    m_model = std::make_unique<JobModel>(*this, hosts);
    // Time is shortened everywhere by about the same.
    m_processor = std::make_unique<CUrlCommandProcessor>(std::chrono::milliseconds(10));
    m_processor->start();
    m_processor->setMaxNumOfCommandThreads(std::numeric_limits<int>::max());
    m_model->setCurlCommandProcessor(m_processor.get());
    m_model->setMaxNumberOfRunningFfmpegProcesses(2);
    m_model->setMaxNumberOfRunningUploads(4);
    m_model->setStatusCheckTimeInterval(pollInterval);
    m_model->setInstructionsCheckTimeInterval(pollInterval);
    m_model->setFinderSleepInterval(0.05);
    m_model->setTempFilesFolder(m_folder.filePath(QStringLiteral("temp")));
    m_model->setDeliveryFolder(m_folder.filePath(QStringLiteral("delivered")));
    m_model->setUsername(QStringLiteral("demo"));
    m_model->setPassword(QStringLiteral("demo1234"));
    m_model->setContactID(QStringLiteral("4711"));
    connect(m_model.get(), &JobModel::jobStopped, this, &Soak::jobStopped);
    m_model->keepState(m_model->tempFilesFolder());
    m_model->loadState(m_model->tempFilesFolder());
    m_model->startJobProcessing();
}

bool Soak::prepare()
{
    if (!m_folder.isValid() || !makeFiles()) {
        say(QStringLiteral("The recordings cannot be made; is ffmpeg installed?"));
        return false;
    }
    m_defaults = std::make_unique<UserDefaults>(m_folder.filePath(QStringLiteral("settings/Quillpost.ini")));
    UserDefaults::setStandard(m_defaults.get());
    m_fileLogger = std::make_shared<FileLogger>(m_folder.filePath(QStringLiteral("log")));
    Log::configure({.fileLogger = m_fileLogger});
    if (!m_service.start()) {
        say(QStringLiteral("The service does not start."));
        return false;
    }
    connect(&m_service, &ServiceProcess::ended, this, [this] { fail(QStringLiteral("The service has ended.")); });
    connect(&m_service, &ServiceProcess::forgotten, this, [this](int depoNum) {
        for (auto job = m_forgetting.begin(); job != m_forgetting.end(); ++job) {
            if (NumberReading::valueOrZero((*job)->depoNum()) == depoNum) {
                m_forgotten.push_back(*job);
                m_forgetting.erase(job);
                return;
            }
        }
    });
    makeEngine();
    return true;
}

int Soak::run()
{
    if (!prepare())
        return 1;
    QElapsedTimer since;
    since.start();
    say(Text::format("{} jobs in {} minutes, seed {}", m_options.jobs, m_options.minutes, m_options.seed));
    const int first = std::min(m_options.warmUp, m_options.jobs - 1);
    if (!workUntilCompleted(first) || !waitUntilQuiet())
        return 1;
    const Figures before = Figures::settled(timeOfAMeasure);
    say(Text::format("after {} jobs, settled: {}", first, before.text()));
    if (!workUntilCompleted(m_options.jobs) || !waitUntilQuiet())
        return 1;
    const Figures after = Figures::settled(timeOfAMeasure);
    say(Text::format("after {} jobs, settled: {}", m_completed, after.text()));
    say(Text::format("{} faults ordered, {} errors presented, {} jobs put right; {:.1f} minutes", m_faultsOrdered,
                     m_errors, m_putRight, static_cast<double>(since.elapsed()) / 60000.0));
    const bool holds = judge(before, after);
    say(holds ? QStringLiteral("PASS") : QStringLiteral("FAIL"));
    return holds ? 0 : 1;
}

bool Soak::judge(const Figures& before, const Figures& after) const
{
    const double growth = static_cast<double>(after.residentKiB) / static_cast<double>(before.residentKiB) - 1.0;
    say(Text::format("threads {} -> {}, descriptors {} -> {}, memory {:+.1f} %", before.threads, after.threads,
                     before.descriptors, after.descriptors, 100.0 * growth));
    const auto held = std::count_if(m_dropped.begin(), m_dropped.end(), [](const auto& job) { return !job.expired(); });
    say(Text::format("{} jobs left the list, {} of them still in memory", m_dropped.size(), held));
    return !m_hasFailed && held == 0 && before.threads == after.threads && before.descriptors == after.descriptors &&
           (!m_options.comparesMemory || growth <= largestGrowth);
}

void Soak::fail(const QString& words)
{
    m_hasFailed = true;
    m_folder.setAutoRemove(false);
    say(Text::format("{} The log and all else is kept in {}", words, m_folder.path()));
}

bool Soak::workUntilCompleted(int number)
{
    QElapsedTimer since;
    since.start();
    const double period = m_options.minutes * 60000.0 / m_options.jobs; // milliseconds between two jobs
    const int submittedBefore = m_submitted;
    // All at once: the stacks and arenas of threads, which are kept for the next ones, are then as many as ever.
    const bool isFirst = m_submitted == 0;
    while (m_completed < number) {
        const int due =
            submittedBefore + 1 + static_cast<int>(std::floor(static_cast<double>(since.elapsed()) / period));
        submitUpTo(isFirst ? number : std::min(due, number));
        turnMainLoop();
        dropForgotten();
        if (const QString stuck = stuckJobs(); !stuck.isEmpty())
            fail(stuck);
        if (m_hasFailed)
            return false;
    }
    return true;
}

bool Soak::waitUntilQuiet()
{
    QElapsedTimer since;
    since.start();
    while (!m_forgetting.empty() || !m_forgotten.empty() || m_processor->currentNumOfCommandThreads() > 2) {
        turnMainLoop();
        dropForgotten();
        if (m_hasFailed || since.hasExpired(patienceWithAJob.count())) {
            fail(QStringLiteral("It does not come to rest."));
            return false;
        }
    }
    return true;
}

QString Soak::stuckJobs() const
{
    for (const JobPointer& job : m_model->jobs()) {
        const auto since = m_underWay.constFind(job.get());
        if (since == m_underWay.constEnd() || !since->hasExpired(patienceWithAJob.count()))
            continue;
        QStringList files;
        for (const auto& file : job->mediaFiles())
            files << QString::number(file->status());
        return Text::format("Job {} ({}) goes no further at status {}, its files at {}.",
                            NumberReading::valueOrZero(job->depoNum()), job->deponentLastName(), job->status(),
                            files.join(u' '));
    }
    return {};
}

void Soak::submitUpTo(int number)
{
    while (m_submitted < number)
        submitNext();
}

Soak::JobPointer Soak::newJob()
{
    JobPointer job = Job::job();
    job->setTranscriptFile(m_transcripts.at(m_submitted % transcripts));
    job->setDeponentFirstName(QStringLiteral("Ann"));
    job->setDeponentLastName(Text::format("Number{}", m_submitted));
    job->setShortCaption(QStringLiteral("Smith v. Jones"));
    job->setAutoSyncProdID(11);
    job->setMan24ProdID(24);
    const int files = 1 + m_faults.below(2);
    const int first = m_faults.below(recordings);
    for (int i = 0; i < files; ++i)
        job->insertObject(MediaFile::mediaFileWithPath(m_recordings.at((first + i) % recordings)), i);
    return job;
}

void Soak::submitNext()
{
    if (const auto fault = m_faults.next()) {
        m_service.order(*fault);
        ++m_faultsOrdered;
    }
    const JobPointer job = newJob();
    ++m_submitted;
    watch(job);
    m_model->addJobsObject(job);
}

void Soak::watch(const JobPointer& job)
{
    m_underWay[job.get()].start();
    connect(job.get(), &Job::statusChanged, this,
            [this, isToAsk = m_faults.isOneIn(10), weak = std::weak_ptr(job)]() mutable {
                const JobPointer changed = weak.lock();
                if (!changed || !m_underWay.contains(changed.get()))
                    return;
                if (changed->status() == JobStatusUploaded && std::exchange(isToAsk, false))
                    m_service.order(Text::format("again {}", NumberReading::valueOrZero(changed->depoNum())));
                if (changed->status() == JobStatusCompleted) {
                    m_underWay.remove(changed.get());
                    MainThread::post([this, changed] { completed(changed); });
                }
            });
}

void Soak::jobStopped(const JobPointer& job, const QString& /*reason*/)
{
    if (m_underWay.contains(job.get()))
        QTimer::singleShot(pauseBeforeTryingAgain, this, [this, job] { putRight(job); });
}

void Soak::putRight(const JobPointer& job)
{
    if (!m_underWay.contains(job.get()))
        return;
    ++m_putRight;
    m_model->retryJob(job);
}

void Soak::completed(const JobPointer& job)
{
    ++m_completed;
    if (const QString problem = Delivery::check(m_model->deliveryFolder(), *job, m_filesOfAJob); !problem.isEmpty())
        fail(problem);
    for (const auto& file : job->mediaFiles())
        QFile::remove(file->mp3FilePath());
    m_kept.push_back(job);
    forgetOldJobs();
    if (m_completed % 10 == 0)
        say(Text::format("{} of {} jobs delivered, {} put right: {}", m_completed, m_options.jobs, m_putRight,
                         Figures::now().text()));
}

void Soak::forgetOldJobs()
{
    while (m_kept.size() > longestListOfCompleted) {
        m_service.order(Text::format("forget {}", NumberReading::valueOrZero(m_kept.front()->depoNum())));
        m_forgetting.push_back(m_kept.front());
        m_kept.pop_front();
    }
}

// While a status request is under way its reply may still list the job, and would bring it back.
void Soak::dropForgotten()
{
    while (!m_forgotten.empty() && !m_model->isCheckingJobStatus()) {
        m_model->removeJobsObject(m_forgotten.front());
        m_dropped.push_back(m_forgotten.front());
        m_forgotten.pop_front();
    }
}

void Soak::presentError(const Error& error)
{
    ++m_errors;
    Log::error("Will show user error: {}", error.localizedDescription);
    m_model->uploadLogFile();
}
