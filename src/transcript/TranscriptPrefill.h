#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// What a transcript file offers for the form of its order. Callable from every thread; reads the file whole.
namespace TranscriptPrefill {

struct Reading
{
    // Empty where not found.
    QString firstName;
    QString lastName;
    QString dateString;
    // Noon of that day; nothing where the text is no date.
    std::optional<QDateTime> date;
    // A corporate witness's transcript: nothing is taken from it.
    bool isOutOfRange = false;
};

// Nothing for a file of a type that is not parsed, and for one that cannot be read as text.
[[nodiscard]] std::optional<Reading> read(const QString& path);

} // namespace TranscriptPrefill
