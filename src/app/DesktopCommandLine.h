#pragma once

#include "settings/PollInterval.h"

#include <QString>

#include <optional>
#include <variant>

// What the desktop program was started with. Options of Qt's own (-style, -platform …) have been taken out before.
struct DesktopCommandLine
{
    std::optional<QString> secureHost;
    std::optional<QString> fileHost;
    double pollInterval = PollInterval::standard; // seconds
    // The stand-in service is started as a child, with its account filled in and the user's settings left alone.
    bool demo = false;

    // The command line, or the code to exit with at once: after --help and --version, and after a wrong use, whose
    // words are then on standard error.
    [[nodiscard]] static std::variant<DesktopCommandLine, int> read(int argc, const char* const* argv);
};
