#include "JobRun.h"

#include "commands/AddJobSegmentsCommand.h"
#include "commands/SubmitJobDetailsCommand.h"
#include "commands/UploadCommand.h"
#include "engine/DestinationFileName.h"
#include "engine/Mp3Location.h"
#include "engine/SavedState.h"
#include "foundation/NumberReading.h"
#include "support/GeneratedMedia.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 30s;
constexpr qint64 longestEndInMilliseconds = 5000;
constexpr double never = 3600.0;

// Made once: the recording itself is not what is tested.
QString recording(const QString& name)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(name);
    return QFileInfo::exists(path) ? path : GeneratedMedia::sound(path, 0.3);
}

QString nameOf(const std::string& listed)
{
    return QString::fromStdString(listed).replace(u'\\', u'/').section(u'/', -1);
}

DemoService::Options optionsFor(const JobRequest& request)
{
    DemoService::Options options;
    options.deliveryOption = request.deliveryOption;
    options.sendLogs = request.sendsLogs;
    if (request.stage == Stage::AskedAgain)
        options.again = {{1, DemoService::Channels::Stereo}};
    return options;
}

} // namespace

JobRun::JobRun(const JobRequest& request, FaultKind kind)
    : ServiceEngineTest(optionsFor(request)), m_request(request), m_kind(kind)
{
    JobRun::prepareEngine();
}

void JobRun::prepareEngine()
{
    ServiceEngineTest::prepareEngine();
    // Asked for once at the start, and as often as needed where that is what is tested.
    if (m_request.request.endpoint != "get_instructions.php" && !m_request.sendsLogs)
        model().setInstructionsCheckTimeInterval(never);
    QObject::connect(&model(), &JobModel::deliveryHadProblems, &model(),
                     [this](const std::shared_ptr<Job>&, const QStringList& problems) { m_problems += problems; });
}

void JobRun::perform(CUrlCommand& command, const QByteArray& expected)
{
    command.execute();
    EXPECT_EQ(command.data(), expected);
}

std::shared_ptr<Job> JobRun::jobAtStage()
{
    const QString sound = path(u"a.wav"_s);
    QFile::copy(recording(u"a.wav"_s), sound);
    const auto job = orderOf({sound}, transcript());
    job->setDeliveryFormat(m_request.deliveryFormat);
    sendToService(job, m_request.stage);
    if (const auto at = m_request.request.where.find("COUNT"); at != std::string::npos)
        m_request.request.where.replace(at, 5, std::to_string(service.job(883)->deliverables.size()));
    return job;
}

// Does with the service what a run of the program has done before the fault.
void JobRun::sendToService(const std::shared_ptr<Job>& job, Stage stage)
{
    if (stage == Stage::New)
        return;
    const auto file = job->mediaFiles().first();
    perform(*SubmitJobDetailsCommand::submitJobDetailsCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job),
            "5120 883");
    job->setOrderNum(5120);
    job->setDepoNum(883);
    file->setSourceDuration(0.3F);
    file->setMp3Duration(0.3F);
    file->setMp3FilePath(Mp3Location::ofMediaFile(model().tempFilesFolder(), *job, *file));
    QDir().mkpath(QFileInfo(file->mp3FilePath()).path());
    QFile::copy(recording(u"a.mp3"_s), file->mp3FilePath());
    if (stage == Stage::Registered) {
        file->setStatus(JobStatusConverted);
        return;
    }
    perform(*AddJobSegmentsCommand::addJobSegmentsCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job, file), "");
    for (const auto& [local, name] : {std::pair(file->mp3FilePath(), DestinationFileName::ofSegment(*job, 1)),
                                      std::pair(job->transcriptFile(), DestinationFileName::ofTranscript(*job))})
        perform(*UploadCommand::uploadCommandWithUser(hosts, u"demo"_s, u"demo1234"_s, job, local, name),
                "UPLOAD COMPLETE");
    job->setTranscriptUploaded(true);
    file->setStatus(JobStatusUploaded);
    job->setStatus(JobStatusUploaded);
}

bool JobRun::waitForOutcome(const std::shared_ptr<Job>& job, Faults::Often often)
{
    const bool isForGood = often == Faults::Often::ForGood;
    // What hangs tells nobody.
    const bool isHanging = isForGood && m_kind == FaultKind::Silence;
    const int met = m_request.request.passes + (isForGood && m_request.isPoll ? 3 : 1);
    const auto isDecided = [&] {
        if (job->status() == JobStatusCompleted)
            return service.overriddenCount() > m_request.request.passes;
        const bool isServed = m_kind == FaultKind::ResetInReply || m_kind == FaultKind::SingleBytes;
        if (job->status() != m_request.restsAt || (isServed && m_request.goesOnOnceServed))
            return false;
        if (isHanging)
            return service.hanging() > 0;
        return service.overriddenCount() >= met && (m_request.isPoll ? isForGood : !engine->stops.empty());
    };
    if (!Waiting::until(isDecided, patience))
        return false;
    // What was told of the fault may come after the job's own end.
    return isHanging || Waiting::until([&] { return engine->processor.currentNumOfCommandThreads() == 0; }, patience);
}

void JobRun::start(const std::shared_ptr<Job>& job)
{
    model().addJobsObject(job);
    model().startJobProcessing();
    if (m_request.stage == Stage::Registered)
        model().conversionToMp3Finished(job, job->mediaFiles().first());
}

Outcome JobRun::meet(Faults::Often often)
{
    const auto job = jobAtStage();
    Faults::install(service, m_request.request, m_kind, often);
    start(job);
    const bool isOver = waitForOutcome(job, often);
    return concludeAfter(job, !isOver, often == Faults::Often::Once, [this] { service.clearOverrides(); });
}

Outcome JobRun::meet(const std::function<void()>& harm, const std::function<void()>& mend)
{
    const auto job = jobAtStage();
    harm();
    start(job);
    const bool isOver =
        Waiting::until([&] { return job->status() == JobStatusCompleted || !engine->stops.empty(); }, patience);
    mend(); // Before the state is saved, which has a test of its own.
    return concludeAfter(job, !isOver, false, [] {});
}

Outcome JobRun::concludeAfter(const std::shared_ptr<Job>& job, bool hasHung, bool triesAgain,
                              const std::function<void()>& mend)
{
    Outcome outcome;
    outcome.hasHung = hasHung;
    outcome.told = errorTexts() + m_problems;
    for (const Engine::Stop& stop : engine->stops)
        if (!outcome.told.contains(stop.reason))
            outcome.told.append(stop.reason);
    const auto all = model().jobs();
    outcome.isLost = std::find(all.begin(), all.end(), job) == all.end();
    if (job->status() == JobStatusCompleted) {
        expectNoHalfFiles(*job);
        outcome.then = u"completed"_s;
        if (!m_problems.isEmpty() || !hasRightFiles(*job)) {
            EXPECT_TRUE(!m_problems.isEmpty() || m_request.takesAnyWords) << "files are missing, and nobody was told";
            mend();
            outcome.then += u"; whole when delivered again"_s;
            outcome.isLost = outcome.isLost || !completesWhenDeliveredAgain(job);
        }
    } else if (triesAgain && model().canRetryJob(job)) {
        outcome.then = u"stays at %1; completed when tried again"_s.arg(job->status());
        mend();
        outcome.isLost = outcome.isLost || !isSaved(*job) || !completesWhenTriedAgain(job);
    } else {
        outcome.then = u"stays at %1; completed by the next run"_s.arg(job->status());
        outcome.isLost = outcome.isLost || !isSaved(*job) || !completesInTheNextRun(outcome, mend);
    }
    return outcome;
}

bool JobRun::isSaved(const Job& job)
{
    if (const auto error = model().saveState(folder())) {
        ADD_FAILURE() << error->localizedDescription.toStdString();
        return false;
    }
    const auto saved = SavedState::read(model().stateFilePath(folder()));
    EXPECT_FALSE(saved.problem);
    return saved.jobs.size() == 1 && saved.jobs.front()->transcriptFile() == job.transcriptFile() &&
           saved.jobs.front()->depoNum() == job.depoNum() && saved.jobs.front()->mediaFiles().size() == 1 &&
           saved.jobs.front()->mediaFiles().first()->sourceFilePath() == job.mediaFiles().first()->sourceFilePath();
}

bool JobRun::completesInTheNextRun(Outcome& outcome, const std::function<void()>& mend)
{
    QElapsedTimer ending;
    ending.start();
    restartEngine();
    outcome.hasHung = outcome.hasHung || ending.elapsed() > longestEndInMilliseconds;
    mend();
    model().loadState(folder());
    if (model().jobs().size() != 1)
        return false;
    const auto job = model().jobs().front();
    model().startJobProcessing();
    const auto completed = reaches(job, JobStatusCompleted);
    EXPECT_TRUE(completed);
    return completed && hasRightFiles(*job);
}

bool JobRun::completesWhenTriedAgain(const std::shared_ptr<Job>& job)
{
    const QStringList toldBefore = errorTexts();
    EXPECT_TRUE(model().retryJob(job));
    const auto completed = reaches(job, JobStatusCompleted);
    EXPECT_TRUE(completed);
    EXPECT_EQ(errorTexts(), toldBefore) << "nothing goes wrong any more";
    EXPECT_FALSE(model().canRetryJob(job));
    EXPECT_TRUE(m_problems.isEmpty()) << m_problems.join(u" | "_s).toStdString();
    return completed && hasRightFiles(*job);
}

bool JobRun::completesWhenDeliveredAgain(const std::shared_ptr<Job>& job)
{
    EXPECT_EQ(model().canRetryJob(job), !m_problems.isEmpty());
    m_problems.clear();
    if (!model().retryJob(job))
        model().downloadJob(job); // Nobody knows that anything is wrong.
    const auto completed = reaches(job, JobStatusCompleted);
    EXPECT_TRUE(completed);
    EXPECT_TRUE(m_problems.isEmpty()) << m_problems.join(u" | "_s).toStdString();
    return completed && hasRightFiles(*job);
}

bool JobRun::hasRightFiles(const Job& job)
{
    const auto held = service.job(NumberReading::valueOrZero(job.depoNum()));
    if (!held || held->deliverables.empty())
        return false;
    QMultiHash<QString, QString> pathsByName;
    QDirIterator files(model().deliveryFolder(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        pathsByName.insert(files.fileName(), path);
    }
    for (const auto& [listed, bytes] : held->deliverables) {
        const QString name = nameOf(listed);
        // A viewer package is unpacked, and its first page tells that it was.
        const bool isPackage = name.endsWith(u".zip"_s);
        const auto paths = pathsByName.values(isPackage ? u"index.html"_s : name);
        const bool isRight = std::any_of(paths.begin(), paths.end(), [&, wanted = bytes](const QString& path) {
            return isPackage || readFile(path).toStdString() == wanted;
        });
        if (!isRight)
            return false;
    }
    return pathsByName.contains(u"OstrovizerDownloader.exe"_s);
}

void JobRun::expectNoHalfFiles(const Job& job)
{
    const auto held = service.job(NumberReading::valueOrZero(job.depoNum()));
    ASSERT_TRUE(held);
    const auto reply = Faults::replyOf(m_kind, m_request.request);
    for (const auto& [listed, bytes] : held->deliverables) {
        QDirIterator files(model().deliveryFolder(), {nameOf(listed)}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const std::string contents = readFile(files.next()).toStdString();
            const bool isAsSent = m_request.takesAnyWords && reply && contents == *reply;
            EXPECT_TRUE(contents == bytes || isAsSent) << "half a file lies at " << files.filePath().toStdString();
        }
    }
}
