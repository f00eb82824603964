#include "ui/login/LoginWindow.h"

#include "ui_LoginWindow.h"

#include "ui/controls/QuillpostIcons.h"
#include "ui/controls/WindowBinding.h"
#include "ui/login/LoginWindowController.h"

#include <QEvent>
#include <QVariantAnimation>

#include <functional>

namespace {

constexpr int widthInCharacters = 56;
constexpr int iconHeightInLines = 3;
constexpr double titleFontScale = 1.5;
constexpr int animationMilliseconds = 200;

} // namespace

LoginWindow::LoginWindow(LoginWindowController& controller)
    : m_controller(controller), m_ui(std::make_unique<Ui::LoginWindow>()),
      m_heightAnimation(new QVariantAnimation(this))
{
    m_ui->setupUi(this);
    setWindowIcon(QuillpostIcons::application());
    const int iconSide = fontMetrics().height() * iconHeightInLines;
    m_ui->welcomeIcon->setPixmap(QuillpostIcons::application().pixmap(QSize(iconSide, iconSide), devicePixelRatioF()));
    QFont titleFont = m_ui->welcomeTitle->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * titleFontScale);
    titleFont.setBold(true);
    m_ui->welcomeTitle->setFont(titleFont);
    m_ui->newPasswordHint->setText(m_controller.newPasswordHint());
    setMinimumWidth(fontMetrics().averageCharWidth() * widthInCharacters);

    m_heightAnimation->setDuration(animationMilliseconds);
    connect(m_heightAnimation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& height) { setFixedHeight(height.toInt()); });
    connect(m_heightAnimation, &QVariantAnimation::finished, this, &LoginWindow::fitHeight);

    bindFields();
    bindButtons();
    bindResult();
    connect(&m_controller, &LoginWindowController::layoutRequested, this, &LoginWindow::layOut);
    WindowBinding::bind(m_controller, *this);
    m_ui->usernameField->setFocus();
    layOut(/*animate=*/false);
}

LoginWindow::~LoginWindow()
{
    WindowBinding::unbind(m_controller, *this);
}

void LoginWindow::bindField(QLineEdit* field, Getter getter, Setter setter, Signal signal)
{
    const std::function<QString()> get = [&controller = m_controller, getter] { return (controller.*getter)(); };
    const std::function<void(const QString&)> set = [&controller = m_controller, setter](const QString& text) {
        (controller.*setter)(text);
    };
    field->setText(get());
    connect(field, &QLineEdit::textChanged, this, [get, set](const QString& text) {
        if (text != get())
            set(text);
    });
    connect(&m_controller, signal, field, [field, get] {
        if (field->text() != get())
            field->setText(get());
    });
    connect(field, &QLineEdit::returnPressed, this, [this] { defaultButton()->click(); });
}

void LoginWindow::bindFields()
{
    using Controller = LoginWindowController;
    bindField(m_ui->usernameField, &Controller::username, &Controller::setUsername, &Controller::usernameChanged);
    bindField(m_ui->passwordField, &Controller::password, &Controller::setPassword, &Controller::passwordChanged);
    bindField(m_ui->theNewPasswordField, &Controller::theNewPassword, &Controller::setTheNewPassword,
              &Controller::theNewPasswordChanged);
    bindField(m_ui->theNewPasswordConfirmField, &Controller::theNewPasswordConfirm,
              &Controller::setTheNewPasswordConfirm, &Controller::theNewPasswordConfirmChanged);
}

void LoginWindow::bindButtons()
{
    connect(m_ui->loginButton, &QPushButton::clicked, &m_controller, &LoginWindowController::performLogin);
    connect(m_ui->changeButton, &QPushButton::clicked, &m_controller, &LoginWindowController::changePassword);
    const auto showLogin = [this] { m_ui->loginButton->setEnabled(m_controller.isLoginButtonEnabled()); };
    const auto showChange = [this] { m_ui->changeButton->setEnabled(m_controller.isChangeButtonEnabled()); };
    connect(&m_controller, &LoginWindowController::isLoginButtonEnabledChanged, this, showLogin);
    connect(&m_controller, &LoginWindowController::isChangeButtonEnabledChanged, this, showChange);
    showLogin();
    showChange();
    connect(&m_controller, &LoginWindowController::waitingForResponseChanged, this, &LoginWindow::showWaiting);
    showWaiting();
}

void LoginWindow::bindResult()
{
    for (ResultLine* line : {m_ui->loginResult, m_ui->changeResult}) {
        const auto show = [this, line] {
            line->setWaiting(m_controller.waitingForResponse());
            line->setTroubleShown(m_controller.isTroubleShown());
            line->setMessage(m_controller.messageText());
        };
        connect(&m_controller, &LoginWindowController::messageChanged, line, show);
        show();
    }
}

QPushButton* LoginWindow::defaultButton() const
{
    return m_controller.isLoginViewVisible() ? m_ui->loginButton : m_ui->changeButton;
}

// The fields lose the focus while they are disabled; it comes back to where the user was typing.
void LoginWindow::showWaiting()
{
    const bool isEnabled = m_controller.areControlsEnabled();
    if (!isEnabled)
        m_focusBeforeWaiting = focusWidget();
    // The buttons' own state says whether what was typed will do; their boxes say whether anything may be pressed now.
    for (QWidget* control :
         {static_cast<QWidget*>(m_ui->usernameField), static_cast<QWidget*>(m_ui->passwordField),
          static_cast<QWidget*>(m_ui->theNewPasswordField), static_cast<QWidget*>(m_ui->theNewPasswordConfirmField),
          m_ui->loginButtonBox, m_ui->changeButtonBox})
        control->setEnabled(isEnabled);
    if (isEnabled && m_focusBeforeWaiting)
        m_focusBeforeWaiting->setFocus();
}

void LoginWindow::layOut(bool animate)
{
    const bool wasChangeViewVisible = m_ui->changeView->isVisibleTo(this);
    m_ui->loginView->setVisible(m_controller.isLoginViewVisible());
    m_ui->changeView->setVisible(m_controller.isChangeViewVisible());
    if (m_controller.isChangeViewVisible() && !wasChangeViewVisible)
        m_ui->theNewPasswordField->setFocus();
    layout()->activate();
    if (animate && isVisible()) {
        m_heightAnimation->setStartValue(height());
        m_heightAnimation->setEndValue(layout()->totalHeightForWidth(width()));
        m_heightAnimation->start();
    } else {
        m_heightAnimation->stop();
        fitHeight();
    }
    repaint();
}

// A window that is resized keeps its top edge and its width.
void LoginWindow::fitHeight()
{
    if (m_heightAnimation->state() != QAbstractAnimation::Running)
        setFixedHeight(layout()->totalHeightForWidth(width()));
}

bool LoginWindow::event(QEvent* event)
{
    const bool isHandled = QWidget::event(event);
    // A message of other length, another font: the panels have other heights.
    if (event->type() == QEvent::LayoutRequest)
        fitHeight();
    return isHandled;
}

void LoginWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    fitHeight();
}
