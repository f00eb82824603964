#include "demo-service/Service.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct CommandLine
{
    DemoService::Options options;
    double turnaroundInSeconds = 8;
    std::vector<std::string> again;
    std::string logFormat = "yes";
    std::string readyFile;
};

void describe(CLI::App& app, CommandLine& line)
{
    DemoService::Options& options = line.options;
    app.add_option("--secure-port", options.securePort, "Port of the TLS host; 0 takes any free one")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    app.add_option("--file-port", options.filePort, "Port of the plain-HTTP file host; 0 takes any free one")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    app.add_option("--bind", options.bindAddress, "Address to listen on")->capture_default_str();
    app.add_option("--user", options.user, "User name of the one account")->capture_default_str();
    app.add_option("--password", options.password, "Its password")->capture_default_str();
    app.add_option("--contact-id", options.contactID, "Its contact ID")->capture_default_str();
    app.add_flag("--demand-password-change", options.demandPasswordChange,
                 "Answer log-ins with \"Change\" until the password was changed");
    app.add_option("--turnaround", line.turnaroundInSeconds,
                   "Seconds from a job's last upload to \"Joined\"; 0 joins at once")
        ->check(CLI::Range(0.0, 86400.0))
        ->capture_default_str();
    app.add_option("--again", line.again,
                   "Ask once for this segment of every job again: SEGMENT:stereo or SEGMENT:mono (may be repeated)")
        ->check(CLI::Validator(
            [](const std::string& text) {
                const std::size_t colon = text.find(':');
                const std::string number = text.substr(0, colon);
                const std::string channels = colon == std::string::npos ? "" : text.substr(colon + 1);
                const bool good = !number.empty() && number.size() < 6 &&
                                  number.find_first_not_of("0123456789") == std::string::npos &&
                                  (channels == "stereo" || channels == "mono");
                return good ? std::string() : "it has the form 2:stereo or 2:mono";
            },
            "SEGMENT:stereo|mono"));
    app.add_flag("--send-logs", options.sendLogs, "Ask once for the client's log");
    app.add_option("--log-format", line.logFormat, "Whether the LOG delivery format is available")
        ->check(CLI::IsMember({"yes", "no"}))
        ->capture_default_str();
    app.add_option("--delivery-option", options.deliveryOption,
                   "How clients name a job's folder; anything but Deposition and ShortCaption gives none")
        ->capture_default_str();
    app.add_option("--save-uploads", options.saveUploads, "Folder into which received files are written");
    app.add_option("--ready-file", line.readyFile, "File that gets the two addresses once both hosts listen");
}

void finish(CommandLine& line)
{
    line.options.turnaround = std::chrono::milliseconds(static_cast<long long>(line.turnaroundInSeconds * 1000));
    line.options.logFormat = line.logFormat == "yes";
    for (const std::string& text : line.again) {
        const std::size_t colon = text.find(':');
        line.options.again.push_back({std::stoi(text.substr(0, colon)), text.substr(colon + 1) == "mono"
                                                                            ? DemoService::Channels::Mono
                                                                            : DemoService::Channels::Stereo});
    }
    line.options.log = [](const std::string& text) { std::fputs((text + "\n").c_str(), stderr); };
}

// Beside and renamed, so that whoever waits for the file never reads half of it.
bool writeReadyFile(const std::string& path, const std::string& text)
{
    const std::string beside = path + ".new";
    std::ofstream file(beside, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    std::error_code error;
    if (file)
        std::filesystem::rename(beside, path, error);
    return file && !error;
}

int run(const CommandLine& line)
{
    // Blocked before any thread starts, so that only sigwait sees them.
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGTERM);
    sigaddset(&ends, SIGINT);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);

    DemoService::Service service(line.options);
    const std::string addresses =
        fmt::format("SECURE_HOST={}\nFILE_HOST={}\n", service.secureHost(), service.fileHost());
    std::fputs(addresses.c_str(), stdout);
    std::fflush(stdout);
    if (!line.readyFile.empty() && !writeReadyFile(line.readyFile, addresses)) {
        std::fputs(fmt::format("cannot write {}\n", line.readyFile).c_str(), stderr);
        return 1;
    }
    int signal = 0;
    sigwait(&ends, &signal);
    service.stop();
    if (!line.readyFile.empty()) {
        std::error_code ignored;
        std::filesystem::remove(line.readyFile, ignored);
    }
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    CLI::App app(
        "A stand-in for the deposition sync service, so that Quillpost can be tried and tested on one machine.\n"
        "It speaks every endpoint of the service over TLS with a certificate of its own, hosts the demo-disc\n"
        "files over plain HTTP, takes jobs through their words and delivers result files. It prints its two\n"
        "addresses, logs one line for each request on standard error and ends on SIGTERM or SIGINT.",
        "quillpost-demo-service");
    CommandLine line;
    describe(app, line);
    CLI11_PARSE(app, argumentCount, arguments);
    try {
        finish(line);
        return run(line);
    } catch (const std::exception& error) {
        std::fputs(fmt::format("quillpost-demo-service: {}\n", error.what()).c_str(), stderr);
        return 1;
    }
}
