#include "harness/BulkService.h"
#include "harness/ChildRun.h"
#include "harness/InputFiles.h"
#include "rows/Rows.h"
#include "rows/VirtualScreen.h"

using namespace Bench;

namespace {

constexpr double worstAllowed = 50; // ms
constexpr double late99Allowed = 5;

QByteArray answer(const QByteArray& path, const QByteArray& /*form*/)
{
    if (path.endsWith("cauthorize2.php"))
        return "OK: 4711";
    return path.contains("upload") ? "UPLOAD COMPLETE" : "";
}

Row rowOf(const char* during, const char* what, double limit)
{
    return {
        .number = QStringLiteral("9"),
        .work =
            QStringLiteral("event loop with the window open, %1: %2").arg(QLatin1String(during), QLatin1String(what)),
        .beside = QStringLiteral("an idle window"),
        .unit = QStringLiteral("ms late"),
        .goal = Goal::OursAtMost,
        .limit = limit};
}

} // namespace

std::vector<Row> Rows::heartbeat(const Context& context)
{
    const QStringList recordings = films(context, 8, std::max(1, static_cast<int>(1200 * context.scale)));
    QStringList files;
    for (int i = 0; i < 4; ++i)
        files << noiseFile(context, QStringLiteral("Upload-%1.mp3").arg(i + 1),
                           static_cast<long long>(100 * megabyte * context.scale), static_cast<unsigned>(i));
    const BulkService secure(BulkService::Wire::Tls, answer);
    const BulkService plain(BulkService::Wire::Plain, answer);
    const VirtualScreen screen;

    std::vector<Row> rows{rowOf("row 1", "worst", worstAllowed), rowOf("row 1", "99 %", late99Allowed),
                          rowOf("row 3", "worst", worstAllowed), rowOf("row 3", "99 %", late99Allowed)};
    for (int run = 0; run < context.runs; ++run) {
        settleDisk();
        const QJsonObject report = runChild(QStringList{context.program(QStringLiteral("quillpost-bench-heartbeat")),
                                                        context.samples.absolutePath(),
                                                        QStringLiteral("https://127.0.0.1:%1").arg(secure.port()),
                                                        QStringLiteral("http://127.0.0.1:%1").arg(plain.port())} +
                                                recordings + QStringList{QStringLiteral("--")} + files,
                                            {.environment = screen.environment()})
                                       .report();
        const auto figure = [&](const char* during, const char* name) {
            return report.value(QLatin1String(during)).toObject().value(QLatin1String(name)).toDouble();
        };
        std::size_t row = 0;
        for (const char* const during : {"conversions", "uploads"}) {
            for (const char* const name : {"worst", "late99"}) {
                rows[row].ours.push_back(figure(during, name));
                rows[row].others.push_back(figure("idle", name));
                ++row;
            }
        }
    }
    return rows;
}
