#pragma once

#include "commands/CUrlCommand.h"
#include "commands/DownloadedFile.h"

// Fetches any URL into a local file. An old file is replaced; folders are not made, so without its folder the file is
// not written.
class RegularDownloadFileCommand : public CUrlCommand
{
public:
    RegularDownloadFileCommand(const QString& url, const QString& destinationPath);
    // The capital is part of the operation's name.
    [[nodiscard]] static std::shared_ptr<RegularDownloadFileCommand>
    RegularDownloadFileCommandWithURL(const QString& url, const QString& destinationPath);

    // See DownloadedFile. Before execute().
    void setBuffer(const std::shared_ptr<TransferBuffer>& buffer) { m_downloadedFile.setBuffer(buffer); }
    void execute() override;
    // False where the local file could not be made, as where its folder is missing.
    [[nodiscard]] bool isFileMade() const { return m_downloadedFile.isMade(); }
    [[nodiscard]] const DownloadedFile& downloadedFile() const { return m_downloadedFile; }
    std::size_t regularDownloadCallback(const char* bytes, std::size_t size, std::size_t number);

private:
    DownloadedFile m_downloadedFile;
};
