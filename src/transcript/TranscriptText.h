#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// A transcript file as text. Pure but for the file; callable from every thread.
namespace TranscriptText {

struct Reading
{
    // Nothing when the file cannot be read as text.
    std::optional<QString> text;
    // Why not, for the log.
    QString error;
};

// Reads a regular file of at most 64 MiB whole; anything else (a folder, a pipe, a device) is an error. Throws
// std::bad_alloc where memory does not suffice.
[[nodiscard]] Reading read(const QString& path);

// The text of `bytes`: by byte-order mark (UTF-8, UTF-16, UTF-32), else UTF-16 where every other byte says so, else
// UTF-8 where it is valid, else a single-byte or East Asian encoding, which is Windows-1252 unless most letters are
// foreign. The mark is not part of the text. Nothing where a UTF-16 or UTF-32 mark is followed by something else.
[[nodiscard]] std::optional<QString> decode(QByteArrayView bytes);

} // namespace TranscriptText
