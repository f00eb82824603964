#include "Figures.h"

#include "support/GeneratedMedia.h"

#include <fmt/format.h>

#include <atomic>
#include <thread>

namespace {

std::string rows(const std::string& heading, const std::map<std::string, int>& counts)
{
    std::string text = heading + "\n";
    for (const auto& [name, count] : counts)
        text += fmt::format("  {:<28} {:5}\n", name, count);
    if (counts.empty())
        text += "  none\n";
    return text;
}

} // namespace

void Figures::add(const Plan& plan, Outcome outcome)
{
    ++m_scenarios;
    m_orders += plan.orders;
    m_lost += outcome.failures.empty() ? 0 : 1;
    for (const std::string& failure : outcome.failures)
        m_failures.push_back(plan.text() + ": " + failure);
    for (const std::string& kill : outcome.kills)
        ++m_kills[kill];
    for (const std::string& step : outcome.steps)
        ++m_steps[step];
    for (const auto& [kind, count] : outcome.repeats)
        m_sum.repeats[kind] += count;
    m_sum.missed += outcome.missed;
    m_sum.resumes += outcome.resumes;
    m_sum.notTaken += outcome.notTaken;
    m_sum.cutFiles += outcome.cutFiles;
    m_sum.twins += outcome.twins;
    m_sum.announced += outcome.announced;
    m_sum.announcedInVain += outcome.announcedInVain;
    m_sum.withoutFormat += outcome.withoutFormat;
}

std::string Figures::table() const
{
    int kills = 0;
    for (const auto& [aim, count] : m_kills)
        kills += count;
    std::string text = fmt::format("{} scenarios with {} orders: {} runs killed ({} while resuming), {} moments that "
                                   "came after the end; {} scenarios failed\n",
                                   m_scenarios, m_orders, kills, m_sum.resumes, m_sum.missed, m_lost);
    text += rows("Killed, by what was aimed at:", m_kills);
    text += rows("Killed, by how far the orders were saved:", m_steps);
    text += rows("Requests repeated:", m_sum.repeats);
    text += fmt::format("Orders held twice by the service: {}, told of: {}; told of in vain: {}\n", m_sum.twins,
                        m_sum.announced, m_sum.announcedInVain);
    text += fmt::format("Orders killed before anything was saved, and given again: {}\n", m_sum.notTaken);
    text += fmt::format("Saved jobs cut as by a power cut: {}\n", m_sum.cutFiles);
    text += fmt::format("Segments whose streams the service was not told of: {}\n", m_sum.withoutFormat);
    return text;
}

std::unique_ptr<const Common> leaveOrdersAlone(std::string& failure, const QString& program)
{
    auto common = std::make_unique<Common>();
    common->program = program;
    GeneratedMedia::sound(common->folder.filePath(QStringLiteral("a.wav")));
    GeneratedMedia::sound(common->folder.filePath(QStringLiteral("b.wav")), 2);
    GeneratedMedia::film(common->folder.filePath(QStringLiteral("c.mp4")));
    for (const bool again : {false, true}) {
        Plan plan(0, 0);
        plan.orders = 1;
        plan.again = again;
        auto undisturbed = Scenario(plan, *common).runUndisturbed(*common, failure);
        if (!undisturbed)
            return nullptr;
        (again ? common->again : common->once) = std::move(*undisturbed);
    }
    return common;
}

Figures runScenarios(std::uint64_t seed, const std::vector<int>& numbers, int atOnce, const Common& common)
{
    Figures figures;
    std::mutex mutex; // guards figures
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t index = next++; index < numbers.size(); index = next++) {
            const Plan plan(seed, numbers[index]);
            Outcome outcome = Scenario(plan, common).run();
            const std::scoped_lock lock(mutex);
            figures.add(plan, std::move(outcome));
        }
    };
    std::vector<std::thread> threads;
    for (int thread = 0; thread < atOnce; ++thread)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
    return figures;
}
