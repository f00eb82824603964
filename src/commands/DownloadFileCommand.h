#pragma once

#include "commands/CUrlCommand.h"
#include "commands/DownloadedFile.h"
#include "settings/ServiceHosts.h"

// Fetches one result file of a job into a local file. Missing folders are made, an old file is replaced. Where the
// file cannot be made, executing the command sends a request without a body and writes nothing.
class DownloadFileCommand : public CUrlCommand
{
public:
    DownloadFileCommand(const ServiceHosts& hosts, const QString& user, const QString& password, int depoNum,
                        int fileNum, const QString& filePath);
    [[nodiscard]] static std::shared_ptr<DownloadFileCommand>
    downloadFileCommandWithUser(const ServiceHosts& hosts, const QString& user, const QString& password, int depoNum,
                                int fileNum, const QString& filePath);

    // See DownloadedFile. Before execute().
    void setBuffer(const std::shared_ptr<TransferBuffer>& buffer) { m_downloadedFile.setBuffer(buffer); }
    void execute() override;
    // False where the local file could not be made.
    [[nodiscard]] bool isFileMade() const { return m_downloadedFile.isMade(); }
    [[nodiscard]] const DownloadedFile& downloadedFile() const { return m_downloadedFile; }
    std::size_t downloadCallback(const char* bytes, std::size_t size, std::size_t number);

private:
    DownloadedFile m_downloadedFile;
};
