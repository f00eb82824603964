#pragma once

#include <QTimer>
#include <QWidget>

#include <memory>

class ErrorWindowController;
namespace Ui {
class ErrorWindow;
}

// The window over its controller, which outlives it.
class ErrorWindow : public QWidget
{
    Q_OBJECT
public:
    explicit ErrorWindow(ErrorWindowController& controller, QWidget* parent = nullptr);
    ~ErrorWindow() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void setUpTable();
    void setUpActions();
    void showSummary();
    void showSelection();
    void copySelection();
    [[nodiscard]] QList<int> selectedRows() const;

    ErrorWindowController& m_controller;
    std::unique_ptr<Ui::ErrorWindow> m_ui;
    QAction* m_copyAction = nullptr; // the window's child
    QTimer m_gathered;
    bool m_showsNewest = true;
};
