#pragma once

#include <QJsonObject>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace Bench {

// What a row's ratio is held against.
enum class Goal {
    RatioAtMost, // ours over theirs
    OursAtMost,  // ours by itself, in the row's unit
    None,        // shown for comparison
};

// One line of the table: a figure of ours beside that of another program, from runs that were taken in turn.
struct Row
{
    QString number{}; // "3" or "3 memory"
    QString work{};   // what was done
    QString beside{}; // the other program; empty when ours stands alone
    QString unit{};   // "s", "ms", "MB", "%"
    Goal goal = Goal::None;
    double limit = 0;
    std::vector<double> ours{};   // one figure of each run
    std::vector<double> others{}; // of the run taken together with it; empty when ours stands alone

    [[nodiscard]] double oursMedian() const;
    [[nodiscard]] std::optional<double> othersMedian() const;
    // The ratios of the pairs.
    [[nodiscard]] std::vector<double> ratios() const;
    // Their median, and what most departs from it.
    [[nodiscard]] std::optional<double> ratio() const;
    // Smallest and largest ratio of a pair; of ours where it stands alone.
    [[nodiscard]] std::pair<double, double> spread() const;
    [[nodiscard]] std::optional<bool> isMet() const;
    [[nodiscard]] QString goalText() const;
    [[nodiscard]] QJsonObject toJson() const;
};

[[nodiscard]] double median(std::vector<double> values);

// Runs the two in turn, so many times each; which of them begins changes from pair to pair, so that what warms up, or
// slows down, does so for both.
void inTurn(int runs, const std::function<void()>& ours, const std::function<void()>& theirs);

} // namespace Bench
