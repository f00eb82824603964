#include "transcript/TranscriptPrefill.h"

#include "foundation/DateText.h"
#include "foundation/PathText.h"
#include "transcript/DepositionFileParser.h"
#include "transcript/TranscriptFileType.h"

std::optional<TranscriptPrefill::Reading> TranscriptPrefill::read(const QString& path)
{
    if (!TranscriptFileType::isParsed(PathText::pathExtension(path)))
        return std::nullopt;
    Reading reading;
    try {
        const auto parser = DepositionFileParser::depositionFileParserWithFilePath(path);
        if (!parser)
            return std::nullopt;
        reading.firstName = parser->deponentFirstName();
        reading.lastName = parser->deponentLastName();
        reading.dateString = parser->dateString();
        if (!reading.dateString.isEmpty())
            reading.date = DateText::readLeniently(reading.dateString);
    } catch (const DeponentNameOutOfRange&) {
        reading.isOutOfRange = true;
    }
    return reading;
}
