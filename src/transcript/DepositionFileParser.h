#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <stdexcept>

// Thrown for the transcript of a corporate witness ("30(b)(6)" on or above the deponent's line): the name's end cannot
// be told, so nothing is prefilled for it.
class DeponentNameOutOfRange : public std::out_of_range
{
public:
    DeponentNameOutOfRange() : std::out_of_range("the deponent's last name is not part of the name found") {}
};

// Guesses the deponent's name and the date of the deposition from a transcript's cover page, to prefill empty fields.
// Heuristic: what it does not find is left empty. One object for one transcript, on one thread at a time; it keeps
// nothing of the transcript but the three texts. Its time is linear in the length of the file.
class DepositionFileParser
{
public:
    // Null when the file cannot be read as text, or memory does not suffice for it, which is logged as an error. Throws
    // DeponentNameOutOfRange.
    [[nodiscard]] static std::shared_ptr<DepositionFileParser> depositionFileParserWithFilePath(const QString& path);

    // All of the name before the last name; it may hold several words, titles and initials. Null when not found.
    [[nodiscard]] QString deponentFirstName() const { return m_deponentFirstName; }
    void setDeponentFirstName(const QString& name) { m_deponentFirstName = name; }
    [[nodiscard]] QString deponentLastName() const { return m_deponentLastName; }
    void setDeponentLastName(const QString& name) { m_deponentLastName = name; }
    // "05 january 2010"; null when not found. Not checked against a calendar.
    [[nodiscard]] QString dateString() const { return m_dateString; }
    void setDateString(const QString& date) { m_dateString = date; }

    // The words of one line, numbered from 0. See LineWords for what separates them and for words past the end.
    [[nodiscard]] static qsizetype getNumWords(const QString& text);
    [[nodiscard]] static QString getWord(const QString& text, qsizetype num);
    [[nodiscard]] static qsizetype getWordPos(const QString& text, qsizetype num);
    // The pieces between white space within the line, without empty ones.
    [[nodiscard]] static QStringList wordArray(const QString& text);

    // The index of the line on which the deponent was found, whose names are then set; 0 when there is none.
    // Throws DeponentNameOutOfRange, with nothing set.
    int findDeponent(const QStringList& lines);
    // Looks for a date on the lines from `startLine` up to, without it, `endLine`, then on all lines but the last.
    void findDepoDate(const QStringList& lines, qsizetype startLine, qsizetype endLine);

private:
    QString m_deponentFirstName;
    QString m_deponentLastName;
    QString m_dateString;
};
