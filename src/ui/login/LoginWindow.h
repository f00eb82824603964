#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>

class LoginWindowController;
class QLineEdit;
class QPushButton;
class QVariantAnimation;

namespace Ui {
class LoginWindow;
}

// The panels and controls of the login window. Its height is always that of the panels to be seen, at whatever width.
// `controller` outlives it.
class LoginWindow : public QWidget
{
    Q_OBJECT
public:
    explicit LoginWindow(LoginWindowController& controller);
    ~LoginWindow() override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    using Getter = QString (LoginWindowController::*)() const;
    using Setter = void (LoginWindowController::*)(const QString&);
    using Signal = void (LoginWindowController::*)();

    void bindField(QLineEdit* field, Getter getter, Setter setter, Signal signal);
    void bindFields();
    void bindButtons();
    void bindResult();
    void showWaiting();
    void layOut(bool animate);
    void fitHeight();
    [[nodiscard]] QPushButton* defaultButton() const;

    LoginWindowController& m_controller;
    std::unique_ptr<Ui::LoginWindow> m_ui;
    QVariantAnimation* m_heightAnimation;
    QPointer<QWidget> m_focusBeforeWaiting;
};
