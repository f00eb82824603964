#include "harness/ChildRun.h"
#include "rows/Rows.h"
#include "rows/VirtualScreen.h"

#include <QJsonObject>

namespace {

constexpr int jobCount = 10000;
constexpr double goalRatio = 1.3;

struct Line
{
    const char* figure;
    const char* work;
    bool hasGoal;
};

constexpr Line lines[]{
    {"sortClosed", "10,000 jobs sorted by each column", true},
    {"sortOpen", "the same, all 40,000 files shown", true},
    {"scrollClosed", "10,000 jobs scrolled through by pages", true},
    {"scrollOpen", "the same, all 40,000 files shown", true},
    {"expand", "10,000 jobs expanded", false},
    {"collapse", "10,000 jobs collapsed", false},
};

} // namespace

std::vector<Bench::Row> Rows::jobList(const Bench::Context& context)
{
    const Bench::VirtualScreen screen;
    const int count = std::max(100, static_cast<int>(jobCount * context.scale));
    const auto measure = [&](const char* which) {
        return Bench::runChild({context.program(QStringLiteral("quillpost-bench-joblist")), QLatin1String(which),
                                QString::number(count)},
                               {.folder = context.folder.path(), .environment = screen.environment()})
            .report();
    };
    std::vector<QJsonObject> ours;
    std::vector<QJsonObject> bare;
    Bench::inTurn(
        context.runs, [&] { ours.push_back(measure("ours")); }, [&] { bare.push_back(measure("bare")); });
    std::vector<Bench::Row> rows;
    for (const Line& line : lines) {
        const auto figures = [&](const std::vector<QJsonObject>& reports) {
            std::vector<double> all;
            for (const QJsonObject& report : reports)
                all.push_back(report.value(QLatin1String(line.figure)).toDouble() * 1000);
            return all;
        };
        rows.push_back({.number = QStringLiteral("8"),
                        .work = QLatin1String(line.work),
                        .beside = QStringLiteral("bare Qt tree"),
                        .unit = QStringLiteral("ms"),
                        .goal = line.hasGoal ? Bench::Goal::RatioAtMost : Bench::Goal::None,
                        .limit = goalRatio,
                        .ours = figures(ours),
                        .others = figures(bare)});
    }
    return rows;
}
