#pragma once

#include <QList>
#include <QString>

#include <optional>

class QTextBlock;
class QTextDocument;

// Finding a text in the lines of a document, whatever its case. Matches do not overlap and do not run over a line's
// end. Positions are the document's.
class LogSearch
{
public:
    struct Match
    {
        int position = 0;
        int length = 0;

        bool operator==(const Match&) const = default;
    };

    explicit LogSearch(const QTextDocument& document) : m_document(document) {}

    [[nodiscard]] qsizetype count(const QString& text) const;
    // Those of one line, the first so many of them.
    [[nodiscard]] static QList<Match> matchesOf(const QTextBlock& line, const QString& text, qsizetype atMost);
    // The number of the match that begins there, counted from 1; 0 when none does.
    [[nodiscard]] qsizetype numberOf(const QString& text, const Match& match) const;
    // The first that begins at `from` or after it; behind the last one, the first of all.
    [[nodiscard]] std::optional<Match> next(const QString& text, int from) const;
    // The last that ends at `before` or ahead of it; ahead of the first one, the last of all.
    [[nodiscard]] std::optional<Match> previous(const QString& text, int before) const;

private:
    const QTextDocument& m_document;
};
