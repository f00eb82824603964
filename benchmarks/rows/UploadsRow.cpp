#include "harness/BulkService.h"
#include "harness/ChildRun.h"
#include "harness/InputFiles.h"
#include "rows/Rows.h"

using namespace Bench;

namespace {

constexpr int uploadsAtOnce = 4;
constexpr double freeMegabytes = 64;
// A pair takes less than a second, in which the machine's host may do anything: only the median of many is steady.
constexpr int pairsForARun = 5;

// One command line of curl for each file, as xargs reads them.
QByteArray commandLines(const QStringList& files, long long size, int port)
{
    QByteArray lines;
    for (const QString& file : files)
        lines += QStringLiteral("-k -s -S -f -F user=demo -F pass=demo1234 -F file_size=%1 "
                                "-F file=@%2;type=application/octet-stream -F 'submit=Submit Query' "
                                "https://127.0.0.1:%3/saltine/test_custupload2.php\n")
                     .arg(size)
                     .arg(file)
                     .arg(port)
                     .toLocal8Bit();
    return lines;
}

} // namespace

std::vector<Row> Rows::uploads(const Context& context)
{
    const auto size = static_cast<long long>(100 * megabyte * context.scale);
    const double allMegabytes = static_cast<double>(uploadsAtOnce * size) / 1024 / 1024;
    QStringList files;
    for (int i = 0; i < uploadsAtOnce; ++i)
        files << noiseFile(context, QStringLiteral("Upload-%1.mp3").arg(i + 1), size, static_cast<unsigned>(i));
    const BulkService service(BulkService::Wire::Tls, [](const QByteArray& path, const QByteArray&) {
        return path.contains("upload") ? QByteArray("UPLOAD COMPLETE") : QByteArray();
    });
    Row wall{
        .number = QStringLiteral("3"),
        .work =
            QStringLiteral("%1 uploads at once of %2 MB each, TLS on loopback").arg(uploadsAtOnce).arg(size / megabyte),
        .beside = QStringLiteral("curl -F"),
        .unit = QStringLiteral("s"),
        .goal = Goal::RatioAtMost,
        .limit = 1.02};
    Row cpu{.number = QStringLiteral("3 cpu"),
            .work = QStringLiteral("processor time of it"),
            .beside = wall.beside,
            .unit = wall.unit};
    Row memory{.number = QStringLiteral("3 memory"),
               .work = QStringLiteral("largest resident set of it"),
               .unit = QStringLiteral("MB"),
               .goal = Goal::OursAtMost,
               .limit = allMegabytes + freeMegabytes};

    const auto ours = [&] {
        const QString folder = freshFolder(context, QStringLiteral("uploads"));
        const QString host = QStringLiteral("://127.0.0.1:%1").arg(service.port());
        const long long before = service.received();
        const QJsonObject report = runChild(QStringList{context.program(QStringLiteral("quillpost-bench-engine")),
                                                        QStringLiteral("upload"), QStringLiteral("https") + host,
                                                        QStringLiteral("http") + host, folder, context.transcript()} +
                                            files)
                                       .report();
        if (service.received() - before < uploadsAtOnce * size)
            fail(QStringLiteral("the uploads did not arrive whole"));
        wall.ours.push_back(report.value(QStringLiteral("seconds")).toDouble());
        cpu.ours.push_back(report.value(QStringLiteral("cpu")).toDouble());
        memory.ours.push_back(report.value(QStringLiteral("peakMegabytes")).toDouble());
    };
    const auto theirs = [&] {
        const ChildRun run = runChild({QStringLiteral("xargs"), QStringLiteral("-L"), QStringLiteral("1"),
                                       QStringLiteral("-P"), QString::number(uploadsAtOnce), QStringLiteral("curl")},
                                      {.input = commandLines(files, size, service.port())});
        wall.others.push_back(run.seconds);
        cpu.others.push_back(run.cpuSeconds);
    };
    inTurn(pairsForARun * context.runs, ours, theirs);
    return {wall, cpu, memory};
}
