#include "ui/login/LoginWindowController.h"

#include "commands/AccountReplies.h"
#include "commands/CUrlCommandProcessor.h"
#include "commands/ChangePasswordCommand.h"
#include "commands/LoginCommand.h"
#include "foundation/Assertion.h"
#include "foundation/Log.h"
#include "foundation/Secrets.h"
#include "foundation/ShownText.h"
#include "ui/ApplicationController.h"

#include <utility>

namespace {

constexpr int shortestPassword = 4;

} // namespace

LoginWindowController::LoginWindowController(ApplicationController& application) : m_application(application)
{
    awakeFromNib();
}

LoginWindowController::~LoginWindowController()
{
    // The command may still run; its end is told on this thread, and then to nobody.
    if (m_request)
        m_request->setObserver(nullptr);
}

void LoginWindowController::awakeFromNib()
{
    setViewState(LoginMode);
    layoutWindow(/*animate=*/false);
    m_curlCommandProcessor = &m_application.curlCommandProcessor();
}

// --- What was typed ---

bool LoginWindowController::isValidUserName(const QString& text)
{
    return !text.isEmpty();
}

bool LoginWindowController::isValidPassword(const QString& text)
{
    return text.size() >= shortestPassword;
}

void LoginWindowController::setUsername(const QString& username)
{
    m_username = username;
    Q_EMIT usernameChanged();
    refreshLoginButtonState();
}

void LoginWindowController::setPassword(const QString& password)
{
    m_password = password;
    Q_EMIT passwordChanged();
    refreshLoginButtonState();
}

void LoginWindowController::setTheNewPassword(const QString& theNewPassword)
{
    m_theNewPassword = theNewPassword;
    Q_EMIT theNewPasswordChanged();
    refreshChangeButtonState();
}

void LoginWindowController::setTheNewPasswordConfirm(const QString& theNewPasswordConfirm)
{
    m_theNewPasswordConfirm = theNewPasswordConfirm;
    Q_EMIT theNewPasswordConfirmChanged();
    refreshChangeButtonState();
}

void LoginWindowController::refreshLoginButtonState()
{
    m_isLoginButtonEnabled = isValidUserName(m_username) && isValidPassword(m_password);
    Q_EMIT isLoginButtonEnabledChanged();
}

void LoginWindowController::refreshChangeButtonState()
{
    // Whether the two are the same is told when the button is pressed, not while the second is being typed.
    m_isChangeButtonEnabled = isValidPassword(m_theNewPassword) && isValidPassword(m_theNewPasswordConfirm);
    Q_EMIT isChangeButtonEnabledChanged();
}

QString LoginWindowController::newPasswordHint() const
{
    return tr("The service asks for a new password. Choose one of at least %1 characters.").arg(shortestPassword);
}

// --- The message line ---

void LoginWindowController::setLoginResultString(const QString& loginResultString)
{
    showTrouble(loginResultString, {});
}

void LoginWindowController::showTrouble(const QString& result, const QString& detail)
{
    m_loginResultString = result;
    m_failureDetail = detail;
    Q_EMIT loginResultStringChanged();
    Q_EMIT messageChanged();
}

QString LoginWindowController::messageText() const
{
    if (m_waitingForResponse)
        return m_waitingText;
    return m_failureDetail.isEmpty() ? m_loginResultString : m_loginResultString + u'\n' + m_failureDetail;
}

bool LoginWindowController::isTroubleShown() const
{
    return !m_waitingForResponse && !m_loginResultString.isEmpty();
}

// --- The panels ---

void LoginWindowController::setViewState(int viewState)
{
    m_viewState = viewState;
    Q_EMIT viewStateChanged();
}

void LoginWindowController::layoutWindow(bool animate)
{
    const bool isKnown = m_viewState == LoginMode || m_viewState == ChangePasswordMode;
    if (!Assertion::check(isKnown, "unknown view mode"))
        return;
    m_laidOutState = m_viewState;
    Q_EMIT layoutRequested(animate);
}

// --- Requests ---

void LoginWindowController::performLogin()
{
    if (m_waitingForResponse)
        return;
    Secrets::add(m_password);
    post(LoginCommand::loginCommandWithUser(m_application.serviceHosts(), m_username, m_password), tr("Logging in…"));
}

void LoginWindowController::changePassword()
{
    if (m_waitingForResponse)
        return;
    if (const auto refusal =
            AccountReplies::refusalOfNewPassword(m_theNewPassword, m_theNewPasswordConfirm, m_password)) {
        setLoginResultString(*refusal);
        return;
    }
    Secrets::add(m_theNewPassword);
    post(ChangePasswordCommand::changePasswordCommandWithUser(m_application.serviceHosts(), m_username, m_password,
                                                              m_theNewPassword),
         tr("Changing the password…"));
}

void LoginWindowController::post(const std::shared_ptr<CUrlCommand>& command, const QString& waitingText)
{
    m_request = command;
    command->setObserver(this);
    m_curlCommandProcessor->postCommand(command);
    m_waitingText = waitingText;
    m_waitingForResponse = true;
    Q_EMIT waitingForResponseChanged();
    Q_EMIT messageChanged();
}

void LoginWindowController::endWaiting()
{
    m_request.reset();
    // What an earlier request came to is over; it is not to be shown, or spoken, once more before the new outcome.
    m_loginResultString.clear();
    m_failureDetail.clear();
    m_waitingForResponse = false;
    Q_EMIT loginResultStringChanged();
    Q_EMIT waitingForResponseChanged();
    Q_EMIT messageChanged();
}

// --- Replies ---

namespace {

// The service's own words are the message. A refusal without words would leave the user before an empty line.
QString reasonOf(const QString& reply)
{
    return reply.trimmed().isEmpty() ? LoginWindowController::tr("The service gave no reason.")
                                     : Secrets::masked(ShownText::of(reply));
}

} // namespace

void LoginWindowController::processLoginResponse(const QString& reply)
{
    endWaiting();
    const AccountReplies::Login login = AccountReplies::readLogin(reply);
    switch (login.outcome) {
    case AccountReplies::LoginOutcome::MustChangePassword:
        setViewState(ChangePasswordMode);
        layoutWindow(/*animate=*/false);
        setLoginResultString(QStringLiteral(""));
        return;
    case AccountReplies::LoginOutcome::LoggedIn:
        loginSuccesfully(login.text);
        return;
    case AccountReplies::LoginOutcome::Refused:
        setLoginResultString(reasonOf(login.text));
        return;
    }
}

void LoginWindowController::loginSuccesfully(const QString& contactID)
{
    Log::info("User {} logged in succesfully. Contact ID = {}", m_username, contactID);
    m_application.userLoggedIn(m_username, m_password, contactID);
}

void LoginWindowController::processChangePasswordResponse(const QString& reply)
{
    endWaiting();
    if (!AccountReplies::isPasswordChanged(reply)) {
        setLoginResultString(reasonOf(reply));
        return;
    }
    setPassword(m_theNewPassword);
    performLogin();
}

void LoginWindowController::curlCommandDone(CUrlCommand& command)
{
    if (dynamic_cast<LoginCommand*>(&command))
        processLoginResponse(command.dataAsString());
    else if (dynamic_cast<ChangePasswordCommand*>(&command))
        processChangePasswordResponse(command.dataAsString());
}

void LoginWindowController::curlCommandFailed(CUrlCommand& command)
{
    Log::error("{}", command.dataAsString());
    const Error error = willPresentError(command.error());
    endWaiting();
    // The line's own word is the same for every failure; what failed stands below it, since the list of errors comes
    // with the main window.
    showTrouble(tr("Error"), error.localizedDescription);
    m_application.presentError(error);
}

Error LoginWindowController::willPresentError(const Error& error)
{
    return ErrorPresentation::described(error, tr("Login error: %@"));
}
