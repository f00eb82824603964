#pragma once

#include "ui-support/ScriptedDialogs.h"

#include "app/QuillpostAppDelegate.h"
#include "demo-service/Service.h"
#include "support/TemporaryHome.h"

#include <QList>
#include <QUrl>
#include <gmock/gmock.h>

#include <memory>

// A fixture with the application as the desktop program makes it, without windows, in a home of its own and against a
// demo service; dialogs are answered beforehand.
class AppTest : public TemporaryHome
{
protected:
    AppTest();
    ~AppTest() override;

    // Makes the application. A test may make it again, as a restart, after `end()`.
    QuillpostAppDelegate& make();
    // Makes it, launches it and logs in without asking the service.
    QuillpostAppDelegate& makeLoggedIn();
    void end();
    [[nodiscard]] QuillpostAppDelegate& app() { return *m_delegate; }

    // A job in the engine that is being worked on, at this status.
    std::shared_ptr<Job> addUnfinishedJob(const QString& name = QStringLiteral("a.txt"));
    [[nodiscard]] QString temporaryFolder() const { return path(QStringLiteral("temporary")); }
    [[nodiscard]] QString stateFile() const { return temporaryFolder() + QStringLiteral("/State_demo.archive"); }
    [[nodiscard]] QString logText() const;

    DemoService::Service service;
    ScriptedDialogs dialogs;
    QList<QUrl> opened;
    bool canOpen = true;
    int terminatedCount = 0;

private:
    std::unique_ptr<QuillpostAppDelegate> m_delegate;
};
