#include "harness/ChildRun.h"
#include "rows/Rows.h"
#include "rows/VirtualScreen.h"

#include <QJsonObject>

#include <array>

namespace {

constexpr std::array sizes{1000, 10000, 100000}; // depositions
constexpr int goalSize = 10000;
constexpr double goalMilliseconds = 150;
// What taking ten times as much may cost for each deposition, of caches that are too small.
constexpr double linear = 1.5;

struct Figures
{
    std::vector<double> changed; // ms
    std::vector<double> unchanged;
    std::vector<double> longestTurn;
    std::vector<double> wc;
    std::vector<double> awk;
};

class Replies
{
public:
    explicit Replies(const Bench::Context& context) : m_context(context) {}

    void measureOurs(int count, const QString& kind, Figures& figures) const
    {
        const QJsonObject report =
            Bench::runChild({m_context.program(QStringLiteral("quillpost-bench-statusreply")), QString::number(count),
                             kind, textPath(count)},
                            {.folder = m_context.folder.path(), .environment = m_screen.environment()})
                .report();
        const auto figure = [&](const char* name) { return report.value(QLatin1String(name)).toDouble(); };
        figures.changed.push_back(figure("changedMilliseconds"));
        figures.unchanged.push_back(figure("unchangedMilliseconds"));
        figures.longestTurn.push_back(std::max(figure("changedLongestTurn"), figure("unchangedLongestTurn")));
    }

    // The same text, read once.
    void measureTheirs(int count, Figures& figures) const
    {
        figures.wc.push_back(Bench::runChild({QStringLiteral("wc"), textPath(count)}).seconds * 1000);
        figures.awk.push_back(
            Bench::runChild({QStringLiteral("awk"),
                             QStringLiteral("/^Depo:/ { status[$2] = $NF } /^Segment:/ { segment[$2, $3] = $4 } "
                                            "END { print length(status), length(segment) }"),
                             textPath(count)})
                .seconds *
            1000);
    }

private:
    [[nodiscard]] QString textPath(int count) const
    {
        return m_context.folder.filePath(QStringLiteral("status-reply-%1.txt").arg(count));
    }

    const Bench::Context& m_context;
    const Bench::VirtualScreen m_screen;
};

QString work(int count, const QString& what)
{
    return QStringLiteral("status reply, %1 depositions, %2").arg(count).arg(what);
}

// For each deposition, over that at a tenth of the size.
std::vector<double> shares(const std::vector<double>& figures, int count)
{
    std::vector<double> all;
    for (const double figure : figures)
        all.push_back(figure * 1000 / count);
    return all;
}

void addRows(std::vector<Bench::Row>& rows, int count, bool isGoalSize, const QString& kind, const Figures& figures)
{
    const auto add = [&](const QString& what, const QString& beside, const std::vector<double>& ours,
                         const std::vector<double>& others) {
        rows.push_back({.number = QStringLiteral("6"),
                        .work = work(count, kind + QStringLiteral(" jobs, ") + what),
                        .beside = beside,
                        .unit = QStringLiteral("ms"),
                        .goal = isGoalSize ? Bench::Goal::OursAtMost : Bench::Goal::None,
                        .limit = goalMilliseconds,
                        .ours = ours,
                        .others = others});
    };
    add(QStringLiteral("all words new"), QStringLiteral("awk, reading"), figures.changed, figures.awk);
    add(QStringLiteral("nothing new"), QStringLiteral("wc, reading"), figures.unchanged, figures.wc);
    rows.push_back({.number = QStringLiteral("6 turn"),
                    .work = work(count, kind + QStringLiteral(" jobs, longest wait till shown")),
                    .unit = QStringLiteral("ms"),
                    .ours = figures.longestTurn});
}

} // namespace

std::vector<Bench::Row> Rows::statusReply(const Bench::Context& context)
{
    const Replies replies(context);
    std::vector<Bench::Row> rows;
    for (const QString& kind : {QStringLiteral("local"), QStringLiteral("server")}) {
        std::vector<Figures> bySize(sizes.size());
        std::vector<int> counts;
        for (const int size : sizes)
            counts.push_back(std::max(1, static_cast<int>(size * context.scale)));
        // Each run takes all sizes, so that what is set in proportion was taken together.
        for (int run = 0; run < context.runs; ++run) {
            for (std::size_t i = 0; i < sizes.size(); ++i) {
                replies.measureOurs(counts[i], kind, bySize[i]);
                replies.measureTheirs(counts[i], bySize[i]);
            }
        }
        for (std::size_t i = 0; i < sizes.size(); ++i)
            addRows(rows, counts[i], sizes[i] == goalSize, kind, bySize[i]);
        for (std::size_t i = 1; i < sizes.size(); ++i)
            rows.push_back({.number = QStringLiteral("6 growth"),
                            .work = work(counts[i], kind + QStringLiteral(" jobs, for each")),
                            .beside = QStringLiteral("itself at %1").arg(counts[i - 1]),
                            .unit = QStringLiteral("µs"),
                            .goal = Bench::Goal::RatioAtMost,
                            .limit = linear,
                            .ours = shares(bySize[i].changed, counts[i]),
                            .others = shares(bySize[i - 1].changed, counts[i - 1])});
    }
    return rows;
}
