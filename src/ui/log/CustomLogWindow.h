#pragma once

#include "ui/log/LogSearch.h"

#include <QTextCursor>
#include <QWidget>

#include <memory>
#include <optional>

class CustomLogWindowController;
namespace Ui {
class CustomLogWindow;
}

// The window over its controller, which outlives it.
class CustomLogWindow : public QWidget
{
    Q_OBJECT
public:
    explicit CustomLogWindow(CustomLogWindowController& controller, QWidget* parent = nullptr);
    ~CustomLogWindow() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void setUpText();
    void setUpSearch();
    void setUpButtons();
    void guardSelection();
    void keepPlace();
    void tellWhereViewIs();
    void scrollToBottom();
    void showState();
    void showSearch();
    void find(bool isForward);
    void select(const std::optional<LogSearch::Match>& match);
    // Marks the matches that can be seen.
    void markMatches();

    CustomLogWindowController& m_controller;
    std::unique_ptr<Ui::CustomLogWindow> m_ui;
    bool m_isScrolling = false;
    QTextCursor m_topLine; // of the view
};
