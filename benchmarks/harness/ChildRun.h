#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace Bench {

// What a program that ran to its end took.
struct ChildRun
{
    double seconds = 0;    // from its start to its end
    double cpuSeconds = 0; // its own and that of the programs it waited for
    // The largest resident set of one process among these; never less than what this process holds meanwhile.
    double peakMegabytes = 0;
    QByteArray output{}; // what it wrote to standard output
    // The last line of the output, for a program that reports its figures as one JSON object there.
    [[nodiscard]] QJsonObject report() const;
};

struct ChildOptions
{
    QString folder{}; // to run in; the own one when empty
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QByteArray input{}; // its standard input
};

// Runs a program by name or path and waits for its end. A program that cannot be started or does not end with 0 ends
// the whole run with a message: a figure of work that failed is no figure.
[[nodiscard]] ChildRun runChild(const QStringList& command, const ChildOptions& options = {});

// Ends the process with a message.
[[noreturn]] void fail(const QString& message);

} // namespace Bench
