#pragma once

#include "commands/TransferBuffer.h"

#include <QFile>
#include <QString>

#include <cstddef>
#include <memory>

// Where a download command puts what it receives: memory until the transfer ends, then the end of a file that was
// made empty before. Used on one thread at a time.
class DownloadedFile
{
public:
    // Makes an empty file at `path` in place of any file there. Folders are not made.
    bool create(const QString& path);
    // Holds what is received in this buffer, which one transfer after another may use. Before the transfer.
    void setBuffer(std::shared_ptr<TransferBuffer> buffer) { m_downloadedData = std::move(buffer); }
    [[nodiscard]] bool isMade() const { return m_outputFile.isOpen(); }
    std::size_t append(const char* bytes, std::size_t size, std::size_t number);
    // Everything received, in one go; also after a transfer that failed.
    void writeOut();
    // What kept the file from holding all that was received, in words; empty when nothing did. After writeOut().
    [[nodiscard]] const QString& trouble() const { return m_trouble; }
    [[nodiscard]] qsizetype receivedSize() const { return m_receivedSize; }

private:
    QFile m_outputFile;
    std::shared_ptr<TransferBuffer> m_downloadedData = std::make_shared<TransferBuffer>();
    qsizetype m_receivedSize = 0;
    QString m_trouble;
};
