#include "cli/CommandLine.h"

#include "foundation/Version.h"
#include "model/DeliveryFormat.h"
#include "model/ProcessingLevel.h"
#include "settings/PollInterval.h"

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <vector>

namespace {

// The arguments as CLI11 fills them in; turned into the types of the program after the reading.
struct Arguments
{
    std::string secureHost;
    std::string fileHost;
    std::string user;
    std::string deliveryFolder;
    std::string tempFolder;
    std::string transcript;
    std::vector<std::string> media;
    std::string firstName;
    std::string lastName;
    std::string date;
    std::string caption;
    std::string format = "all";
    std::string level;
    std::vector<std::string> inspectFiles;
    std::vector<std::string> retryJobs;
};

std::string knownNames(const QStringList& names)
{
    return names.join(QStringLiteral(", ")).toStdString();
}

std::string formatProblem(const std::string& name)
{
    if (deliveryFormatNamed(QString::fromStdString(name)))
        return {};
    return "unknown delivery format \"" + name + "\"; the known ones are: " + knownNames(deliveryFormatNames());
}

std::string levelProblem(const std::string& name)
{
    if (processingLevelNamed(QString::fromStdString(name)))
        return {};
    return "unknown service level \"" + name + "\"; the known ones are: " + knownNames(processingLevelNames());
}

std::string dateProblem(const std::string& text)
{
    const QString date = QString::fromStdString(text);
    if (date.size() == 10 && QDate::fromString(date, QStringLiteral("yyyy-MM-dd")).isValid())
        return {};
    return "\"" + text + "\" is not a date of the form YYYY-MM-DD";
}

CLI::Validator limitCheck()
{
    // Without a name of its own, which the help would show.
    return CLI::Range(1, 1024).description("");
}

void addGlobalOptions(CLI::App& app, CommandLine& line, Arguments& arguments)
{
    app.add_option("--secure-host", arguments.secureHost, "The service, as https://HOST[:PORT]")->type_name("URL");
    app.add_option("--file-host", arguments.fileHost, "The service's file host, as http://HOST[:PORT]")
        ->type_name("URL");
    app.add_option("--user", arguments.user, "The account's user name (or QUILLPOST_USER)")->type_name("NAME");
    app.add_option("--poll-interval", line.pollInterval, "Seconds between two status requests (60)")
        ->type_name("SECONDS")
        ->check(CLI::Validator(PollInterval::problem, ""));
    app.add_option("--delivery-folder", arguments.deliveryFolder, "Where results are delivered")->type_name("DIR");
    app.add_option("--temp-folder", arguments.tempFolder, "Where audio is prepared and unfinished jobs are kept")
        ->type_name("DIR");
    app.add_option("--max-ffmpeg", line.maxFfmpeg, "ffmpeg programs at once")->type_name("N")->check(limitCheck());
    app.add_option("--max-uploads", line.maxUploads, "Uploads at once")->type_name("N")->check(limitCheck());
    app.add_flag("--json", line.json, "One JSON object a line for every change, on standard output");
    app.add_flag("--verbose", line.verbose, "Copy the log to standard error");
}

CLI::App* addSubmit(CLI::App& app, CommandLine& line, Arguments& arguments)
{
    CLI::App* const submit = app.add_subcommand("submit", "Submit a job and follow it until its results are delivered");
    submit->add_option("--transcript", arguments.transcript, "The transcript")->type_name("FILE")->required();
    submit->add_option("--media", arguments.media, "The recordings, one or more")->type_name("FILE")->required();
    submit->add_option("--first", arguments.firstName, "The deponent's first name (else as found in the transcript)")
        ->type_name("NAME");
    submit->add_option("--last", arguments.lastName, "The deponent's last name (else as found in the transcript)")
        ->type_name("NAME");
    submit->add_option("--date", arguments.date, "The day of the deposition (else as found in the transcript)")
        ->type_name("YYYY-MM-DD")
        ->check(CLI::Validator(dateProblem, ""));
    submit->add_option("--caption", arguments.caption, "The case's short caption")->type_name("TEXT");
    submit->add_option("--format", arguments.format, "The delivery format (all): " + knownNames(deliveryFormatNames()))
        ->type_name("NAME")
        ->check(CLI::Validator(formatProblem, ""));
    submit
        ->add_option("--level", arguments.level, "The service level (AutoSync): " + knownNames(processingLevelNames()))
        ->type_name("NAME")
        ->check(CLI::Validator(levelProblem, ""));
    submit->add_flag("--rush", line.submit.rush, "Order rush service");
    submit->add_flag("--interpreter", line.submit.viaInterpreter, "The deposition was taken through an interpreter");
    return submit;
}

std::optional<QString> given(const CLI::App& app, const char* option, const std::string& text)
{
    return app.count(option) == 0 ? std::nullopt : std::optional<QString>(QString::fromStdString(text));
}

QStringList texts(const std::vector<std::string>& values)
{
    QStringList list;
    for (const std::string& value : values)
        list << QString::fromStdString(value);
    return list;
}

void takeGlobalOptions(const CLI::App& app, const Arguments& arguments, CommandLine& line)
{
    line.secureHost = given(app, "--secure-host", arguments.secureHost);
    line.fileHost = given(app, "--file-host", arguments.fileHost);
    line.deliveryFolder = given(app, "--delivery-folder", arguments.deliveryFolder);
    line.tempFolder = given(app, "--temp-folder", arguments.tempFolder);
    line.user = given(app, "--user", arguments.user).value_or(qEnvironmentVariable("QUILLPOST_USER"));
}

void takeSubmitOptions(const CLI::App& submit, const Arguments& arguments, SubmitOptions& options)
{
    options.transcript = QString::fromStdString(arguments.transcript);
    options.media = texts(arguments.media);
    options.firstName = given(submit, "--first", arguments.firstName);
    options.lastName = given(submit, "--last", arguments.lastName);
    if (const auto date = given(submit, "--date", arguments.date))
        options.date = QDate::fromString(*date, QStringLiteral("yyyy-MM-dd"));
    options.caption = QString::fromStdString(arguments.caption);
    if (const auto format = deliveryFormatNamed(QString::fromStdString(arguments.format)))
        options.deliveryFormat = *format;
    if (const auto level = processingLevelNamed(QString::fromStdString(arguments.level)))
        options.processingLevel = *level;
}

CommandLine::Command commandNamed(const std::string& name)
{
    using Command = CommandLine::Command;
    static const std::map<std::string, Command> commands{
        {"login", Command::Login},    {"submit", Command::Submit}, {"resume", Command::Resume},
        {"retry", Command::Retry},    {"jobs", Command::Jobs},     {"change-password", Command::ChangePassword},
        {"inspect", Command::Inspect}};
    return commands.at(name);
}

constexpr const char* footer =
    "The password comes from QUILLPOST_PASSWORD or is asked for on the terminal; for change-password the new one\n"
    "comes from QUILLPOST_NEW_PASSWORD or is asked for.\n\n"
    "The service's address comes from the options, then from QUILLPOST_SECURE_HOST and QUILLPOST_FILE_HOST, then\n"
    "from SecureHost and FileHost in the settings file.\n\n"
    "Exit codes: 0 done; 1 wrong use; 2 login refused; 3 a service error was presented; 130 interrupted, and\n"
    "\"resume\" goes on from there. After 3, \"retry\" tries again.";

} // namespace

std::variant<CommandLine, ExitCode> CommandLine::read(int argc, const char* const* argv)
{
    CommandLine line;
    Arguments arguments;
    CLI::App app("Orders the alignment of deposition transcripts with their recordings.", "quillpost-cli");
    app.set_version_flag("--version", "quillpost-cli " + applicationVersion().toStdString());
    app.footer(footer);
    app.require_subcommand(1);
    app.fallthrough(); // Global options may stand behind the command too.
    addGlobalOptions(app, line, arguments);
    app.add_subcommand("login", "Check the account and print its contact ID");
    const CLI::App* const submit = addSubmit(app, line, arguments);
    app.add_subcommand("resume", "Work until all saved jobs are completed");
    CLI::App* const retry = app.add_subcommand("retry", "Try again the saved jobs that stopped");
    retry->add_option("jobs", arguments.retryJobs, "Job numbers or transcript names (all saved jobs)")
        ->type_name("JOB");
    app.add_subcommand("jobs", "List the service's jobs and the saved ones");
    app.add_subcommand("change-password", "Replace the account's password");
    CLI::App* const inspect = app.add_subcommand("inspect", "Print what is found in transcripts and recordings");
    inspect->add_option("files", arguments.inspectFiles, "Transcripts and recordings")->type_name("FILE")->required();

    try {
        app.parse(argc, argv);
    } catch (const CLI::RequiredError& error) {
        const auto unknown = app.remaining();
        if (!app.get_subcommands().empty() || unknown.empty())
            app.exit(error);
        else
            app.exit(CLI::ValidationError("there is no command \"" + unknown.front() + "\""));
        return ExitCode::Usage;
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? ExitCode::Done : ExitCode::Usage;
    }
    takeGlobalOptions(app, arguments, line);
    line.command = commandNamed(app.get_subcommands().front()->get_name());
    takeSubmitOptions(*submit, arguments, line.submit);
    line.inspectFiles = texts(arguments.inspectFiles);
    line.retryJobs = texts(arguments.retryJobs);
    return line;
}
