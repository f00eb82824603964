#include "ui-support/RecordingApplication.h"

#include "foundation/UserDefaults.h"

#include <limits>

RecordingApplication::RecordingApplication(ServiceHosts hosts)
    : m_hosts(std::move(hosts)), m_jobModel(std::make_unique<JobModel>(*this, m_hosts)),
      m_processor(std::make_unique<CUrlCommandProcessor>(std::chrono::milliseconds(5)))
{
    m_jobModel->setCurlCommandProcessor(m_processor.get());
}

RecordingApplication::~RecordingApplication()
{
    m_jobModel->endWork();
    m_processor.reset();
    m_jobModel.reset();
}

void RecordingApplication::startCommands()
{
    m_processor->start();
    m_processor->setMaxNumOfCommandThreads(std::numeric_limits<int>::max());
}

UserDefaults& RecordingApplication::userDefaults()
{
    return UserDefaults::standard();
}

void RecordingApplication::userLoggedIn(const QString& userName, const QString& userPassword,
                                        const QString& userContactID)
{
    logins.append({userName, userPassword, userContactID});
}

void RecordingApplication::submitNewJob(const std::shared_ptr<Job>& job, bool andNew)
{
    submitted.append({job, andNew});
}

void RecordingApplication::showSubmitJobWindowWithFiles(const QStringList& paths)
{
    record("showSubmitJobWindowWithFiles");
    droppedFiles = paths;
}

ServiceHosts RecordingApplication::unreachableHosts()
{
    return {{QStringLiteral("127.0.0.1"), std::uint16_t{1}}, {QStringLiteral("127.0.0.1"), std::uint16_t{1}}};
}
