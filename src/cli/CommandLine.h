#pragma once

#include "cli/ExitCode.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

// What the user asked for, as far as it can be told without looking at anything but the arguments.
struct SubmitOptions
{
    QString transcript;
    QStringList media;
    std::optional<QString> firstName;
    std::optional<QString> lastName;
    std::optional<QDate> date;
    QString caption;
    int deliveryFormat = 0;             // a DeliveryFormat
    std::optional<int> processingLevel; // a ProcessingLevel
    bool rush = false;
    bool viaInterpreter = false;
};

struct CommandLine
{
    enum class Command { Login, Submit, Resume, Retry, Jobs, ChangePassword, Inspect };

    std::optional<QString> secureHost;
    std::optional<QString> fileHost;
    QString user;
    double pollInterval = 60.0; // seconds
    std::optional<QString> deliveryFolder;
    std::optional<QString> tempFolder;
    std::optional<int> maxFfmpeg;
    std::optional<int> maxUploads;
    bool json = false;
    bool verbose = false;

    Command command = Command::Login;
    SubmitOptions submit;
    QStringList inspectFiles;
    QStringList retryJobs; // job numbers and transcript names; all saved jobs when empty

    // The command line, or the code to exit with at once: after --help and --version, and after a wrong use, whose
    // words are then on standard error.
    [[nodiscard]] static std::variant<CommandLine, ExitCode> read(int argc, const char* const* argv);
};
