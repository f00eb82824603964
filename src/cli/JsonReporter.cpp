#include "cli/JsonReporter.h"

#include "cli/Terminal.h"

#include <QJsonDocument>

namespace {

template <typename Number>
QJsonValue numberOrNull(const std::optional<Number>& number)
{
    return number ? QJsonValue(*number) : QJsonValue(QJsonValue::Null);
}

QJsonValue textOrNull(const QString& text)
{
    return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QJsonObject asObject(const ProgressRow& row)
{
    QJsonObject object{{QStringLiteral("event"), row.segment == 0 ? QStringLiteral("job") : QStringLiteral("file")},
                       {QStringLiteral("depo"), numberOrNull(row.depoNum)},
                       {QStringLiteral("order"), numberOrNull(row.orderNum)},
                       {QStringLiteral("name"), row.name},
                       {QStringLiteral("status"), row.status},
                       {QStringLiteral("statusText"), textOrNull(row.statusText)},
                       {QStringLiteral("serverStatus"), textOrNull(row.serverStatus)},
                       {QStringLiteral("progress"), numberOrNull(row.fraction())},
                       {QStringLiteral("score"), numberOrNull(row.score)},
                       {QStringLiteral("serverJob"), row.isServerJob}};
    if (row.segment != 0)
        object.insert(QStringLiteral("segment"), row.segment);
    return object;
}

void printObject(const QJsonObject& object)
{
    Terminal::printOut(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

} // namespace

void JsonReporter::print(const ProgressRow& row)
{
    // A status is announced at each reply of the service, whether it is another one or not.
    QJsonObject& told = m_told[{row.depoNum.value_or(0), row.segment}];
    const QJsonObject now = asObject(row);
    if (now == told)
        return;
    told = now;
    printObject(now);
}

void JsonReporter::rowChanged(const ProgressRow& row)
{
    print(row);
}

void JsonReporter::rowsAre(const std::vector<ProgressRow>& rows)
{
    for (const ProgressRow& row : rows)
        print(row);
}

void JsonReporter::showNote(const QString& words)
{
    printObject({{QStringLiteral("event"), QStringLiteral("note")}, {QStringLiteral("message"), words}});
}

void JsonReporter::showError(const QString& words)
{
    printObject({{QStringLiteral("event"), QStringLiteral("error")}, {QStringLiteral("message"), words}});
    Terminal::printError(words);
}

void JsonReporter::result(const QString& /*line*/, const QJsonObject& object)
{
    printObject(object);
}
