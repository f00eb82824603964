// What menus, buttons and the submit window ask for.
#include "app/QuillpostAppDelegate.h"
#include "engine/JobModel.h"
#include "foundation/UserDefaults.h"
#include "model/Job.h"
#include "settings/SettingsKey.h"
#include "ui/UserDialogs.h"
#include "ui/errors/ErrorWindowController.h"
#include "ui/log/CustomLogWindowController.h"
#include "ui/main/MainWindowController.h"
#include "ui/preferences/PreferencesWindowController.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QDir>
#include <QFileInfo>

void QuillpostAppDelegate::submitNewJob(const std::shared_ptr<Job>& job, bool andNew)
{
    m_jobModel->addJobsObject(job);
    m_submitJobWindowController->close();
    if (!andNew) {
        m_submitJobWindowController->setJob(nullptr);
        return;
    }
    const auto next = Job::job();
    next->setShortCaption(job->shortCaption());
    m_submitJobWindowController->setJob(next);
    m_submitJobWindowController->showWindow();
}

// What the user typed is given up by the user alone.
bool QuillpostAppDelegate::mayDiscardUnsubmittedJob()
{
    return !m_submitJobWindowController->hasUnsubmittedWork() ||
           !dialogs().ask({tr("Quillpost"),
                           tr("There is a job that you began and did not submit. Do you want to go on "
                              "with it?"),
                           tr("Continue Job"), tr("Start New Job"), /*isClosingDefault=*/true});
}

void QuillpostAppDelegate::showSubmitJobWindow()
{
    if (mayDiscardUnsubmittedJob())
        m_submitJobWindowController->setJob(nullptr);
    m_submitJobWindowController->showWindow();
}

void QuillpostAppDelegate::showSubmitJobWindowWithFiles(const QStringList& paths)
{
    // Files for a job that the user has in front of him are meant for that one.
    if (!m_submitJobWindowController->isShown() && mayDiscardUnsubmittedJob())
        m_submitJobWindowController->setJob(nullptr);
    m_submitJobWindowController->showWindow();
    m_submitJobWindowController->addDroppedFiles(paths);
}

void QuillpostAppDelegate::showPreferencesWindow()
{
    m_preferencesWindowController->showWindow();
}

void QuillpostAppDelegate::refreshJobsStatus()
{
    m_jobModel->checkJobsStatusOnServer();
}

void QuillpostAppDelegate::openDeliveryFolder()
{
    const QString path = m_environment.defaults.value(SettingsKey::DeliveryFolderPath).toString();
    if (!QFileInfo(path).isDir()) {
        dialogs().warn(tr("Quillpost"),
                       tr("The delivery folder is not there: %1. It is made when the first job is delivered, and "
                          "Preferences can choose another.")
                           .arg(path));
        return;
    }
    openUrl(QUrl::fromLocalFile(path));
}

void QuillpostAppDelegate::showErrorWindow()
{
    m_errorWindowController->showWindow();
    m_mainWindowController->errorsSeen();
}

void QuillpostAppDelegate::openAccountSettings()
{
    openUrl(QUrl(m_environment.hosts.secureUrl(QStringLiteral("/login"))));
}

void QuillpostAppDelegate::resetAndReloadFromServer()
{
    m_jobModel->resetAndLoadFromServer();
}

void QuillpostAppDelegate::showCustomLogWindow()
{
    m_customLogWindowController->showWindow();
}

void QuillpostAppDelegate::openUrl(const QUrl& url)
{
    if (!m_environment.open(url))
        dialogs().warn(
            tr("Quillpost"),
            tr("Nothing on this computer opens %1").arg(url.isLocalFile() ? url.toLocalFile() : url.toDisplayString()));
}
