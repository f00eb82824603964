// The service's reply to a status request.
#include "FuzzTarget.h"

#include "engine/StatusReply.h"
#include "foundation/Text.h"

#include <algorithm>

using FuzzTarget::require;

namespace {

bool holdsLineEnd(const QString& text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        return (c >= u'\n' && c <= u'\r') || c == QChar(0x0085) || c == QChar(0x2028) || c == QChar(0x2029);
    });
}

bool holdsSpace(const QString& text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
}

} // namespace

FUZZ_TARGET(StatusReply)
{
    const QString reply = QString::fromUtf8(input);
    const auto depositions = StatusReply::depositions(reply);
    const auto segments = StatusReply::segments(reply);
    require(depositions == StatusReply::depositions(reply) && segments == StatusReply::segments(reply),
            "reading twice gives the same");
    require(static_cast<qsizetype>(depositions.size()) <= reply.count(u"Depo:", Qt::CaseInsensitive),
            "each deposition has its word");
    require(static_cast<qsizetype>(segments.size()) <= reply.count(u"Segment:", Qt::CaseInsensitive),
            "each segment has its word");

    std::vector<StatusReply::Deposition> named;
    QString written;
    for (const auto& record : depositions) {
        require(!holdsLineEnd(record.transcriptName) && !holdsLineEnd(record.status), "a deposition is of one line");
        require(!record.status.contains(u' '), "a deposition's status is one word");
        if (record.transcriptName.isEmpty())
            continue;
        named.push_back(record);
        written += Text::format("Depo: {} {} {}\n", record.number, record.transcriptName, record.status);
    }
    QString writtenSegments;
    for (const auto& record : segments) {
        require(!record.status.isEmpty() && !holdsSpace(record.status), "a segment's status is one word");
        writtenSegments += Text::format("Segment: {} {} {} {} {}\n", record.deposition, record.number, record.status,
                                        record.duration, record.score);
    }
    require(StatusReply::depositions(written) == named, "depositions are read as they are written");
    require(StatusReply::segments(writtenSegments) == segments, "segments are read as they are written");
}
