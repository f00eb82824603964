#include "ui/log/LogFileTail.h"

namespace {

// A log's first line holds a time, so a short head tells one beginning from another.
constexpr qint64 headSize = 256;

} // namespace

bool LogFileTail::open(const QString& path)
{
    m_file.setFileName(path);
    return m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool LogFileTail::hasStartedOver()
{
    if (m_file.size() < m_position)
        return true;
    // Between two looks a busy log may start over and grow past the place that was read.
    return !m_head.isEmpty() && m_file.seek(0) && m_file.read(m_head.size()) != m_head;
}

LogFileTail::Piece LogFileTail::read()
{
    Piece piece;
    if (!m_file.isOpen())
        return piece;
    if (hasStartedOver()) {
        m_position = 0;
        m_head.clear();
        piece.isStartedOver = true;
    }
    if (!m_file.seek(m_position))
        return piece;
    piece.data = m_file.read(pieceSize);
    m_position += piece.data.size();
    if (m_head.size() < headSize)
        m_head += piece.data.first(qMin<qsizetype>(headSize - m_head.size(), piece.data.size()));
    return piece;
}
