#pragma once

#include "foundation/ApplicationServices.h"
#include "settings/ServiceHosts.h"

#include <QString>
#include <QStringList>

#include <memory>

class CUrlCommandProcessor;
class Job;
class JobModel;
class QUrl;
class SyncErrorList;
class UserDefaults;
class UserDialogs;

// What the windows ask of the application. Implemented once; it outlives every controller and window. Main thread.
class ApplicationController : public ApplicationServices
{
public:
    // --- Who is logged in; empty before ---
    [[nodiscard]] virtual QString userName() const = 0;
    [[nodiscard]] virtual QString userPassword() const = 0;
    [[nodiscard]] virtual QString userContactID() const = 0;

    // --- The long-lived objects ---
    [[nodiscard]] virtual CUrlCommandProcessor& curlCommandProcessor() = 0;
    [[nodiscard]] virtual JobModel& jobModel() = 0;
    [[nodiscard]] virtual SyncErrorList& syncErrorList() = 0;
    [[nodiscard]] virtual const ServiceHosts& serviceHosts() const = 0;
    [[nodiscard]] virtual UserDefaults& userDefaults() = 0;
    [[nodiscard]] virtual UserDialogs& dialogs() = 0;

    // --- Calls from the windows ---
    // After a successful login: the main window takes over.
    virtual void userLoggedIn(const QString& userName, const QString& password, const QString& contactID) = 0;
    // Takes the job into the engine and closes the submit window; with `andNew`, opens it again for the next job of
    // the same case.
    virtual void submitNewJob(const std::shared_ptr<Job>& job, bool andNew) = 0;

    // --- Actions of menus and buttons ---
    virtual void showSubmitJobWindow() = 0;
    // The same, with these files in it: dropped on the list of jobs. Files the window already holds stay.
    virtual void showSubmitJobWindowWithFiles(const QStringList& paths) = 0;
    virtual void showPreferencesWindow() = 0;
    virtual void refreshJobsStatus() = 0;
    virtual void openDeliveryFolder() = 0;
    virtual void showErrorWindow() = 0;
    virtual void openAccountSettings() = 0;
    virtual void resetAndReloadFromServer() = 0;
    virtual void showCustomLogWindow() = 0;
    // Ends the program, unless the user chooses to go on.
    virtual void quit() = 0;

    // Opens a page or a folder outside the program.
    virtual void openUrl(const QUrl& url) = 0;
};
