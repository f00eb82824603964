// A transcript file, in whatever encoding.
#include "FuzzTarget.h"

#include "transcript/TranscriptPrefill.h"
#include "transcript/TranscriptText.h"

#include <QRegularExpression>

using FuzzTarget::require;

FUZZ_TARGET(Transcript)
{
    const QString path = FuzzTarget::writeFile(FuzzTarget::emptyFolder() + QStringLiteral("/a.txt"), input);
    const auto read = TranscriptText::read(path);
    require(read.text == TranscriptText::decode(input), "a file is read as its bytes are");
    require(read.text.has_value() == read.error.isEmpty(), "there is a text or an error");
    const auto prefill = TranscriptPrefill::read(path);
    require(prefill.has_value() == read.text.has_value(), "what is a text is looked into");
    if (!prefill)
        return;

    const QString& text = *read.text;
    require(text.isValidUtf16(), "a text is made of whole characters");
    if (!text.contains(QChar(u'\0')) && !text.startsWith(QChar(QChar::ByteOrderMark)))
        require(TranscriptText::decode(text.toUtf8()) == text, "a text written as UTF-8 is read as it was");

    const auto again = TranscriptPrefill::read(path);
    require(again && again->firstName == prefill->firstName && again->lastName == prefill->lastName &&
                again->dateString == prefill->dateString && again->date == prefill->date &&
                again->isOutOfRange == prefill->isOutOfRange,
            "reading twice gives the same");
    if (prefill->isOutOfRange)
        require(prefill->firstName.isEmpty() && prefill->lastName.isEmpty() && prefill->dateString.isEmpty(),
                "nothing is taken of a corporate witness");
    require(prefill->firstName == prefill->firstName.trimmed() && prefill->lastName == prefill->lastName.trimmed(),
            "names have no space around them");
    static const QRegularExpression date(QStringLiteral(
        "^(-?[0-9]{1,10} (january|february|march|april|may|june|july|august|september|october|november|december) "
        "-?[0-9]{1,10})?$"));
    require(date.match(prefill->dateString).hasMatch(), "a date is a day, a month and a year");
    require(!prefill->date || prefill->date->isValid(), "a date that is read is one");
}
