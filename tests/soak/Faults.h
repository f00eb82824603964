#pragma once

#include <QString>

#include <optional>
#include <random>

// What goes wrong, in the order that a seed gives.
class Faults
{
public:
    explicit Faults(unsigned seed) : m_random(seed) {}

    // The order to the service that makes something go wrong with the next job; nothing for most of them.
    [[nodiscard]] std::optional<QString> next();
    // True once in `number` times.
    [[nodiscard]] bool isOneIn(int number);
    // From 0 to `end` - 1.
    [[nodiscard]] int below(int end);

private:
    std::mt19937 m_random;
};
