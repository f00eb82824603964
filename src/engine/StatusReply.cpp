#include "engine/StatusReply.h"

#include "foundation/Text.h"
#include "foundation/TextScanner.h"

#include <algorithm>
#include <optional>

namespace {

StatusReply::Deposition readDeposition(TextScanner& scanner)
{
    StatusReply::Deposition record;
    record.number = scanner.scanInt().value_or(0);
    // Line ends are skipped as blanks are, so a line that ends after its number takes the next one as its rest.
    const QString rest = scanner.scanLine().value_or(QString());
    if (const qsizetype blank = rest.lastIndexOf(u' '); blank >= 0) {
        record.transcriptName = rest.left(blank);
        record.status = rest.mid(blank + 1);
    }
    return record;
}

// Moves to the next place of the word, or to the end. A reply is thousands of lines, so the word is looked for by its
// colon, which it ends in, and compared only there.
void skipTo(TextScanner& scanner, QStringView reply, QStringView word)
{
    const qsizetype length = word.size();
    const qsizetype start = scanner.location();
    for (qsizetype colon = reply.indexOf(u':', start); colon >= 0; colon = reply.indexOf(u':', colon + 1)) {
        const qsizetype place = colon + 1 - length;
        if (place >= start && reply.sliced(place, length).compare(word, Qt::CaseInsensitive) == 0) {
            scanner.setLocation(place);
            return;
        }
    }
    scanner.setLocation(reply.size());
}

std::optional<StatusReply::Segment> readSegment(TextScanner& scanner)
{
    const auto deposition = scanner.scanInt();
    const auto number = deposition ? scanner.scanInt() : std::nullopt;
    const auto status = number ? scanner.scanWord() : std::nullopt;
    if (!status)
        return std::nullopt;
    StatusReply::Segment record;
    record.deposition = *deposition;
    record.number = *number;
    record.status = *status;
    record.duration = scanner.scanInt().value_or(-1);
    record.score = scanner.scanInt().value_or(-1);
    return record;
}

} // namespace

std::vector<StatusReply::Deposition> StatusReply::depositions(const QString& reply)
{
    std::vector<Deposition> records;
    TextScanner scanner(reply);
    while (!scanner.isAtEnd()) {
        if (scanner.scanString(u"Depo:"))
            records.push_back(readDeposition(scanner));
        else
            skipTo(scanner, reply, u"Depo:");
    }
    return records;
}

std::vector<StatusReply::Segment> StatusReply::segments(const QString& reply)
{
    std::vector<Segment> records;
    TextScanner scanner(reply);
    while (!scanner.isAtEnd()) {
        if (scanner.scanString(u"Segment:")) {
            if (auto record = readSegment(scanner))
                records.push_back(std::move(*record));
        } else {
            skipTo(scanner, reply, u"Segment:");
        }
    }
    return records;
}

QString StatusReply::simulated(int numberOfDepositions, int numberOfSegments)
{
    QString depositionLines;
    QString segmentLines;
    for (int i = 0; i < numberOfDepositions; ++i) {
        depositionLines += Text::format("Depo: {} Demo 4min.txt Splitting\n", i);
        for (int j = 0; j < numberOfSegments; ++j)
            segmentLines += Text::format("Segment: {} {} Joined 247000 100\n", i, j);
    }
    return depositionLines + segmentLines;
}
