#include "Scenario.h"

#include "FileWatch.h"
#include "SavedJobs.h"

#include <QDir>
#include <QFile>
#include <fmt/format.h>

#include <algorithm>
#include <csignal>
#include <thread>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::chrono::seconds longestRun{240};
#else
constexpr std::chrono::seconds longestRun{90};
#endif

DemoService::Options optionsOf(const Plan& plan,
                               std::function<void(DemoService::Stage, const DemoService::Request&)> watch)
{
    DemoService::Options options;
    if (plan.again)
        options.again = {{.segment = 1, .channels = DemoService::Channels::Stereo}};
    options.watch = std::move(watch);
    return options;
}

// Of the processes that know the folder by an argument; the program itself is not among them once it is killed.
bool isAnyProcessIn(const QString& folder)
{
    const QByteArray name = QFile::encodeName(folder);
    for (const QString& process : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile arguments(QStringLiteral("/proc/") + process + QStringLiteral("/cmdline"));
        if (process.front().isDigit() && arguments.open(QIODevice::ReadOnly) && arguments.readAll().contains(name))
            return true;
    }
    return false;
}

} // namespace

Scenario::Scenario(const Plan& plan, const Common& common)
    : m_plan(plan), m_common(common), m_road(plan.again ? common.again.road : common.once.road),
      m_service(optionsOf(plan, [this](DemoService::Stage stage, const DemoService::Request& request) {
          const std::scoped_lock lock(m_mutex);
          if (m_killer != nullptr)
              m_killer->atRequest(stage, request);
      }))
{
    for (const char* name : {"PATH", "TSAN_OPTIONS", "ASAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            m_environment[QString::fromLatin1(name)] = qEnvironmentVariable(name);
    }
    // What the libraries of the system keep to the end is not the program's to give back.
    m_environment[QStringLiteral("LSAN_OPTIONS")] =
        QStringLiteral("print_suppressions=0:suppressions=") + QStringLiteral(LEAK_SUPPRESSIONS);
    m_environment[QStringLiteral("HOME")] = m_folder.path();
    m_environment[QStringLiteral("QUILLPOST_PASSWORD")] = QStringLiteral("demo1234");
    QDir().mkpath(path(QStringLiteral("files")));
    for (int order = 0; order < m_plan.orders; ++order)
        QFile::copy(QStringLiteral(SAMPLES_FOLDER "/Doe-Jane-2026-03-04.txt"), transcript(order));
}

QString Scenario::transcript(int order) const
{
    return path(QStringLiteral("files/Doe-Jane-%1.txt").arg(order + 1));
}

QStringList Scenario::submitArguments(int order) const
{
    QStringList arguments{QStringLiteral("submit"), QStringLiteral("--transcript"), transcript(order),
                          QStringLiteral("--date"), QStringLiteral("2026-03-04"),   QStringLiteral("--media")};
    const QDir recordings(m_common.folder.path());
    const QStringList names = recordings.entryList(QDir::Files, QDir::Name);
    // Two recordings, or three where the service asks for one again.
    for (const QString& name : names.mid(0, m_plan.again ? 3 : 2)) {
        const QString copy = path(QStringLiteral("files/") + name);
        if (!QFile::exists(copy))
            QFile::copy(recordings.filePath(name), copy);
        arguments << copy;
    }
    return arguments;
}

Scenario::Run Scenario::runProgram(const QStringList& arguments, const std::optional<Moment>& moment)
{
    const QStringList options{QStringLiteral("--secure-host"),
                              QString::fromStdString(m_service.secureHost()),
                              QStringLiteral("--file-host"),
                              QString::fromStdString(m_service.fileHost()),
                              QStringLiteral("--user"),
                              QStringLiteral("demo"),
                              QStringLiteral("--poll-interval"),
                              QStringLiteral("0.1"),
                              QStringLiteral("--delivery-folder"),
                              path(QStringLiteral("delivered")),
                              QStringLiteral("--temp-folder"),
                              path(QStringLiteral("temp"))};
    Killer killer(moment, m_road, m_service);
    const FileWatch watch(path(QStringLiteral("temp")), path(QStringLiteral("delivered")),
                          [&](const std::string& file) {
                              if (file.find("/delivered/") != std::string::npos)
                                  killer.atFile(Killer::Place::Delivery);
                              else if (file.find("/State_demo.archive") != std::string::npos)
                                  killer.atFile(Killer::Place::SavedJobs);
                              else
                                  killer.atFile(Killer::Place::Audio);
                          });
    ChildProgram program(m_common.program);
    {
        const std::scoped_lock lock(m_mutex);
        m_killer = &killer;
    }
    program.start(options + arguments, m_environment);
    killer.started(program.processId());
    const auto deadline = std::chrono::steady_clock::now() + longestRun;
    while (!program.hasEnded() && std::chrono::steady_clock::now() < deadline)
        killer.wait();
    killer.ended();
    {
        const std::scoped_lock lock(m_mutex);
        m_killer = nullptr;
    }
    m_service.clearOverrides();
    constexpr int killed = 128 + SIGKILL;
    Run run{.exitCode = program.exitCode(),
            .output = program.standardOutput() + program.standardError(),
            .road = killer.road()};
    m_allOutput += run.output;
    if (run.exitCode >= 0)
        run.end = run.exitCode == killed ? Run::End::Killed : Run::End::Ended;
    else
        fail(fmt::format("`{}` hangs; it said: {}", arguments.first().toStdString(), run.output.toStdString()));
    return run;
}

void Scenario::expectNoChildren()
{
    constexpr std::chrono::seconds limit(5);
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (isAnyProcessIn(m_folder.path())) {
        if (std::chrono::steady_clock::now() > deadline) {
            fail("a child outlives the program");
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void Scenario::afterKill(const Moment& moment)
{
    m_outcome.kills.emplace_back(nameOf(moment.aim));
    expectNoChildren();
    const SavedJobs saved(path(QStringLiteral("temp/State_demo.archive")));
    if (!saved.isWhole())
        fail(fmt::format("the saved jobs are no whole file after a kill at {}", moment.text()));
    m_outcome.steps.push_back(saved.furthest());
}

bool Scenario::isTaken(int order) const
{
    const SavedJobs saved(path(QStringLiteral("temp/State_demo.archive")));
    return saved.holds(transcript(order)) || !depositionsOf(order).empty();
}

std::vector<DemoService::Job> Scenario::depositionsOf(int order) const
{
    std::vector<DemoService::Job> jobs = m_service.jobs();
    const std::string name = QFileInfo(transcript(order)).fileName().toStdString();
    std::erase_if(jobs, [&](const DemoService::Job& job) { return job.transcriptName != name; });
    return jobs;
}

bool Scenario::killSubmission(int order)
{
    const Moment& moment = m_plan.ofSubmissions.at(static_cast<std::size_t>(order));
    const Run run = runProgram(submitArguments(order), moment);
    if (run.end == Run::End::Killed) {
        afterKill(moment);
        return true;
    }
    ++m_outcome.missed;
    if (run.exitCode != 0)
        fail(fmt::format("`submit` ended with {}: {}", run.exitCode, run.output.toStdString()));
    return false;
}

void Scenario::submit(int order)
{
    if (!killSubmission(order) || isTaken(order))
        return;
    // Nothing is promised yet: the user gives the order once more.
    ++m_outcome.notTaken;
    const Run run = runProgram(submitArguments(order), std::nullopt);
    if (run.exitCode != 0)
        fail(fmt::format("`submit` given again ended with {}: {}", run.exitCode, run.output.toStdString()));
}

void Scenario::cutSavedJobs(double share)
{
    const QString file = path(QStringLiteral("temp/State_demo.archive"));
    const SavedJobs newest(file);
    const SavedJobs before(file + QStringLiteral(".previous"));
    // Where the file before knows fewer orders, or not yet of a delivery, nothing could bring them back.
    const auto jobs = m_service.jobs();
    if (newest.count() == 0 || before.count() < newest.count() ||
        std::ranges::any_of(jobs, &DemoService::Job::delivered))
        return;
    ++m_outcome.cutFiles;
    // Another file of the same name: the one before may, for a moment, be a second name of this one.
    QFile whole(file);
    const QByteArray contents = whole.open(QIODevice::ReadOnly) ? whole.readAll() : QByteArray();
    whole.remove();
    QFile cut(file);
    const auto size = static_cast<qsizetype>(static_cast<double>(contents.size()) * share);
    if (!cut.open(QIODevice::WriteOnly) || cut.write(contents.first(size)) != size)
        fail("the saved jobs cannot be cut");
}

void Scenario::resume()
{
    if (m_plan.savedJobsCutAt)
        cutSavedJobs(*m_plan.savedJobsCutAt);
    for (const Moment& moment : m_plan.ofResumes) {
        const Run run = runProgram({QStringLiteral("resume")}, moment);
        if (run.end != Run::End::Killed) {
            ++m_outcome.missed;
            if (run.exitCode != 0)
                fail(fmt::format("`resume` ended with {}: {}", run.exitCode, run.output.toStdString()));
            continue;
        }
        ++m_outcome.resumes;
        afterKill(moment);
    }
    const Run last = runProgram({QStringLiteral("resume")}, std::nullopt);
    if (last.exitCode != 0)
        fail(fmt::format("the last `resume` ended with {}: {}", last.exitCode, last.output.toStdString()));
}

Outcome Scenario::run()
{
    for (int order = 0; order < m_plan.orders; ++order)
        submit(order);
    resume();
    checkEnd();
    if (!m_outcome.failures.empty())
        fail("all that the runs said: " + m_allOutput.toStdString());
    return std::move(m_outcome);
}

std::optional<Undisturbed> Scenario::runUndisturbed(Common& common, std::string& failure)
{
    const Run run = runProgram(submitArguments(0), std::nullopt);
    const auto jobs = depositionsOf(0);
    if (run.exitCode != 0 || jobs.size() != 1 || !jobs.front().delivered) {
        failure =
            fmt::format("An order that nobody disturbs ended with {}: {}", run.exitCode, run.output.toStdString());
        return std::nullopt;
    }
    for (const DemoService::Request& request : m_service.requests("test_custupload2.php")) {
        for (const DemoService::Segment& segment : jobs.front().segments) {
            if (request.parts.at(3).fileName == segment.uploadName)
                common.audio[segment.sourceName].insert(request.parts.at(3).content);
        }
    }
    const QString jobFolder = QStringLiteral("delivered/Doe_030426_%1/").arg(jobs.front().depoNumber);
    for (const char* name : {"Ostrova/OstrovizerDownloader.exe", "Ostrova/autorun.inf", "Korvane/Korvane_ReadMe.txt"}) {
        QFile file(path(jobFolder + QLatin1String(name)));
        if (file.open(QIODevice::ReadOnly))
            common.demoDiscFiles[QString::fromLatin1(name)] = file.readAll();
    }
    checkOrder(0);
    if (!m_outcome.failures.empty()) {
        failure = m_outcome.failures.front();
        return std::nullopt;
    }
    return Undisturbed{.road = run.road, .requests = requestsByKind()};
}
