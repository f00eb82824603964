#pragma once

#include <QString>

#include <optional>
#include <string>
#include <string_view>

// What must be read by nobody: the passwords that the program was told. They live in memory as long as the program
// does. Callable from every thread, but for the two that say otherwise.
namespace Secrets {

// Masked from here on, until the end of the program.
void add(const QString& secret);

// The text with "***" for every secret in it, as it stands or as the wire and its replies write it: percent-encoded
// (fully, as a query, as a form), base64, escaped for JSON or for HTML. A secret of fewer than six characters, letters,
// digits and blanks alone, might be any word or number of the program's own, and a mask would then tell it: it is
// masked only where a form field named "pass" or "npass" holds it.
[[nodiscard]] std::string masked(std::string_view text);
[[nodiscard]] QString masked(const QString& text);

// The value of an environment variable, which is then nowhere in the environment: neither that of the programs that
// this one starts nor the one that the system shows of it (/proc/PID/environ). Nothing when it is unset or empty. At
// the start of the program, before other threads.
[[nodiscard]] std::optional<QString> takeFromEnvironment(const char* variable);

// Keeps the system from writing the program's memory to a file when it crashes, and other programs of the user from
// reading it while it runs. Builds whose assertions stop them are for developers and keep their core files. At the
// start of the program.
void keepMemoryPrivate();

} // namespace Secrets
