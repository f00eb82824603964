#pragma once

#include "ui-support/ScriptedDialogs.h"

#include "commands/CUrlCommandProcessor.h"
#include "engine/JobModel.h"
#include "ui/ApplicationController.h"
#include "ui/errors/SyncErrorList.h"

#include <QList>
#include <QStringList>
#include <QUrl>

#include <memory>

// An application for the test of one window: real error list, command processor and engine (neither is started unless
// the test does), and a record of what the window asked for. `hosts` may be those of a demo service.
class RecordingApplication : public ApplicationController
{
public:
    explicit RecordingApplication(ServiceHosts hosts = unreachableHosts());
    ~RecordingApplication() override;

    // Starts the command processor, for tests whose requests are to be answered.
    void startCommands();

    [[nodiscard]] QString userName() const override { return name; }
    [[nodiscard]] QString userPassword() const override { return password; }
    [[nodiscard]] QString userContactID() const override { return contactID; }
    [[nodiscard]] CUrlCommandProcessor& curlCommandProcessor() override { return *m_processor; }
    [[nodiscard]] JobModel& jobModel() override { return *m_jobModel; }
    [[nodiscard]] SyncErrorList& syncErrorList() override { return m_syncErrorList; }
    [[nodiscard]] const ServiceHosts& serviceHosts() const override { return m_hosts; }
    [[nodiscard]] UserDefaults& userDefaults() override;
    [[nodiscard]] UserDialogs& dialogs() override { return scriptedDialogs; }
    [[nodiscard]] std::shared_ptr<FileLogger> fileLogger() const override { return logger; }

    void presentError(const Error& error) override { presented.append(error); }
    void userLoggedIn(const QString& userName, const QString& userPassword, const QString& userContactID) override;
    void submitNewJob(const std::shared_ptr<Job>& job, bool andNew) override;
    void showSubmitJobWindow() override { record("showSubmitJobWindow"); }
    void showSubmitJobWindowWithFiles(const QStringList& paths) override;
    void showPreferencesWindow() override { record("showPreferencesWindow"); }
    void refreshJobsStatus() override { record("refreshJobsStatus"); }
    void openDeliveryFolder() override { record("openDeliveryFolder"); }
    void showErrorWindow() override { record("showErrorWindow"); }
    void openAccountSettings() override { record("openAccountSettings"); }
    void resetAndReloadFromServer() override { record("resetAndReloadFromServer"); }
    void showCustomLogWindow() override { record("showCustomLogWindow"); }
    void quit() override { record("quit"); }
    void openUrl(const QUrl& url) override { opened.append(url); }

    // Nobody listens there.
    [[nodiscard]] static ServiceHosts unreachableHosts();

    QString name;
    QString password;
    QString contactID;
    std::shared_ptr<FileLogger> logger;
    ScriptedDialogs scriptedDialogs;

    // What was asked for, oldest first.
    QStringList actions;
    QList<Error> presented;
    QList<QUrl> opened;
    QStringList droppedFiles;
    struct Submission
    {
        std::shared_ptr<Job> job;
        bool andNew = false;
    };
    QList<Submission> submitted;
    struct Login
    {
        QString name;
        QString password;
        QString contactID;
    };
    QList<Login> logins;

private:
    void record(const char* action) { actions.append(QString::fromLatin1(action)); }

    const ServiceHosts m_hosts;
    SyncErrorList m_syncErrorList;
    std::unique_ptr<JobModel> m_jobModel;
    std::unique_ptr<CUrlCommandProcessor> m_processor; // ends before the engine, which observes its commands
};
