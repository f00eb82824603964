#include "harness/ChildRun.h"
#include "harness/InputFiles.h"
#include "harness/Relay.h"
#include "rows/RoadWaits.h"
#include "rows/Rows.h"

#include "demo-service/Service.h"

#include <QFile>
#include <QJsonArray>

#include <algorithm>

using namespace Bench;

namespace {

constexpr int recordings = 4;
constexpr double allowed = 1.05;

// Notes when each ffmpeg began and ended, in a file beside; otherwise it is ffmpeg. It costs the time of a shell's
// start, which counts as the engine's.
void writeFfmpeg(const QString& folder)
{
    QDir(folder).mkpath(QStringLiteral("bin"));
    QFile script(folder + QStringLiteral("/bin/ffmpeg"));
    if (!script.open(QIODevice::WriteOnly) ||
        script.write("#!/bin/bash\n"
                     "begin=$EPOCHREALTIME\n"
                     "PATH=${PATH#*:} command ffmpeg \"$@\"\n"
                     "code=$?\n"
                     "echo \"$begin $EPOCHREALTIME\" >>\"${0%/*}/spans\"\n"
                     "exit $code\n") < 0 ||
        !script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        fail(QStringLiteral("the script around ffmpeg could not be made"));
}

void addFfmpegRuns(const QString& folder, std::vector<RoadWaits::Work>& works)
{
    QFile spans(folder + QStringLiteral("/bin/spans"));
    if (!spans.open(QIODevice::ReadOnly))
        fail(QStringLiteral("no ffmpeg ran"));
    for (const QByteArray& line : spans.readAll().trimmed().split('\n')) {
        const QList<QByteArray> times = line.split(' ');
        works.push_back({.kind = RoadWaits::Work::Kind::Ffmpeg,
                         .begin = times.value(0).toDouble(),
                         .end = times.value(1).toDouble()});
    }
}

// A connection carries one request; the service knows which, and when it came.
void addTransfers(const Relay& relay, std::vector<DemoService::Request> requests, std::vector<RoadWaits::Work>& works)
{
    const auto secondsOf = [](const DemoService::Request& request) {
        return std::chrono::duration<double>(request.time.time_since_epoch()).count();
    };
    bool isDownloading = false;
    for (const Relay::Span& span : relay.spans()) {
        const auto request = std::find_if(requests.begin(), requests.end(), [&](const DemoService::Request& each) {
            return !each.onFileHost && secondsOf(each) >= span.begin && secondsOf(each) <= span.end;
        });
        if (request == requests.end())
            continue; // broken off at the program's end
        const QString endpoint = QString::fromStdString(request->endpoint);
        const bool isOfDelivery = endpoint == u"test_downloadjob2.php" || endpoint == u"miscstuff.php";
        works.push_back({.kind = RoadWaits::Work::Kind::Transfer,
                         .endpoint = endpoint,
                         .isNested = isOfDelivery && isDownloading,
                         .begin = span.begin,
                         .end = span.end});
        isDownloading = isDownloading || isOfDelivery;
        requests.erase(request);
    }
}

std::vector<double> timesOf(const QJsonValue& array)
{
    std::vector<double> times;
    for (const QJsonValue& value : array.toArray())
        times.push_back(value.toDouble());
    return times;
}

RoadWaits::Record recordOf(const QJsonObject& report)
{
    RoadWaits::Record record{.queueStarted = report.value(QStringLiteral("queueStarted")).toDouble(),
                             .submitted = report.value(QStringLiteral("submitted")).toDouble(),
                             .completed = report.value(QStringLiteral("completed")).toDouble(),
                             .finderLooks = timesOf(report.value(QStringLiteral("looks"))),
                             .polls = timesOf(report.value(QStringLiteral("polls")))};
    for (const QJsonValue& value : report.value(QStringLiteral("queued")).toArray())
        record.queued.push_back({value.toObject().value(QStringLiteral("endpoint")).toString(),
                                 value.toObject().value(QStringLiteral("time")).toDouble()});
    return record;
}

RoadWaits::Result travel(const Context& context, const QStringList& inputs, int phase)
{
    const QString folder = freshFolder(context, QStringLiteral("road"));
    writeFfmpeg(folder);
    DemoService::Service service;
    const Relay secure(service.securePort());
    const Relay plain(service.filePort());
    ChildOptions options;
    options.environment.insert(QStringLiteral("PATH"),
                               folder + QStringLiteral("/bin:") + options.environment.value(QStringLiteral("PATH")));
    settleDisk();
    const QJsonObject report = runChild(QStringList{context.program(QStringLiteral("quillpost-bench-road")),
                                                    QStringLiteral("https://127.0.0.1:%1").arg(secure.port()),
                                                    QStringLiteral("http://127.0.0.1:%1").arg(plain.port()), folder,
                                                    QString::number(phase), context.transcript()} +
                                            inputs,
                                        options)
                                   .report();
    std::vector<RoadWaits::Work> works;
    addFfmpegRuns(folder, works);
    addTransfers(secure, service.requests(), works);
    for (const Relay::Span& span : plain.spans())
        works.push_back(
            {.endpoint = QStringLiteral("file host"), .isNested = true, .begin = span.begin, .end = span.end});
    return RoadWaits::of(recordOf(report), works, {.poll = report.value(QStringLiteral("pollInterval")).toDouble()});
}

} // namespace

std::vector<Row> Rows::wholeRoad(const Context& context)
{
    const QStringList inputs = films(context, recordings, std::max(1, static_cast<int>(120 * context.scale)));
    Row row{.number = QStringLiteral("11"),
            .work = QStringLiteral("one job of %1 recordings, less ffmpeg's and the transfers' time").arg(recordings),
            .beside = QStringLiteral("the waits of the design"),
            .unit = QStringLiteral("s"),
            .goal = Goal::RatioAtMost,
            .limit = allowed};
    for (int run = 0; run < context.runs; ++run) {
        // The finder's looks and the queue's ticks fall together or apart by chance; each run has it another way.
        const RoadWaits::Result result = travel(context, inputs, 10 + 20 * run % 100);
        row.ours.push_back(result.idle);
        row.others.push_back(result.demanded);
    }
    return {row};
}
