#include "model/ProcessingLevel.h"

namespace {

// In the order of the numbers.
const QStringList& names()
{
    static const QStringList theNames{
        QStringLiteral("AutoSync"), QStringLiteral("Man24"),      QStringLiteral("Man48"),
        QStringLiteral("Man72"),    QStringLiteral("Unattended"),
    };
    return theNames;
}

} // namespace

QString processingLevelName(int processingLevel)
{
    return names().value(processingLevel);
}

std::optional<ProcessingLevel> processingLevelNamed(const QString& name)
{
    for (qsizetype i = 0; i < names().size(); ++i) {
        if (names().at(i).compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<ProcessingLevel>(i);
    }
    return std::nullopt;
}

QStringList processingLevelNames()
{
    return names();
}
