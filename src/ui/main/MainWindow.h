#pragma once

#include <QMainWindow>

#include <memory>

class MainWindowController;

namespace Ui {
class MainWindow;
}

// The main window. Closing it asks nothing and ends nothing: who wants a word there filters its close event. It keeps
// its place and its columns in the user's settings. The controller must outlive it.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(MainWindowController& controller);
    ~MainWindow() override;

protected:
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void setUpList();
    void setUpDelegates();
    void setUpColumns();
    void setUpActions();
    void setUpToolBar();
    void bindTexts();
    void bindRowActions();
    void sizeFooter();
    void sizeByFont();
    void toggleCurrentRow();
    void showAbout();
    void saveLook() const;

    MainWindowController& m_controller;
    const std::unique_ptr<Ui::MainWindow> m_ui;
};
