#include "cli/CliApplication.h"

#include "cli/Terminal.h"
#include "commands/AccountReplies.h"
#include "commands/LoginCommand.h"
#include "engine/OrderlyEnd.h"
#include "engine/SavedState.h"
#include "foundation/Interruption.h"
#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/NumberReading.h"
#include "foundation/PrivateFolder.h"
#include "foundation/Secrets.h"
#include "foundation/Text.h"
#include "foundation/UserFolders.h"
#include "settings/Preferences.h"
#include "settings/SettingsKey.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <limits>

namespace {

constexpr std::chrono::milliseconds longestLogUpload{3000};

int storedLimit(const UserDefaults& defaults, const QString& key)
{
    // A settings file is edited by hand now and then; a limit below 1 would stop all work.
    return std::max(1, NumberReading::intValue(defaults.value(key)));
}

} // namespace

CliApplication::CliApplication(const CommandLine& line, PasswordVariables variables)
    : m_line(line), m_variables(std::move(variables)), m_reporter(Reporter::make(line.json)),
      m_defaults(UserFolders::settingsFilePath())
{
    UserDefaults::setStandard(&m_defaults);
    configureLog();
    Preferences::initialize(m_defaults);
    m_logUploadLimit.setSingleShot(true);
    QObject::connect(&m_logUploadLimit, &QTimer::timeout, &m_logUploadLimit, [this] {
        if (m_codeAfterLogUpload)
            end(*m_codeAfterLogUpload);
    });
}

CliApplication::~CliApplication()
{
    UserDefaults::setStandard(nullptr);
}

void CliApplication::configureLog()
{
    m_fileLogger = std::make_shared<FileLogger>(UserFolders::logFolder());
    Log::configure({.fileLogger = m_fileLogger,
                    .standardError = m_line.verbose,
                    .systemLog = true,
                    .lowest = m_line.verbose ? Log::Level::Verbose : Log::Level::Info});
}

bool CliApplication::prepareForService()
{
    auto hosts = ServiceHosts::read(m_line.secureHost, m_line.fileHost, m_defaults);
    if (const auto* const error = std::get_if<Error>(&hosts)) {
        m_reporter->error(error->localizedDescription);
        return false;
    }
    m_hosts = std::get<ServiceHosts>(std::move(hosts));
    if (m_line.user.isEmpty()) {
        m_reporter->error(QStringLiteral("No user name: give --user NAME or set QUILLPOST_USER."));
        return false;
    }
    const auto password = secret(Secret::Password, Text::format("Password of {}: ", m_line.user));
    if (!password)
        return false;
    m_password = *password;
    makeEngine();
    return true;
}

std::optional<QString> CliApplication::secret(Secret which, const QString& prompt)
{
    const auto& variable = which == Secret::Password ? m_variables.password : m_variables.newPassword;
    const auto answer = variable ? variable : Terminal::askSecret(prompt);
    if (answer && !answer->isEmpty()) {
        Secrets::add(*answer);
        return answer;
    }
    if (!Interruption::isRequested())
        m_reporter->error(Text::format("No password: set {}, or answer on a terminal.",
                                       which == Secret::Password ? PasswordVariables::passwordName
                                                                 : PasswordVariables::newPasswordName));
    return std::nullopt;
}

bool CliApplication::takeSavedJobs()
{
    const QString path = SavedState::filePath(m_tempFolder, user());
    if (m_savedStateLock.take(path))
        return true;
    m_reporter->error(Text::format("The jobs of {} in {} are being worked on by {}. Wait for it, or use another "
                                   "--temp-folder.",
                                   user(), m_tempFolder, SavedStateLock::holder(path)));
    return false;
}

void CliApplication::makeEngine()
{
    m_jobModel = std::make_unique<JobModel>(*this, *m_hosts);
    m_processor = std::make_unique<CUrlCommandProcessor>();
    m_processor->start();
    m_processor->setMaxNumOfCommandThreads(std::numeric_limits<int>::max());
    m_jobModel->setCurlCommandProcessor(m_processor.get());
    m_jobModel->setMaxNumberOfRunningFfmpegProcesses(
        m_line.maxFfmpeg.value_or(storedLimit(m_defaults, SettingsKey::MaxNumberOfFfmpegProcesses)));
    m_jobModel->setMaxNumberOfRunningUploads(
        m_line.maxUploads.value_or(storedLimit(m_defaults, SettingsKey::MaxNumberOfUploads)));
    m_jobModel->setIsOnlyDownloadJobsSentFromThisMachine(
        m_defaults.value(SettingsKey::IsDownloadJobsOnlyFromThisMachine).toBool());
    m_jobModel->setStatusCheckTimeInterval(m_line.pollInterval);
    m_jobModel->setInstructionsCheckTimeInterval(m_line.pollInterval);
    QObject::connect(m_jobModel.get(), &JobModel::logFileUploadEnded, m_jobModel.get(), [this] {
        if (m_codeAfterLogUpload)
            m_logUploadLimit.start(0); // After the reply's own handling.
    });
}

bool CliApplication::checkFolder(const QString& path, const QString& words)
{
    if (!path.isEmpty() && QFileInfo(path).isDir() && QFileInfo(path).isWritable())
        return true;
    m_reporter->error(Text::format("{}: {} cannot be made or written.", words, path));
    return false;
}

bool CliApplication::prepareFolders()
{
    const auto folder = [this](const std::optional<QString>& given, const QString& key) {
        return given ? QFileInfo(*given).absoluteFilePath() : m_defaults.value(key).toString();
    };
    m_tempFolder = folder(m_line.tempFolder, SettingsKey::TemporaryFolder);
    m_deliveryFolder = folder(m_line.deliveryFolder, SettingsKey::DeliveryFolderPath);
    PrivateFolder::make(m_tempFolder);
    if (!checkFolder(m_tempFolder, QStringLiteral("The temporary folder")))
        return false;
    // The delivered files are for whom the user means them: they have the modes that the user's mask gives.
    if (!m_deliveryFolder.isEmpty())
        QDir().mkpath(m_deliveryFolder);
    if (!checkFolder(m_deliveryFolder, QStringLiteral("The delivery folder")))
        return false;
    m_jobModel->setTempFilesFolder(m_tempFolder);
    m_jobModel->setDeliveryFolder(m_deliveryFolder);
    return true;
}

void CliApplication::request(const std::shared_ptr<CUrlCommand>& command, ServiceRequest::Ended ended)
{
    m_requests.push_back(std::make_unique<ServiceRequest>(
        *m_processor, command, [this, ended = std::move(ended)](CUrlCommand& finished, bool succeeded) {
            if (!m_hasEnded)
                ended(finished, succeeded);
        }));
}

void CliApplication::presentFailure(const CUrlCommand& command, const QString& words)
{
    Error error = command.error();
    error.localizedDescription = Text::format("{}: {}", words, error.localizedDescription);
    presentError(error);
}

void CliApplication::login(std::function<void(const QString&)> loggedIn)
{
    request(LoginCommand::loginCommandWithUser(*m_hosts, user(), m_password),
            [this, loggedIn = std::move(loggedIn)](CUrlCommand& command, bool succeeded) {
                loginEnded(command, succeeded, loggedIn);
            });
}

void CliApplication::loginEnded(const CUrlCommand& command, bool succeeded,
                                const std::function<void(const QString&)>& loggedIn)
{
    if (!succeeded) {
        presentFailure(command, QStringLiteral("Login error"));
        end(ExitCode::ServiceError);
        return;
    }
    const AccountReplies::Login reply = AccountReplies::readLogin(command.dataAsString());
    switch (reply.outcome) {
    case AccountReplies::LoginOutcome::MustChangePassword:
        m_reporter->error(QStringLiteral("The service asks for a new password first: run change-password."));
        end(ExitCode::LoginRefused);
        return;
    case AccountReplies::LoginOutcome::Refused:
        m_reporter->error(reply.text.isEmpty() ? QStringLiteral("The service refused the login without a word.")
                                               : reply.text);
        end(ExitCode::LoginRefused);
        return;
    case AccountReplies::LoginOutcome::LoggedIn:
        break;
    }
    Log::info("User {} logged in succesfully. Contact ID = {}", user(), reply.text);
    m_jobModel->setUsername(user());
    m_jobModel->setPassword(m_password);
    m_jobModel->setContactID(reply.text);
    loggedIn(reply.text);
}

void CliApplication::presentError(const Error& error)
{
    if (error.domain == ErrorDomain::SyncBase) {
        Log::error("Will show user error: {}", error.localizedDescription);
        m_wasErrorPresented = true;
        if (m_jobModel)
            m_jobModel->uploadLogFile();
    }
    // While the service cannot be reached each failure leads to the next log upload, and that to the next failure.
    if (error.localizedDescription == m_lastError) {
        ++m_repeats;
        return;
    }
    foldRepeats();
    m_lastError = error.localizedDescription;
    m_reporter->error(error.localizedDescription);
}

void CliApplication::foldRepeats()
{
    if (m_repeats > 0)
        m_reporter->note(Text::format("(the same {} more times)", m_repeats));
    m_repeats = 0;
}

void CliApplication::endAfterLogUpload(ExitCode code)
{
    if (m_codeAfterLogUpload)
        return;
    m_codeAfterLogUpload = code;
    m_logUploadLimit.start(longestLogUpload);
}

void CliApplication::interrupt()
{
    end(ExitCode::Interrupted);
}

void CliApplication::save()
{
    m_saveError = m_jobModel->saveState(m_tempFolder);
}

void CliApplication::end(ExitCode code)
{
    if (m_hasEnded)
        return;
    m_hasEnded = true;
    foldRepeats();
    if (m_jobModel)
        m_jobModel->stopJobProcessing();
    if (m_isSaving)
        save();
    if (code == ExitCode::Done && m_wasErrorPresented)
        code = ExitCode::ServiceError;
    if (Interruption::isRequested())
        code = ExitCode::Interrupted;
    // The rest in a turn of its own: this may be called by a command's observer, for which its thread waits.
    QTimer::singleShot(0, &m_logUploadLimit, [this, code] { finish(code); });
}

void CliApplication::finish(ExitCode code)
{
    bool areAllEnded = true;
    if (m_jobModel)
        areAllEnded = OrderlyEnd::endAllWork(*m_jobModel, *m_processor);
    if (m_isSaving) {
        save(); // Once more: replies that came meanwhile count.
        if (m_defaults.value(SettingsKey::AutoDeleteTempFiles).toBool())
            m_jobModel->deleteTempFiles();
        if (m_saveError)
            m_reporter->error(Text::format("The jobs could not be saved: {}", m_saveError->localizedDescription));
        else if (code == ExitCode::Interrupted)
            m_reporter->note(QStringLiteral("Interrupted; the jobs are saved, \"resume\" goes on from here."));
    } else if (code == ExitCode::Interrupted && m_line.command == CommandLine::Command::Submit) {
        m_reporter->note(QStringLiteral("Interrupted before anything was submitted."));
    }
    m_defaults.synchronize();
    if (!areAllEnded) {
        Log::warning("The end did not wait for a transfer that hangs");
        Log::shutDown();
        std::_Exit(static_cast<int>(code));
    }
    QCoreApplication::exit(static_cast<int>(code));
}
