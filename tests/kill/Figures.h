#pragma once

#include "Scenario.h"

#include <map>
#include <string>
#include <vector>

// What many scenarios came to.
class Figures
{
public:
    void add(const Plan& plan, Outcome outcome);

    // Each with the plan that leads to it.
    [[nodiscard]] const std::vector<std::string>& failures() const { return m_failures; }
    [[nodiscard]] int scenarios() const { return m_scenarios; }
    [[nodiscard]] std::string table() const;

private:
    int m_scenarios = 0;
    int m_orders = 0;
    int m_lost = 0; // scenarios that failed
    Outcome m_sum;  // without lists
    std::map<std::string, int> m_kills;
    std::map<std::string, int> m_steps;
    std::vector<std::string> m_failures;
};

// How orders go that nobody disturbs, for all scenarios to measure by; null, with the words in `failure`, where they do
// not go.
[[nodiscard]] std::unique_ptr<const Common> leaveOrdersAlone(std::string& failure,
                                                             const QString& program = QStringLiteral(CLI_PROGRAM));

// Runs the scenarios with these numbers, so many at once.
[[nodiscard]] Figures runScenarios(std::uint64_t seed, const std::vector<int>& numbers, int atOnce,
                                   const Common& common);
