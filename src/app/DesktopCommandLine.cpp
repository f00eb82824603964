#include "app/DesktopCommandLine.h"

#include "foundation/Version.h"

#include <CLI/CLI.hpp>

#include <string>

namespace {

constexpr int wrongUse = 1;

constexpr const char* footer =
    "The service's address comes from the options, then from QUILLPOST_SECURE_HOST and QUILLPOST_FILE_HOST, then\n"
    "from SecureHost and FileHost in the settings file.\n\n"
    "Options of the windowing system, such as -style, -platform and -geometry, are taken too.";

std::optional<QString> given(const CLI::App& app, const char* option, const std::string& text)
{
    return app.count(option) == 0 ? std::nullopt : std::optional<QString>(QString::fromStdString(text));
}

} // namespace

std::variant<DesktopCommandLine, int> DesktopCommandLine::read(int argc, const char* const* argv)
{
    constexpr double demoPollInterval = 3;
    DesktopCommandLine line;
    std::string secureHost;
    std::string fileHost;
    CLI::App app("Orders the alignment of deposition transcripts with their recordings.", "quillpost");
    app.set_version_flag("--version", "quillpost " + applicationVersion().toStdString());
    app.footer(footer);
    app.add_option("--secure-host", secureHost, "The service, as https://HOST[:PORT]")->type_name("URL");
    app.add_option("--file-host", fileHost, "The service's file host, as http://HOST[:PORT]")->type_name("URL");
    app.add_option("--poll-interval", line.pollInterval, "Seconds between two status requests (60; 3 in a demo)")
        ->type_name("SECONDS")
        ->check(CLI::Validator(PollInterval::problem, ""));
    app.add_flag("--demo", line.demo,
                 "Try the program with a stand-in for the service on this computer; your settings and jobs are not "
                 "touched")
        ->excludes("--secure-host")
        ->excludes("--file-host");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : wrongUse;
    }
    line.secureHost = given(app, "--secure-host", secureHost);
    line.fileHost = given(app, "--file-host", fileHost);
    if (line.demo && app.count("--poll-interval") == 0)
        line.pollInterval = demoPollInterval;
    return line;
}
