#pragma once

#include "CommandsTest.h"

#include "commands/DownloadJobFilesCommand.h"

#include <utility>
#include <vector>

// A service with the finished job 4711, whose result files each test chooses, and an empty delivery folder.
class DownloadJobTest : public CommandsTest
{
protected:
    using Files = std::vector<std::pair<std::string, std::string>>;

    DownloadJobTest();

    // Delivers job 4711 to the end, through the processor.
    void deliver(const Files& files);
    [[nodiscard]] std::shared_ptr<DownloadJobFilesCommand> makeCommand() const;
    // What the service says to the next questions about the job.
    void answerFacts(const std::vector<std::string>& replies);
    // The same for good, as a job of the kind that has no folder of its own.
    void answerNoJobFolder();

    [[nodiscard]] QString delivered(const QString& relative) const;
    [[nodiscard]] bool isDelivered(const QString& relative) const;
    // Every file below the delivery folder, sorted, relative to it.
    [[nodiscard]] QStringList deliveredFiles() const;
    [[nodiscard]] std::vector<std::string> bodies(const std::string& endpoint) const;
    // How often the job was marked as delivered.
    [[nodiscard]] bool isMarked() const;

    static constexpr int depo = 4711;
    static constexpr const char* downloadEndpoint = "test_downloadjob2.php";
    static constexpr const char* factsEndpoint = "miscstuff.php";
};
