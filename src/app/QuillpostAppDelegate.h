#pragma once

#include "engine/SavedStateLock.h"
#include "foundation/FileLogger.h"
#include "ui/ApplicationController.h"

#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>

class CustomLogWindowController;
class ErrorWindowController;
class LoginWindowController;
class MainWindowController;
class PreferencesWindowController;
class SubmitJobWindowController;

// The application's one central controller: builds the long-lived objects in a fixed order, takes over when the user
// has logged in, answers menus and buttons, guards quitting, saves the jobs at the end, and collects the errors of the
// service in a list. Without a widget: the windows are made over its controllers (see DesktopWindows).
//
// Main thread. Owns what it makes; what is handed in must outlive it. There is no logging out.
class QuillpostAppDelegate : public QObject, public ApplicationController
{
    Q_OBJECT
public:
    struct Environment
    {
        UserDefaults& defaults; // Preferences::initialize() has been called on it
        UserDialogs& dialogs;
        ServiceHosts hosts;
        // Opens a page or a folder outside the program; false when nothing could.
        std::function<bool(const QUrl&)> open;
        double statusCheckTimeInterval = 60.0;       // seconds
        double instructionsCheckTimeInterval = 60.0; // seconds
        // Where the log files lie.
        QString logFolder = {};
        bool copiesLogToStandardError = true;
    };

    enum class TerminateReply { TerminateNow, TerminateCancel };

    explicit QuillpostAppDelegate(Environment environment); // awakeFromNib()
    ~QuillpostAppDelegate() override;

    // --- The life of the application, in this order ---
    // Makes the temporary folder and shows the login window.
    void applicationDidFinishLaunching();
    // Shows the window that the user has got to: the log-in, or the list of jobs.
    void bringToFront();
    [[nodiscard]] static bool applicationShouldTerminateAfterLastWindowClosed() { return true; }
    // Asks the user while jobs are being worked on.
    [[nodiscard]] TerminateReply applicationShouldTerminate();
    // Saves the jobs and deletes the temporary files if set so. Once; later calls do nothing.
    void applicationWillTerminate();
    // Ends the engine and the transfers, and saves what changed meanwhile. False when a transfer hangs: see
    // OrderlyEnd. No question is put to the user from here on.
    [[nodiscard]] bool endAllWork();
    // The error to show, or one with the code of a cancelled action, which shows nothing.
    [[nodiscard]] Error applicationWillPresentError(const Error& error);

    // Steps of the above.
    void configureLogger();
    void checkDeliveryFolder();
    static void showCurlInfo();

    // Keeps what there is without ending anything, as when the user's session may end.
    void saveJobs();

    // What quit() does once the user has agreed.
    void quitWithoutAsking();
    // Quits at once, as when the user's session ends.
    void terminate();
    [[nodiscard]] bool isTerminating() const { return m_isTerminating; }

    // --- ApplicationController ---
    [[nodiscard]] QString userName() const override { return m_userName; }
    [[nodiscard]] QString userPassword() const override { return m_userPassword; }
    [[nodiscard]] QString userContactID() const override { return m_userContactID; }
    [[nodiscard]] CUrlCommandProcessor& curlCommandProcessor() override { return *m_curlCommandProcessor; }
    [[nodiscard]] JobModel& jobModel() override { return *m_jobModel; }
    [[nodiscard]] SyncErrorList& syncErrorList() override { return *m_syncErrorList; }
    [[nodiscard]] const ServiceHosts& serviceHosts() const override { return m_environment.hosts; }
    [[nodiscard]] UserDefaults& userDefaults() override { return m_environment.defaults; }
    [[nodiscard]] UserDialogs& dialogs() override { return m_environment.dialogs; }
    [[nodiscard]] std::shared_ptr<FileLogger> fileLogger() const override { return m_fileLogger; }
    void presentError(const Error& error) override;
    void userLoggedIn(const QString& userName, const QString& password, const QString& contactID) override;
    void submitNewJob(const std::shared_ptr<Job>& job, bool andNew) override;
    // Where a job was begun and not submitted, asks whether to go on with that one.
    void showSubmitJobWindow() override;
    void showSubmitJobWindowWithFiles(const QStringList& paths) override;
    void showPreferencesWindow() override;
    void refreshJobsStatus() override;
    void openDeliveryFolder() override;
    void showErrorWindow() override;
    void openAccountSettings() override;
    void resetAndReloadFromServer() override;
    void showCustomLogWindow() override;
    void quit() override;
    void openUrl(const QUrl& url) override;

    // --- The controllers of the windows ---
    [[nodiscard]] LoginWindowController& loginWindowController() { return *m_loginWindowController; }
    [[nodiscard]] MainWindowController& mainWindowController() { return *m_mainWindowController; }
    [[nodiscard]] SubmitJobWindowController& submitJobWindowController() { return *m_submitJobWindowController; }
    [[nodiscard]] PreferencesWindowController& preferencesWindowController() { return *m_preferencesWindowController; }
    [[nodiscard]] ErrorWindowController& errorWindowController() { return *m_errorWindowController; }
    [[nodiscard]] CustomLogWindowController& customLogWindowController() { return *m_customLogWindowController; }

Q_SIGNALS:
    // The program is to end: the main loop returns, then comes endAllWork().
    void terminated();

private:
    void awakeFromNib();
    void bindJobModel();
    [[nodiscard]] bool takeSavedJobs();
    [[nodiscard]] QString temporaryFolder() const;
    [[nodiscard]] bool isDeliveryFolderUsable(const QString& path) const;
    [[nodiscard]] bool mayDiscardUnsubmittedJob();
    void saveOrAsk();
    void jobStopped(const std::shared_ptr<Job>& job, const QString& reason);

    Environment m_environment;
    std::shared_ptr<FileLogger> m_fileLogger;
    std::unique_ptr<SyncErrorList> m_syncErrorList;
    SavedStateLock m_savedStateLock;
    std::unique_ptr<JobModel> m_jobModel;
    // Observers of commands: they must live until the processor has ended.
    std::unique_ptr<LoginWindowController> m_loginWindowController;
    std::unique_ptr<MainWindowController> m_mainWindowController;
    std::unique_ptr<SubmitJobWindowController> m_submitJobWindowController;
    std::unique_ptr<PreferencesWindowController> m_preferencesWindowController;
    std::unique_ptr<ErrorWindowController> m_errorWindowController;
    std::unique_ptr<CustomLogWindowController> m_customLogWindowController;
    std::unique_ptr<CUrlCommandProcessor> m_curlCommandProcessor; // ends before all that observe its commands

    QString m_userName;
    QString m_userPassword;
    QString m_userContactID;
    QString m_lastPresented;      // the words of the error
    bool m_ownsSavedJobs = false; // read, and locked against other programs
    bool m_isAsking = false;      // the question whether to quit is on the screen
    bool m_isTerminating = false;
    bool m_isStateSaved = false;
};
