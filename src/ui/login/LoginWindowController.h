#pragma once

#include "commands/CUrlCommandResultObserver.h"
#include "foundation/Error.h"
#include "ui/WindowController.h"

#include <QString>

#include <memory>

class ApplicationController;
class CUrlCommand;
class CUrlCommandProcessor;

// The first window: asks for user name and password, changes the password where the service demands it, and hands the
// account to the application. Main thread. `application` outlives it; a request under way when it is destroyed is
// answered to nobody.
class LoginWindowController : public WindowController, public CUrlCommandResultObserver
{
    Q_OBJECT
    Q_PROPERTY(QString username READ username WRITE setUsername NOTIFY usernameChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(QString theNewPassword READ theNewPassword WRITE setTheNewPassword NOTIFY theNewPasswordChanged)
    Q_PROPERTY(QString theNewPasswordConfirm READ theNewPasswordConfirm WRITE setTheNewPasswordConfirm NOTIFY
                   theNewPasswordConfirmChanged)
    Q_PROPERTY(
        QString loginResultString READ loginResultString WRITE setLoginResultString NOTIFY loginResultStringChanged)
    Q_PROPERTY(bool waitingForResponse READ waitingForResponse NOTIFY waitingForResponseChanged)
    Q_PROPERTY(bool isLoginButtonEnabled READ isLoginButtonEnabled NOTIFY isLoginButtonEnabledChanged)
    Q_PROPERTY(bool isChangeButtonEnabled READ isChangeButtonEnabled NOTIFY isChangeButtonEnabledChanged)
    Q_PROPERTY(int viewState READ viewState WRITE setViewState NOTIFY viewStateChanged)
    Q_PROPERTY(bool areControlsEnabled READ areControlsEnabled NOTIFY waitingForResponseChanged)
    Q_PROPERTY(QString messageText READ messageText NOTIFY messageChanged)
    Q_PROPERTY(bool isTroubleShown READ isTroubleShown NOTIFY messageChanged)
    Q_PROPERTY(QString newPasswordHint READ newPasswordHint CONSTANT)
public:
    enum ViewState : int { LoginMode = 0, ChangePasswordMode = 1 };

    explicit LoginWindowController(ApplicationController& application);
    ~LoginWindowController() override;

    [[nodiscard]] QString username() const { return m_username; }
    void setUsername(const QString& username);
    [[nodiscard]] QString password() const { return m_password; }
    void setPassword(const QString& password);
    [[nodiscard]] QString theNewPassword() const { return m_theNewPassword; }
    void setTheNewPassword(const QString& theNewPassword);
    [[nodiscard]] QString theNewPasswordConfirm() const { return m_theNewPasswordConfirm; }
    void setTheNewPasswordConfirm(const QString& theNewPasswordConfirm);
    // What came of the last request. Words of the service are plain text, whatever markup they seem to hold.
    [[nodiscard]] QString loginResultString() const { return m_loginResultString; }
    void setLoginResultString(const QString& loginResultString);
    // True exactly while a request is outstanding.
    [[nodiscard]] bool waitingForResponse() const { return m_waitingForResponse; }
    // From what was typed alone, whether or not a request is outstanding.
    [[nodiscard]] bool isLoginButtonEnabled() const { return m_isLoginButtonEnabled; }
    [[nodiscard]] bool isChangeButtonEnabled() const { return m_isChangeButtonEnabled; }
    // A ViewState; takes effect with layoutWindow().
    [[nodiscard]] int viewState() const { return m_viewState; }
    void setViewState(int viewState);

    // Nothing can be typed or pressed while a request is outstanding.
    [[nodiscard]] bool areControlsEnabled() const { return !m_waitingForResponse; }
    // The line under the fields: what is waited for, else loginResultString, with what failed below it.
    [[nodiscard]] QString messageText() const;
    // The line tells of something that went wrong.
    [[nodiscard]] bool isTroubleShown() const;
    [[nodiscard]] QString newPasswordHint() const;
    // Which panel is at the bottom, as of the last layoutWindow().
    [[nodiscard]] bool isLoginViewVisible() const { return m_laidOutState == LoginMode; }
    [[nodiscard]] bool isChangeViewVisible() const { return m_laidOutState == ChangePasswordMode; }

    [[nodiscard]] static bool isValidUserName(const QString& text);
    [[nodiscard]] static bool isValidPassword(const QString& text);

    // The buttons' actions. Neither sends anything while a request is outstanding.
    void performLogin();
    void changePassword();

    void refreshLoginButtonState();
    void refreshChangeButtonState();
    // Another viewState than the two fails the assertion "unknown view mode" and leaves the window as it is.
    void layoutWindow(bool animate);
    void processLoginResponse(const QString& reply);
    void processChangePasswordResponse(const QString& reply);
    void loginSuccesfully(const QString& contactID);
    [[nodiscard]] static Error willPresentError(const Error& error);

    void curlCommandDone(CUrlCommand& command) override;
    void curlCommandFailed(CUrlCommand& command) override;
    void curlCommandProgress(CUrlCommand&, double, double, double, double) override {}

Q_SIGNALS:
    void usernameChanged();
    void passwordChanged();
    void theNewPasswordChanged();
    void theNewPasswordConfirmChanged();
    void loginResultStringChanged();
    void waitingForResponseChanged();
    void isLoginButtonEnabledChanged();
    void isChangeButtonEnabledChanged();
    void viewStateChanged();
    void messageChanged();
    // The panels are to be stacked anew; see isLoginViewVisible and isChangeViewVisible.
    void layoutRequested(bool animate);

private:
    void awakeFromNib();
    void post(const std::shared_ptr<CUrlCommand>& command, const QString& waitingText);
    void endWaiting();
    void showTrouble(const QString& result, const QString& detail);

    ApplicationController& m_application;
    CUrlCommandProcessor* m_curlCommandProcessor = nullptr; // the application's, which outlives this
    std::shared_ptr<CUrlCommand> m_request;                 // the outstanding one
    QString m_username;
    QString m_password;
    QString m_theNewPassword;
    QString m_theNewPasswordConfirm;
    QString m_loginResultString;
    QString m_failureDetail;
    QString m_waitingText;
    bool m_waitingForResponse = false;
    bool m_isLoginButtonEnabled = false;
    bool m_isChangeButtonEnabled = false;
    int m_viewState = LoginMode;
    int m_laidOutState = LoginMode;
};
