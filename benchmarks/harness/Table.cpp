#include "harness/Table.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QStringList>
#include <QSysInfo>
#include <QThread>

#include <algorithm>

namespace Bench {

namespace {

QString figure(double value)
{
    const int digits = value >= 100 ? 0 : value >= 10 ? 1 : value >= 0.1 ? 3 : 5;
    return QString::number(value, 'f', digits);
}

QStringList cellsOf(const Row& row)
{
    const auto [least, most] = row.spread();
    const auto ratio = row.ratio();
    const auto others = row.othersMedian();
    const auto isMet = row.isMet();
    return {row.number,
            row.work,
            row.beside,
            figure(row.oursMedian()) + u' ' + row.unit,
            others ? figure(*others) + u' ' + row.unit : QString(),
            ratio ? QString::number(*ratio, 'f', 3) : QString(),
            QStringLiteral("%1 .. %2")
                .arg(ratio ? QString::number(least, 'f', 3) : figure(least),
                     ratio ? QString::number(most, 'f', 3) : figure(most)),
            row.goalText(),
            !isMet   ? QString()
            : *isMet ? QStringLiteral("met")
                     : QStringLiteral("MISSED")};
}

QString lineInFile(const QString& path, const QString& pattern)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const auto match =
        QRegularExpression(pattern, QRegularExpression::MultilineOption).match(QString::fromUtf8(file.readAll()));
    return match.captured(1).simplified();
}

} // namespace

QString tableOf(const std::vector<Row>& rows)
{
    std::vector<QStringList> lines{{QStringLiteral("row"), QStringLiteral("work"), QStringLiteral("beside"),
                                    QStringLiteral("ours"), QStringLiteral("theirs"), QStringLiteral("ratio"),
                                    QStringLiteral("spread"), QStringLiteral("goal"), QString()}};
    for (const Row& row : rows)
        lines.push_back(cellsOf(row));
    std::vector<qsizetype> widths(static_cast<std::size_t>(lines.front().size()), 3);
    for (const QStringList& line : lines) {
        for (qsizetype i = 0; i < line.size(); ++i)
            widths[static_cast<std::size_t>(i)] = std::max(widths[static_cast<std::size_t>(i)], line.at(i).size());
    }
    QString text;
    for (std::size_t number = 0; number < lines.size(); ++number) {
        text += u'|';
        QString rule(u'|');
        for (qsizetype i = 0; i < lines[number].size(); ++i) {
            const qsizetype width = widths[static_cast<std::size_t>(i)];
            text += u' ' + lines[number].at(i).leftJustified(width) + QStringLiteral(" |");
            rule += QString(width + 2, u'-') + u'|';
        }
        text += u'\n';
        if (number == 0)
            text += rule + u'\n';
    }
    return text;
}

QString machineText()
{
    const double gigabytes =
        lineInFile(QStringLiteral("/proc/meminfo"), QStringLiteral("^MemTotal:\\s*(\\d+)")).toDouble() / 1024 / 1024;
    return QStringLiteral("%1 x %2, %3 GiB, %4 %5, kernel %6")
        .arg(QThread::idealThreadCount())
        .arg(lineInFile(QStringLiteral("/proc/cpuinfo"), QStringLiteral("^model name\\s*:\\s*(.*)$")))
        .arg(gigabytes, 0, 'f', 0)
        .arg(QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture(), QSysInfo::kernelVersion());
}

bool writeJson(const std::vector<Row>& rows, const QString& path)
{
    QJsonArray array;
    for (const Row& row : rows)
        array.append(row.toJson());
    const QJsonObject document{{QStringLiteral("machine"), machineText()},
                               {QStringLiteral("taken"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate)},
                               {QStringLiteral("rows"), array}};
    QFile file(path);
    const QByteArray bytes = QJsonDocument(document).toJson();
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size() && file.flush();
}

} // namespace Bench
