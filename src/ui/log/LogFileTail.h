#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// Reads a growing log file piece by piece through one handle, which is never opened again. A log that is full starts
// over in place; it is then read on from its new beginning. Used from one thread; reads of at most one piece at a time.
class LogFileTail
{
public:
    static constexpr qint64 pieceSize = 64 * 1024;

    // False when the file cannot be read.
    [[nodiscard]] bool open(const QString& path);

    [[nodiscard]] bool isOpen() const { return m_file.isOpen(); }

    struct Piece
    {
        QByteArray data;
        // The file has started over before `data`.
        bool isStartedOver = false;
    };
    // What has been written since, up to a piece of it; nothing at the file's end.
    [[nodiscard]] Piece read();

private:
    [[nodiscard]] bool hasStartedOver();

    QFile m_file;
    qint64 m_position = 0;
    QByteArray m_head; // the file's first bytes: other ones there are another beginning
};
