#pragma once

#include <QString>
#include <QStringList>

// What a transcript file is, told by its extension without regard to letter case.
namespace TranscriptFileType {

// Read by the deposition file parser.
[[nodiscard]] inline bool isParsed(const QString& extension)
{
    static const QStringList types{QStringLiteral("TXT"), QStringLiteral("PTF"), QStringLiteral("XML"),
                                   QStringLiteral("ASC"), QStringLiteral("CTX"), QStringLiteral("V1"),
                                   QStringLiteral("TRN"), QStringLiteral("WPD"), QStringLiteral("AMI"),
                                   QStringLiteral("PRN")};
    return types.contains(extension.toUpper());
}

// Taken without a remark; never taken for a recording.
[[nodiscard]] inline bool isKnown(const QString& extension)
{
    return isParsed(extension) || extension.toUpper() == u"PTX";
}

inline const QString unknownTypeWarning = QStringLiteral(
    "Only TXT, PTF, XML, ASC, CTX, PTX, V1, TRN, WPD, AMI and PRN files are supported. If you send your transcript in "
    "another format we will make our best effort to synchronize to it -- but there may be additional delays in "
    "processing.");
inline const QString missingExtensionWarning =
    QStringLiteral("Transcript files must have extension in order to be processed.");

} // namespace TranscriptFileType
