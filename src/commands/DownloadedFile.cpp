#include "commands/DownloadedFile.h"

#include "foundation/Log.h"

#include <QFileInfo>

bool DownloadedFile::create(const QString& path)
{
    m_outputFile.setFileName(path);
    return m_outputFile.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
}

std::size_t DownloadedFile::append(const char* bytes, std::size_t size, std::size_t number)
{
    // Taking nothing fails the transfer.
    return m_downloadedData->append(bytes, size * number) ? size * number : 0;
}

void DownloadedFile::writeOut()
{
    if (!m_outputFile.isOpen())
        return;
    m_receivedSize = static_cast<qsizetype>(m_downloadedData->size());
    m_outputFile.seek(m_outputFile.size());
    if (m_outputFile.write(m_downloadedData->data(), m_receivedSize) != m_receivedSize)
        m_trouble = m_outputFile.errorString();
    else if (QFileInfo(m_outputFile.fileName()).size() < m_receivedSize)
        m_trouble = QStringLiteral("its folder was taken away meanwhile"); // The handle outlives folder and volume.
    if (!m_trouble.isEmpty())
        Log::error("Unable to write file: {}, error = {}", m_outputFile.fileName(), m_trouble);
    m_downloadedData->clear();
}
