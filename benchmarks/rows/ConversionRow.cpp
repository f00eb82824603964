#include "harness/ChildRun.h"
#include "harness/InputFiles.h"
#include "rows/Rows.h"

using namespace Bench;

namespace {

constexpr int recordings = 8;
constexpr int lengthInSeconds = 20 * 60;
const QString nowhere = QStringLiteral("127.0.0.1:9"); // nothing is sent

// One command line of ffmpeg for each film, as xargs reads them.
QByteArray commandLines(const QStringList& films, const QString& folder)
{
    QByteArray lines;
    for (qsizetype i = 0; i < films.size(); ++i)
        lines += QStringLiteral("-i %1 -ab 24000 -ar 11025 -ac 1 -acodec libmp3lame -y %2/%3.mp3\n")
                     .arg(films.at(i), folder)
                     .arg(i)
                     .toLocal8Bit();
    return lines;
}

} // namespace

std::vector<Row> Rows::conversion(const Context& context)
{
    const int seconds = std::max(1, static_cast<int>(lengthInSeconds * context.scale));
    const QStringList inputs = films(context, recordings, seconds);
    const QString work =
        QStringLiteral("%1 recordings of %2 min converted, 2 at a time").arg(recordings).arg(seconds / 60.0);
    Row wall{.number = QStringLiteral("1"),
             .work = work,
             .beside = QStringLiteral("ffmpeg under xargs -P 2"),
             .unit = QStringLiteral("s"),
             .goal = Goal::RatioAtMost,
             .limit = 1.02};
    Row cpu{.number = QStringLiteral("2"),
            .work = QStringLiteral("own processor time during row 1, of ffmpeg's"),
            .unit = QStringLiteral("%"),
            .goal = Goal::OursAtMost,
            .limit = 1};
    Row memory{.number = QStringLiteral("1 memory"),
               .work = QStringLiteral("largest resident set of the program itself during row 1"),
               .unit = QStringLiteral("MB")};

    const auto ours = [&] {
        const QString folder = freshFolder(context, QStringLiteral("conversion"));
        settleDisk();
        const QJsonObject report =
            runChild(QStringList{context.program(QStringLiteral("quillpost-bench-engine")), QStringLiteral("convert"),
                                 QStringLiteral("https://") + nowhere, QStringLiteral("http://") + nowhere, folder,
                                 context.transcript()} +
                     inputs)
                .report();
        wall.ours.push_back(report.value(QStringLiteral("seconds")).toDouble());
        cpu.ours.push_back(100 * report.value(QStringLiteral("cpu")).toDouble() /
                           report.value(QStringLiteral("childrenCpu")).toDouble());
        memory.ours.push_back(report.value(QStringLiteral("peakMegabytes")).toDouble());
    };
    const auto theirs = [&] {
        const QString folder = freshFolder(context, QStringLiteral("conversion"));
        settleDisk();
        wall.others.push_back(
            runChild({QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("exec xargs -L 1 -P 2 ffmpeg 2>log")},
                     {.folder = folder, .input = commandLines(inputs, folder)})
                .seconds);
    };
    inTurn(context.runs, ours, theirs);
    return {wall, cpu, memory};
}
