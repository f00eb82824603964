#pragma once

#include <QMainWindow>

#include <memory>

class MainWindowController;
class QModelIndex;
class QMenu;

namespace Ui {
class MainWindow;
}

// The main window. Closing it asks nothing and ends nothing: who wants a word there filters its close event. The
// controller must outlive it.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(MainWindowController& controller);
    ~MainWindow() override;

protected:
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void setUpList();
    void setUpColumns();
    void setUpActions();
    void setUpToolBar();
    void setUpFooter();
    void bindTexts();
    void sizeByFont();
    void showRowMenu(const QPoint& place);
    void copyJobNumber();
    void showAbout();
    bool handleDrag(QEvent& event);
    void saveLook();

    MainWindowController& m_controller;
    const std::unique_ptr<Ui::MainWindow> m_ui;
    QMenu* m_columnsMenu = nullptr; // owned by the menu bar
};
