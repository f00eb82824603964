#include "works/WorkEngine.h"

#include "foundation/FileLogger.h"
#include "foundation/HeapArenas.h"
#include "foundation/Log.h"
#include "settings/ServiceHosts.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <sys/resource.h>

namespace {

double cpuOf(int who)
{
    rusage usage{};
    ::getrusage(who, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Of this program alone: the system's figure for the process begins with what its parent held.
double peakMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const QByteArray name("VmHWM:");
    const qsizetype at = text.indexOf(name) + name.size();
    return text.mid(at, text.indexOf("kB", at) - at).trimmed().toDouble() / 1024.0;
}

[[noreturn]] void giveUp(const QString& words)
{
    std::fprintf(stderr, "%s\n", qPrintable(words));
    std::_Exit(EXIT_FAILURE);
}

} // namespace

WorkEngine::WorkEngine(const Setting& setting)
{
    HeapArenas::keepFew();
    const QDir folder(setting.folder);
    for (const char* const name : {"log", "temp", "delivery"})
        folder.mkpath(QString::fromLatin1(name));
    m_logger = std::make_shared<FileLogger>(folder.filePath(QStringLiteral("log")));
    Log::configure({.fileLogger = m_logger});
    m_defaults = std::make_unique<UserDefaults>(folder.filePath(QStringLiteral("Quillpost.ini")));
    UserDefaults::setStandard(m_defaults.get());
    const auto hosts = ServiceHosts::fromTexts(setting.secureHost, setting.fileHost);
    if (const auto* const error = std::get_if<Error>(&hosts))
        giveUp(error->localizedDescription);
    m_model = std::make_unique<JobModel>(static_cast<ApplicationServices&>(*this), std::get<ServiceHosts>(hosts));
    m_processor = std::make_unique<CUrlCommandProcessor>(setting.tick);
    m_processor->setMaxNumOfCommandThreads(std::numeric_limits<int>::max());
    m_model->setCurlCommandProcessor(m_processor.get());
    m_model->setUsername(QStringLiteral("demo"));
    m_model->setPassword(QStringLiteral("demo1234"));
    m_model->setContactID(QStringLiteral("4711"));
    m_model->setTempFilesFolder(folder.filePath(QStringLiteral("temp")));
    m_model->setDeliveryFolder(folder.filePath(QStringLiteral("delivery")));
    m_model->setMaxNumberOfRunningFfmpegProcesses(setting.limit);
    m_model->setMaxNumberOfRunningUploads(setting.uploads);
    m_model->setStatusCheckTimeInterval(setting.pollInterval);
    m_model->setInstructionsCheckTimeInterval(setting.pollInterval);
    QObject::connect(m_model.get(), &JobModel::jobStopped, m_model.get(),
                     [](const std::shared_ptr<Job>&, const QString& reason) { giveUp(reason); });
    QObject::connect(m_model.get(), &JobModel::deliveryHadProblems, m_model.get(),
                     [](const std::shared_ptr<Job>&, const QStringList& problems) { giveUp(problems.join(u'\n')); });
    m_model->keepState(folder.filePath(QStringLiteral("temp")));
}

WorkEngine::~WorkEngine()
{
    m_model->endWork();
    m_processor.reset();
    m_model.reset();
    UserDefaults::setStandard(nullptr);
    Log::shutDown();
}

void WorkEngine::turnUntil(const std::function<bool()>& condition)
{
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, [] { giveUp(QStringLiteral("waited in vain")); });
    patience.start(std::chrono::minutes(10));
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void WorkEngine::presentError(const Error& error)
{
    giveUp(error.localizedDescription);
}

Usage::Usage()
    : m_time(std::chrono::steady_clock::now()), m_cpu(cpuOf(RUSAGE_SELF)), m_childrenCpu(cpuOf(RUSAGE_CHILDREN))
{}

QJsonObject Usage::sinceThen() const
{
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - m_time;
    return {{QStringLiteral("seconds"), seconds.count()},
            {QStringLiteral("cpu"), cpuOf(RUSAGE_SELF) - m_cpu},
            {QStringLiteral("childrenCpu"), cpuOf(RUSAGE_CHILDREN) - m_childrenCpu},
            {QStringLiteral("peakMegabytes"), peakMegabytes()}};
}
