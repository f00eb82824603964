#pragma once

#include "demo-service/Service.h"
#include "foundation/MainThread.h"
#include "foundation/UserDefaults.h"
#include "settings/ServiceHosts.h"
#include "ui/UserDialogs.h"

#include <QDir>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <optional>

class DesktopWindows;
class Job;
class QuillpostAppDelegate;
class QWidget;

// Nobody answers: for runs in which nothing is asked.
class NoDialogs : public UserDialogs
{
public:
    void warn(const QString&, const QString&) override {}
    bool ask(const Question&) override { return true; }
    std::optional<QStringList> chooseFile(const QString&, const QString&) override { return std::nullopt; }
    std::optional<QStringList> chooseFiles(const QString&, const QString&) override { return std::nullopt; }
    std::optional<QStringList> chooseFolder(const QString&, const QString&) override { return std::nullopt; }
};

// The desktop program in this process, in a home of its own, against a demo service beside it. A wait that is in vain
// ends the process with a message. Main thread, under a QApplication.
class DesktopRun
{
public:
    // `samples` is the folder of the sample transcript, which is copied into the home.
    // Another service than the demo service may be given.
    DesktopRun(QString samples, int processorCount, const std::optional<ServiceHosts>& elsewhere = std::nullopt);
    ~DesktopRun(); // ends the engine; what hangs ends with the process
    DesktopRun(const DesktopRun&) = delete;
    DesktopRun& operator=(const DesktopRun&) = delete;

    [[nodiscard]] QuillpostAppDelegate& delegate() { return *m_delegate; }
    [[nodiscard]] DemoService::Service& service() { return m_service; }
    [[nodiscard]] UserDefaults& defaults() { return *m_defaults; }
    [[nodiscard]] QDir home() const { return QDir(m_home.path()); }
    // A copy of the sample transcript under this name, made once.
    [[nodiscard]] QString transcript(const QString& name) const;
    [[nodiscard]] static QWidget& window(const char* className);

    void logIn();
    // A sound of so many seconds, made once.
    [[nodiscard]] QString recording(const QString& name, const QString& seconds) const;
    // Composes a job in the submit window, with the sample transcript under this name, and submits it.
    std::shared_ptr<Job> submit(const QString& name, const QStringList& media);

    // Turns the event loop.
    static void turnUntil(const char* what, const std::function<bool()>& condition);

private:
    const QString m_samples;
    const MainThread::Attachment m_mainThread;
    QTemporaryDir m_home{QDir::temp().filePath(QStringLiteral("Depositions-XXXXXX"))};
    NoDialogs m_dialogs;
    DemoService::Service m_service;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<QuillpostAppDelegate> m_delegate;
    std::unique_ptr<DesktopWindows> m_windows;
};
