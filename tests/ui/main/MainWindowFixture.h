#pragma once

#include "JobListFixture.h"

#include "ui/main/MainWindow.h"
#include "ui/main/MainWindowController.h"

#include <QAction>
#include <QHeaderView>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>

#include <memory>
#include <stdexcept>

// A shown window over real parts; its controls are found by their names.
class MainWindowFixture : public JobListFixture
{
protected:
    MainWindowFixture() : controller(application) { open(); }

    void open()
    {
        window.reset();
        window = std::make_unique<MainWindow>(controller);
        controller.showWindow();
        // Shortcuts work in the active window alone.
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    template <typename Widget>
    Widget& find(const QString& name)
    {
        auto* const found = window->findChild<Widget*>(name);
        if (found == nullptr)
            throw std::runtime_error("no " + name.toStdString());
        return *found;
    }
    QTreeView& outline() { return find<QTreeView>(QStringLiteral("jobsOutlineView")); }
    QHeaderView& header() { return *outline().header(); }
    QModelIndex row(int number) { return outline().model()->index(number, 0); }
    void announce() { controller.jobsArrayController().announceChanges(); }
    void trigger(const QString& action) { find<QAction>(action).trigger(); }
    QToolButton* toolButton(const QString& action)
    {
        return qobject_cast<QToolButton*>(
            find<QToolBar>(QStringLiteral("toolBar")).widgetForAction(&find<QAction>(action)));
    }
    MainWindowController controller;
    std::unique_ptr<MainWindow> window;
};
