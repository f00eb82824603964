#pragma once

#include <QWidget>

#include <memory>

class PreferencesWindowController;
class QSpinBox;

namespace Ui {
class PreferencesWindow;
}

// The controls of the settings. `controller` outlives it.
class PreferencesWindow : public QWidget
{
    Q_OBJECT
public:
    explicit PreferencesWindow(PreferencesWindowController& controller);
    ~PreferencesWindow() override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void prepareControls();
    void bindDeliveryFolder();
    void bindNumbers();
    void bindSwitches();
    void bindProblem();
    void fitHeight();

    PreferencesWindowController& m_controller;
    std::unique_ptr<Ui::PreferencesWindow> m_ui;
};
