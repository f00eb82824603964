#pragma once

#include "commands/CUrlCommandProcessor.h"
#include "engine/JobModel.h"
#include "foundation/ApplicationServices.h"
#include "foundation/MainThread.h"
#include "foundation/UserDefaults.h"

#include <QJsonObject>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>

// The engine as the programs put it together, with its log and its saved jobs, below a folder of its own. Main thread,
// under a QCoreApplication. An error that it presents ends the process with a message: work that failed is not
// measured.
class WorkEngine : private ApplicationServices
{
public:
    struct Setting
    {
        QString secureHost;
        QString fileHost;
        QString folder;
        // Of the command queue. Short where the waits of the design are not what is measured.
        std::chrono::milliseconds tick{2};
        double pollInterval = 3600; // s
        int limit = 2;              // of conversions
        int uploads = 4;
    };

    explicit WorkEngine(const Setting& setting);
    ~WorkEngine() override;
    WorkEngine(const WorkEngine&) = delete;
    WorkEngine& operator=(const WorkEngine&) = delete;

    [[nodiscard]] JobModel& model() { return *m_model; }
    void startCommands() { m_processor->start(); }
    // Turns the main loop.
    void turnUntil(const std::function<bool()>& condition);

private:
    void presentError(const Error& error) override;
    [[nodiscard]] std::shared_ptr<FileLogger> fileLogger() const override { return m_logger; }

    const MainThread::Attachment m_mainThread;
    std::shared_ptr<FileLogger> m_logger;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<JobModel> m_model;
    std::unique_ptr<CUrlCommandProcessor> m_processor;
};

// What a stretch of work took of this process, and of the programs that it ran.
class Usage
{
public:
    Usage();
    // "seconds", "cpu", "childrenCpu" since it was made, and "peakMegabytes" of the process.
    [[nodiscard]] QJsonObject sinceThen() const;

private:
    std::chrono::steady_clock::time_point m_time;
    double m_cpu;
    double m_childrenCpu;
};
