#pragma once

#include "cli/CommandLine.h"

#include <QObject>

#include <memory>

class CliApplication;

// The commands of the command line. Each is started once, on the main thread, before the main loop turns, and ends the
// run through the application.
class Run : public QObject
{
    Q_OBJECT
public:
    Run(CliApplication& application, const CommandLine& line) : m_application(application), m_line(line) {}
    virtual void start() = 0;

    [[nodiscard]] static std::unique_ptr<Run> make(CliApplication& application, const CommandLine& line);

protected:
    [[nodiscard]] CliApplication& application() { return m_application; }
    [[nodiscard]] const CommandLine& line() const { return m_line; }

private:
    CliApplication& m_application;
    const CommandLine m_line;
};
