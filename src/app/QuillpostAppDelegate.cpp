#include "app/QuillpostAppDelegate.h"

#include "commands/CUrlCommandProcessor.h"
#include "engine/JobModel.h"
#include "engine/OrderlyEnd.h"
#include "engine/SavedState.h"
#include "foundation/Log.h"
#include "foundation/NumberReading.h"
#include "foundation/PrivateFolder.h"
#include "foundation/Secrets.h"
#include "foundation/Text.h"
#include "foundation/UserDefaults.h"
#include "settings/SettingsKey.h"
#include "ui/UserDialogs.h"
#include "ui/errors/ErrorWindowController.h"
#include "ui/errors/SyncErrorList.h"
#include "ui/log/CustomLogWindowController.h"
#include "ui/login/LoginWindowController.h"
#include "ui/main/MainWindowController.h"
#include "ui/preferences/PreferencesWindowController.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QFileInfo>
#include <curl/curl.h>

#include <algorithm>
#include <filesystem>
#include <limits>

namespace {

// The platform's code for an action that the user cancelled: nothing is shown for it.
constexpr int userCancelled = 3072;

// A settings file is edited by hand now and then; a limit below 1 would stop all work.
int limitFrom(const QVariant& value)
{
    return std::max(1, NumberReading::intValue(value));
}

} // namespace

QuillpostAppDelegate::QuillpostAppDelegate(Environment environment) : m_environment(std::move(environment))
{
    awakeFromNib();
}

QuillpostAppDelegate::~QuillpostAppDelegate()
{
    m_jobModel->endWork();
    m_curlCommandProcessor.reset();
    Log::shutDown();
}

void QuillpostAppDelegate::awakeFromNib()
{
    configureLogger();
    m_syncErrorList = std::make_unique<SyncErrorList>();
    m_curlCommandProcessor = std::make_unique<CUrlCommandProcessor>();
    m_curlCommandProcessor->start();
    m_curlCommandProcessor->setMaxNumOfCommandThreads(std::numeric_limits<int>::max());
    m_jobModel = std::make_unique<JobModel>(*this, m_environment.hosts);
    bindJobModel();
    connect(m_jobModel.get(), &JobModel::jobStopped, this, &QuillpostAppDelegate::jobStopped);
    connect(m_jobModel.get(), &JobModel::jobMayBeHeldTwice, this, [this](const std::shared_ptr<Job>& job) {
        presentError({ErrorDomain::SyncBase, 0,
                      tr("The submission of %1 was never confirmed; it is submitted again. The service may now hold it "
                         "twice: look for two jobs of this transcript.")
                          .arg(job->name())});
    });
    connect(m_jobModel.get(), &JobModel::deliveryHadProblems, this,
            [this](const std::shared_ptr<Job>& job, const QStringList& problems) {
                presentError({ErrorDomain::SyncBase, 0,
                              tr("%1 was delivered, but: %2").arg(job->name(), problems.join(QStringLiteral("; ")))});
            });
    m_jobModel->setCurlCommandProcessor(m_curlCommandProcessor.get());
    m_jobModel->setStatusCheckTimeInterval(m_environment.statusCheckTimeInterval);
    m_jobModel->setInstructionsCheckTimeInterval(m_environment.instructionsCheckTimeInterval);
    m_loginWindowController = std::make_unique<LoginWindowController>(*this);
    m_mainWindowController = std::make_unique<MainWindowController>(*this);
    m_submitJobWindowController = std::make_unique<SubmitJobWindowController>(*this);
    m_preferencesWindowController = std::make_unique<PreferencesWindowController>(*this);
    m_errorWindowController = std::make_unique<ErrorWindowController>(*this);
    // After the main window's own connection, which counts the error.
    QObject::connect(m_syncErrorList.get(), &SyncErrorList::errorInserted, m_mainWindowController.get(), [this] {
        if (m_errorWindowController->isShown())
            m_mainWindowController->errorsSeen();
    });
    m_customLogWindowController = std::make_unique<CustomLogWindowController>(*this);
}

void QuillpostAppDelegate::bindJobModel()
{
    UserDefaults& defaults = m_environment.defaults;
    JobModel* const model = m_jobModel.get();
    defaults.bind(SettingsKey::MaxNumberOfFfmpegProcesses, model,
                  [model](const QVariant& value) { model->setMaxNumberOfRunningFfmpegProcesses(limitFrom(value)); });
    defaults.bind(SettingsKey::MaxNumberOfUploads, model,
                  [model](const QVariant& value) { model->setMaxNumberOfRunningUploads(limitFrom(value)); });
    defaults.bind(SettingsKey::TemporaryFolder, model,
                  [model](const QVariant& value) { model->setTempFilesFolder(value.toString()); });
    defaults.bind(SettingsKey::DeliveryFolderPath, model,
                  [model](const QVariant& value) { model->setDeliveryFolder(value.toString()); });
    defaults.bind(SettingsKey::IsDownloadJobsOnlyFromThisMachine, model,
                  [model](const QVariant& value) { model->setIsOnlyDownloadJobsSentFromThisMachine(value.toBool()); });
}

void QuillpostAppDelegate::configureLogger()
{
    m_fileLogger = std::make_shared<FileLogger>(m_environment.logFolder);
    Log::configure({.fileLogger = m_fileLogger,
                    .standardError = m_environment.copiesLogToStandardError,
                    .systemLog = true,
                    .lowest = Log::Level::Info});
}

void QuillpostAppDelegate::showCurlInfo()
{
    Log::info("curl version: {}", curl_version());
}

QString QuillpostAppDelegate::temporaryFolder() const
{
    return m_environment.defaults.value(SettingsKey::TemporaryFolder).toString();
}

void QuillpostAppDelegate::applicationDidFinishLaunching()
{
    const QString folder = temporaryFolder();
    if (folder.isEmpty() || !PrivateFolder::make(folder))
        presentError({ErrorDomain::Platform, 0,
                      folder.isEmpty() ? tr("There is no folder for temporary files: this account has no home folder.")
                                       : tr("The folder for temporary files cannot be made: %1").arg(folder)});
    m_loginWindowController->showWindow();
    showCurlInfo();
}

void QuillpostAppDelegate::bringToFront()
{
    if (m_isTerminating)
        return;
    if (m_userName.isEmpty())
        m_loginWindowController->showWindow();
    else
        m_mainWindowController->showWindow();
}

void QuillpostAppDelegate::userLoggedIn(const QString& userName, const QString& password, const QString& contactID)
{
    m_loginWindowController->close();
    m_mainWindowController->showWindow();
    checkDeliveryFolder();
    if (m_isTerminating)
        return;
    m_userName = userName;
    m_userPassword = password;
    m_userContactID = contactID;
    m_jobModel->setUsername(userName);
    m_jobModel->setPassword(password);
    m_jobModel->setContactID(contactID);
    m_mainWindowController->setUserContactID(contactID);
    if (!takeSavedJobs())
        return;
    // First: the work that goes on begins as the jobs are read, and the user may be told of a problem meanwhile.
    m_jobModel->keepState(temporaryFolder());
    m_jobModel->loadState(temporaryFolder());
    m_ownsSavedJobs = true;
    m_jobModel->startJobProcessing();
}

// Two programs on the same saved jobs would send each other's jobs twice.
bool QuillpostAppDelegate::takeSavedJobs()
{
    const QString path = SavedState::filePath(temporaryFolder(), m_userName);
    while (!m_savedStateLock.take(path)) {
        const bool again = dialogs().ask({tr("Quillpost"),
                                          tr("The jobs of %1 are being worked on by another program: %2. End it, then "
                                             "try again.")
                                              .arg(m_userName, SavedStateLock::holder(path)),
                                          tr("Try Again"), tr("Quit Quillpost")});
        if (m_isTerminating)
            return false;
        if (!again) {
            terminate();
            return false;
        }
    }
    return true;
}

bool QuillpostAppDelegate::isDeliveryFolderUsable(const QString& path) const
{
    if (!QFileInfo::exists(path)) {
        std::error_code error;
        std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
        if (!QFileInfo::exists(path)) {
            Log::error("Error creating delivery folder: {}: {}", path, error.message());
            return false;
        }
    }
    const QFileInfo folder(path);
    return folder.isDir() && folder.isWritable();
}

void QuillpostAppDelegate::checkDeliveryFolder()
{
    if (isDeliveryFolderUsable(m_environment.defaults.value(SettingsKey::DeliveryFolderPath).toString()))
        return;
    dialogs().warn(tr("Warning"),
                   tr("Can not access previous delivery folder, resetting to default delivery location."));
    m_environment.defaults.removeValue(SettingsKey::DeliveryFolderPath);
}

QuillpostAppDelegate::TerminateReply QuillpostAppDelegate::applicationShouldTerminate()
{
    if (!m_jobModel->hasUncompletedLocalJobs())
        return TerminateReply::TerminateNow;
    // Asked once at a time, however often the user tries meanwhile.
    if (m_isAsking)
        return TerminateReply::TerminateCancel;
    m_isAsking = true;
    const bool quits = dialogs().ask({tr("Quillpost"), tr("Jobs are being processed. Do you want to quit Quillpost?"),
                                      tr("Quit Quillpost"), tr("Continue Processing")});
    m_isAsking = false;
    return quits ? TerminateReply::TerminateNow : TerminateReply::TerminateCancel;
}

void QuillpostAppDelegate::quit()
{
    if (!m_isTerminating && applicationShouldTerminate() == TerminateReply::TerminateNow)
        quitWithoutAsking();
}

void QuillpostAppDelegate::quitWithoutAsking()
{
    saveOrAsk();
    terminate();
}

void QuillpostAppDelegate::terminate()
{
    if (m_isTerminating)
        return;
    m_isTerminating = true;
    Q_EMIT terminated();
}

// A full disk must not cost the user the jobs without a word.
void QuillpostAppDelegate::saveOrAsk()
{
    if (!m_ownsSavedJobs || m_isStateSaved)
        return;
    while (const auto error = m_jobModel->saveState(temporaryFolder())) {
        if (m_isTerminating ||
            !dialogs().ask({tr("Quillpost"), tr("The jobs could not be saved: %1").arg(error->localizedDescription),
                            tr("Try Again"), tr("Quit Without Saving")}))
            return;
    }
}

void QuillpostAppDelegate::saveJobs()
{
    // Until they were read they are not this program's to write over, whatever question the user is answering.
    if (m_ownsSavedJobs)
        m_jobModel->saveState(temporaryFolder());
}

void QuillpostAppDelegate::applicationWillTerminate()
{
    if (m_isStateSaved)
        return;
    m_isStateSaved = true;
    saveJobs();
    if (m_environment.defaults.value(SettingsKey::AutoDeleteTempFiles).toBool())
        m_jobModel->deleteTempFiles();
}

bool QuillpostAppDelegate::endAllWork()
{
    m_isTerminating = true;
    const bool mustSave = !m_isStateSaved;
    m_jobModel->stopJobProcessing();
    applicationWillTerminate();
    const bool areAllEnded = OrderlyEnd::endAllWork(*m_jobModel, *m_curlCommandProcessor);
    if (mustSave)
        saveJobs(); // Once more: replies that came meanwhile count.
    m_environment.defaults.synchronize();
    return areAllEnded;
}

void QuillpostAppDelegate::presentError(const Error& error)
{
    m_lastPresented = error.localizedDescription;
    // The service's words may hold what it was sent.
    const Error shown =
        applicationWillPresentError({error.domain, error.code, Secrets::masked(error.localizedDescription)});
    if (shown.domain == ErrorDomain::Platform && shown.code == userCancelled)
        return;
    dialogs().warn(tr("Quillpost"), shown.localizedDescription);
}

// Most stops come with an error that says why. Those that have none, as of a recording that no sound can be made of,
// would leave the user before a job that stands still.
void QuillpostAppDelegate::jobStopped(const std::shared_ptr<Job>& job, const QString& reason)
{
    if (m_lastPresented != reason)
        presentError({ErrorDomain::SyncBase, 0, tr("%1 cannot go on: %2").arg(job->name(), reason)});
}

Error QuillpostAppDelegate::applicationWillPresentError(const Error& error)
{
    if (error.domain != ErrorDomain::SyncBase)
        return error;
    Log::error("Will show user error: {}", error.localizedDescription);
    m_jobModel->uploadLogFile();
    m_syncErrorList->addError(error);
    return {ErrorDomain::Platform, userCancelled, {}};
}
