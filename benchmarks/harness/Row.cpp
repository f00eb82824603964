#include "harness/Row.h"

#include <QJsonArray>

#include <algorithm>

namespace Bench {

namespace {

QJsonArray toArray(const std::vector<double>& values)
{
    QJsonArray array;
    for (const double value : values)
        array.append(value);
    return array;
}

} // namespace

double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double Row::oursMedian() const
{
    return median(ours);
}

std::optional<double> Row::othersMedian() const
{
    return others.empty() ? std::nullopt : std::optional(median(others));
}

std::vector<double> Row::ratios() const
{
    std::vector<double> all;
    for (std::size_t i = 0; i < std::min(ours.size(), others.size()); ++i) {
        if (others[i] > 0)
            all.push_back(ours[i] / others[i]);
    }
    return all;
}

std::optional<double> Row::ratio() const
{
    const std::vector<double> all = ratios();
    return all.empty() ? std::nullopt : std::optional(median(all));
}

std::pair<double, double> Row::spread() const
{
    std::vector<double> all = ratios();
    if (all.empty())
        all = ours;
    if (all.empty())
        return {};
    const auto [least, most] = std::minmax_element(all.begin(), all.end());
    return {*least, *most};
}

std::optional<bool> Row::isMet() const
{
    switch (goal) {
    case Goal::RatioAtMost:
        return ratio() ? std::optional(*ratio() <= limit) : std::nullopt;
    case Goal::OursAtMost:
        return oursMedian() <= limit;
    case Goal::None:
        break;
    }
    return std::nullopt;
}

QString Row::goalText() const
{
    switch (goal) {
    case Goal::RatioAtMost:
        return QStringLiteral("ratio <= %1").arg(limit);
    case Goal::OursAtMost:
        return QStringLiteral("<= %1 %2").arg(limit).arg(unit);
    case Goal::None:
        break;
    }
    return {};
}

QJsonObject Row::toJson() const
{
    const auto [least, most] = spread();
    QJsonObject object{{QStringLiteral("row"), number},
                       {QStringLiteral("work"), work},
                       {QStringLiteral("beside"), beside},
                       {QStringLiteral("unit"), unit},
                       {QStringLiteral("goal"), goalText()},
                       {QStringLiteral("ours"), toArray(ours)},
                       {QStringLiteral("others"), toArray(others)},
                       {QStringLiteral("oursMedian"), oursMedian()},
                       {QStringLiteral("spread"), QJsonArray{least, most}}};
    if (const auto value = othersMedian())
        object.insert(QStringLiteral("othersMedian"), *value);
    if (const auto value = ratio())
        object.insert(QStringLiteral("ratio"), *value);
    if (const auto value = isMet())
        object.insert(QStringLiteral("isMet"), *value);
    return object;
}

void inTurn(int runs, const std::function<void()>& ours, const std::function<void()>& theirs)
{
    for (int run = 0; run < runs; ++run) {
        (run % 2 == 0 ? ours : theirs)();
        (run % 2 == 0 ? theirs : ours)();
    }
}

} // namespace Bench
