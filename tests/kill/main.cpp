// Kills the program at many moments and tells what came of it.

#include "Figures.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <fmt/format.h>

#include <numeric>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    CLI::App app("Kills the program at many moments of its road, resumes, and expects every order at its end.");
    int moments = 200;
    int atOnce = 6;
    std::uint64_t seed = 1;
    std::optional<int> only;
    std::string program = CLI_PROGRAM;
    app.add_option("--moments", moments, "Scenarios, each with its own moments (200)")->check(CLI::PositiveNumber);
    app.add_option("--seed", seed, "What the moments are drawn from (1)");
    app.add_option("--at-once", atOnce, "Scenarios side by side (6)")->check(CLI::Range(1, 64));
    app.add_option("--only", only, "This scenario alone, by its number");
    app.add_option("--program", program, "Another quillpost-cli than the one built beside this");
    CLI11_PARSE(app, argc, argv);

    std::string failure;
    const auto common = leaveOrdersAlone(failure, QString::fromStdString(program));
    if (!common) {
        fmt::print(stderr, "{}\n", failure);
        return 1;
    }
    std::vector<int> numbers{only.value_or(0)};
    if (!only) {
        numbers.resize(static_cast<std::size_t>(moments));
        std::iota(numbers.begin(), numbers.end(), 0);
    }
    const Figures figures = runScenarios(seed, numbers, atOnce, *common);
    for (const std::string& words : figures.failures())
        fmt::print("FAILED {}\n\n", words);
    fmt::print("seed {}; an undisturbed order takes {} ms\n{}", seed, common->once.road.duration.count() / 1000,
               figures.table());
    return figures.failures().empty() ? 0 : 1;
}
