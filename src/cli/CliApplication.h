#pragma once

#include "cli/CommandLine.h"
#include "cli/ExitCode.h"
#include "cli/Reporter.h"
#include "cli/ServiceRequest.h"
#include "commands/CUrlCommandProcessor.h"
#include "engine/JobModel.h"
#include "engine/SavedStateLock.h"
#include "foundation/ApplicationServices.h"
#include "foundation/FileLogger.h"
#include "foundation/UserDefaults.h"
#include "settings/PasswordVariables.h"
#include "settings/ServiceHosts.h"

#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

// The long-lived objects of one run of the command line, in the order in which they depend on each other, and what its
// commands share: the login, presented errors, and the orderly end. Main thread.
class CliApplication : public ApplicationServices
{
public:
    CliApplication(const CommandLine& line, PasswordVariables variables);
    ~CliApplication() override;
    CliApplication(const CliApplication&) = delete;
    CliApplication& operator=(const CliApplication&) = delete;

    // What has to hold before anything is sent: an address, an account, folders. Says what is wrong and gives false.
    [[nodiscard]] bool prepareForService();
    [[nodiscard]] bool prepareFolders();
    // For the runs that work on the saved jobs: one program at a time.
    [[nodiscard]] bool takeSavedJobs();
    // From here on the end of the run saves the engine's jobs.
    void setIsSaving(bool saving) { m_isSaving = saving; }

    // Sends the login; on success the engine has the credentials and `loggedIn` is called with the contact ID,
    // otherwise the run ends.
    void login(std::function<void(const QString& contactID)> loggedIn);
    // Sends a command of the run's own; `ended` is called once.
    void request(const std::shared_ptr<CUrlCommand>& command, ServiceRequest::Ended ended);

    // Presents the failure of a request of the run's own, after words that say what cannot be done.
    void presentFailure(const CUrlCommand& command, const QString& words);

    // Ends the run: with `code`, or with a service error where one was presented and `code` is Done.
    void end(ExitCode code);
    // Ends the run once the log that follows a presented error has been sent, but does not wait long for it.
    void endAfterLogUpload(ExitCode code);
    // Saves the jobs and ends the run.
    void interrupt();
    [[nodiscard]] bool hasEnded() const { return m_hasEnded; }

    void presentError(const Error& error) override;
    [[nodiscard]] std::shared_ptr<FileLogger> fileLogger() const override { return m_fileLogger; }

    [[nodiscard]] Reporter& reporter() { return *m_reporter; }
    [[nodiscard]] JobModel& jobModel() { return *m_jobModel; }
    [[nodiscard]] const ServiceHosts& hosts() const { return *m_hosts; }
    [[nodiscard]] const QString& user() const { return m_line.user; }
    [[nodiscard]] const QString& password() const { return m_password; }
    void setPassword(const QString& password) { m_password = password; }
    [[nodiscard]] QString tempFolder() const { return m_tempFolder; }

    enum class Secret { Password, NewPassword };
    // From the environment or the terminal; nothing, after words for the user, where neither has it.
    [[nodiscard]] std::optional<QString> secret(Secret which, const QString& prompt);
    [[nodiscard]] bool isNewPasswordInEnvironment() const { return m_variables.newPassword.has_value(); }

private:
    void configureLog();
    void makeEngine();
    [[nodiscard]] bool checkFolder(const QString& path, const QString& words);
    void loginEnded(const CUrlCommand& command, bool succeeded, const std::function<void(const QString&)>& loggedIn);
    void foldRepeats();
    void save();
    void finish(ExitCode code);

    const CommandLine m_line;
    const PasswordVariables m_variables;
    std::unique_ptr<Reporter> m_reporter;
    UserDefaults m_defaults;
    std::shared_ptr<FileLogger> m_fileLogger;
    std::optional<ServiceHosts> m_hosts;
    QString m_password;
    QString m_tempFolder;
    QString m_deliveryFolder;
    SavedStateLock m_savedStateLock;
    std::unique_ptr<JobModel> m_jobModel;
    std::vector<std::unique_ptr<ServiceRequest>> m_requests;
    std::unique_ptr<CUrlCommandProcessor> m_processor; // ends before those that observe its commands

    bool m_hasEnded = false;
    bool m_isSaving = false; // the engine holds jobs that must be saved
    std::optional<Error> m_saveError;
    bool m_wasErrorPresented = false;
    QString m_lastError;
    int m_repeats = 0;
    QTimer m_logUploadLimit;
    std::optional<ExitCode> m_codeAfterLogUpload;
};
