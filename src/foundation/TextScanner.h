#pragma once

#include <QString>

#include <optional>

// Reads a text from front to back. Each reading operation first skips white space and line ends, leaves the place where
// it was when it fails, and matches words without regard to letter case unless told otherwise.
class TextScanner
{
public:
    explicit TextScanner(QString text, Qt::CaseSensitivity caseSensitivity = Qt::CaseInsensitive);

    // Only white space and line ends are left.
    [[nodiscard]] bool isAtEnd() const;
    [[nodiscard]] qsizetype location() const { return m_location; }
    void setLocation(qsizetype location);

    bool scanString(QStringView word);
    // A sign and decimal digits; stops at the ends of int.
    std::optional<int> scanInt();
    // The text up to `word`, or to the end when it does not come; nothing when that is empty.
    std::optional<QString> scanUpToString(QStringView word);
    // The text up to white space or a line end; nothing at the end.
    std::optional<QString> scanWord();
    // The rest of the line without its end; nothing when that is empty.
    std::optional<QString> scanLine();
    // The rest as it stands, nothing skipped.
    [[nodiscard]] QString rest() const;

private:
    [[nodiscard]] qsizetype afterWhiteSpace() const;

    QString m_text;
    Qt::CaseSensitivity m_caseSensitivity;
    qsizetype m_location = 0;
};
