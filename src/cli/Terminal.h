#pragma once

#include <QString>

#include <optional>

// The terminal that the program runs on, if any.
namespace Terminal {

[[nodiscard]] bool isStandardOutput();
// Columns; 80 where unknown.
[[nodiscard]] int width();
// Asks on the terminal itself, whatever standard input is, without echo. Nothing where there is no terminal or the
// user ended the input; an interruption restores the echo.
[[nodiscard]] std::optional<QString> askSecret(const QString& prompt);

// The words of the service and names of files must not drive the terminal.
[[nodiscard]] QString withoutControls(const QString& text);

void printOut(const QString& line);
void printError(const QString& line);

} // namespace Terminal
