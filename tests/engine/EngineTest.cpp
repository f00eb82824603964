#include "EngineTest.h"

#include "support/GeneratedMedia.h"

#include <QFileInfo>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr double never = 3600.0;

ServiceHosts hostsOf(const DemoService::Service& service)
{
    return std::get<ServiceHosts>(ServiceHosts::fromTexts(QString::fromStdString(service.secureHost()),
                                                          QString::fromStdString(service.fileHost())));
}

} // namespace

void RecordingServices::presentError(const Error& error)
{
    errors.append(error);
    if (whenPresented)
        whenPresented(error);
}

QStringList RecordingServices::descriptions() const
{
    QStringList texts;
    for (const Error& error : errors)
        texts.append(error.localizedDescription);
    return texts;
}

Engine::Engine(const ServiceHosts& hosts, const std::shared_ptr<FileLogger>& fileLogger)
    : services(fileLogger), model(services, hosts)
{
    model.setCurlCommandProcessor(&processor);
    QObject::connect(&model, &JobModel::jobStopped, &model,
                     [this](const std::shared_ptr<Job>& job, const QString& reason) {
                         stops.push_back({job, reason});
                     });
}

Engine::~Engine()
{
    model.endWork();
}

EngineTest::EngineTest()
    : EngineTest(ServiceHosts({u"127.0.0.1"_s, std::uint16_t{9}}, {u"127.0.0.1"_s, std::uint16_t{9}}))
{
    EngineTest::prepareEngine();
}

EngineTest::EngineTest(const ServiceHosts& serviceHosts)
    : hosts(serviceHosts), engine(std::make_unique<Engine>(hosts, log.fileLogger()))
{}

void EngineTest::restartEngine()
{
    engine.reset();
    engine = std::make_unique<Engine>(hosts, log.fileLogger());
    prepareEngine();
}

void EngineTest::prepareEngine()
{
    model().setUsername(u"demo"_s);
    model().setPassword(u"demo1234"_s);
    model().setContactID(u"4711"_s);
    model().setTempFilesFolder(path(u"temp"_s));
    model().setDeliveryFolder(path(u"delivery"_s));
    model().setMaxNumberOfRunningFfmpegProcesses(2);
    model().setMaxNumberOfRunningUploads(2);
    model().setStatusCheckTimeInterval(never);
    model().setInstructionsCheckTimeInterval(never);
    model().setFinderSleepInterval(0.01);
}

std::shared_ptr<Job> EngineTest::jobOf(const QStringList& mediaNames, const QString& transcript)
{
    auto job = Job::job();
    job->setTranscriptFile(transcript.startsWith(u'/') ? transcript : path(transcript));
    job->setDeponentFirstName(u"Ann"_s);
    job->setDeponentLastName(u"Smith"_s);
    job->setShortCaption(u"Smith v. Jones"_s);
    job->setAutoSyncProdID(11);
    job->setMan24ProdID(24);
    for (const QString& name : mediaNames)
        job->insertObject(MediaFile::mediaFileWithPath(name.startsWith(u'/') ? name : path(name)),
                          job->mediaFiles().size());
    return job;
}

std::shared_ptr<Job> EngineTest::addJobAt(int status, const QStringList& mediaNames, int depoNum)
{
    auto job = jobOf(mediaNames);
    job->setOrderNum(5120);
    job->setDepoNum(depoNum);
    for (const auto& file : job->mediaFiles())
        file->setStatus(status);
    job->setStatus(status);
    model().addJobsObject(job);
    return job;
}

std::vector<std::shared_ptr<CUrlCommand>> EngineTest::takeCommands()
{
    std::vector<std::shared_ptr<CUrlCommand>> commands;
    while (auto command = engine->processor.getCommandFromQueue())
        commands.push_back(std::move(command));
    return commands;
}

void EngineTest::answer(CUrlCommand& command, const QByteArray& reply)
{
    command.setData(reply);
    model().curlCommandDone(command);
}

qsizetype EngineTest::logLines(const QString& level, const QString& line) const
{
    const QString mark = u"["_s + level + u"] "_s;
    qsizetype count = 0;
    // A reply in a line may hold line ends, so the text is searched rather than split.
    const QString text = log.text();
    for (qsizetype at = text.indexOf(mark); at >= 0; at = text.indexOf(mark, at + 1)) {
        const qsizetype words = text.indexOf(u"] "_s, at + mark.size()) + 2;
        if (text.mid(words).startsWith(line + u'\n'))
            ++count;
    }
    return count;
}

std::vector<int> fileStatuses(const Job& job)
{
    std::vector<int> statuses;
    for (const auto& file : job.mediaFiles())
        statuses.push_back(file->status());
    return statuses;
}

ServiceEngineTest::ServiceEngineTest(DemoService::Options options)
    : ServiceHolder(std::move(options)), EngineTest(hostsOf(service))
{
    ServiceEngineTest::prepareEngine();
}

void ServiceEngineTest::prepareEngine()
{
    EngineTest::prepareEngine();
    model().setStatusCheckTimeInterval(0.05);
    model().setInstructionsCheckTimeInterval(0.05);
    engine->processor.setMaxNumOfCommandThreads(std::numeric_limits<int>::max());
    engine->processor.start();
}

QString ServiceEngineTest::transcript(const QString& name)
{
    QByteArray text = "DEPOSITION OF ANN SMITH\r\nMarch 2, 2011\r\n";
    for (int line = 1; line <= 20; ++line)
        text += QByteArray::number(line) + "  Q. Is this line " + QByteArray::number(line) + "?\r\n";
    return writeFile(name, text);
}

std::shared_ptr<Job> ServiceEngineTest::orderOf(const QStringList& mediaPaths, const QString& transcriptPath)
{
    return jobOf(mediaPaths, transcriptPath);
}

std::shared_ptr<Job> ServiceEngineTest::realJob(const QStringList& mediaNames, double seconds)
{
    QStringList paths;
    for (const QString& name : mediaNames)
        paths.append(GeneratedMedia::sound(path(name), seconds));
    return orderOf(paths, transcript());
}

testing::AssertionResult ServiceEngineTest::reaches(const std::shared_ptr<Job>& job, int status)
{
    if (Waiting::until([&] { return job->status() == status; }))
        return testing::AssertionSuccess();
    auto result = testing::AssertionFailure() << "the job is at " << job->status() << ", its files at";
    for (const int fileStatus : fileStatuses(*job))
        result << ' ' << fileStatus;
    return result << "; presented: " << errorTexts().join(u" | "_s).toStdString();
}

testing::AssertionResult ServiceEngineTest::stops(const std::shared_ptr<Job>& job)
{
    const auto hasStopped = [&] {
        return std::any_of(engine->stops.begin(), engine->stops.end(),
                           [&](const Engine::Stop& stop) { return stop.job == job; });
    };
    if (Waiting::until(hasStopped))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the job goes on at " << job->status();
}

std::vector<std::string> ServiceEngineTest::road() const
{
    std::vector<std::string> endpoints;
    for (const auto& request : service.requests())
        if (request.endpoint != "checkstatus.php" && request.endpoint != "get_instructions.php")
            endpoints.push_back(request.endpoint);
    return endpoints;
}

void ServiceEngineTest::expectNoRefusals() const
{
    for (const std::string& refusal : service.refusals())
        ADD_FAILURE() << refusal;
}
