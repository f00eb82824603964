#pragma once

#include "foundation/Secrets.h"

#include <QString>

#include <optional>

// The passwords that came in the environment, which no longer has them.
struct PasswordVariables
{
    static constexpr const char* passwordName = "QUILLPOST_PASSWORD";
    static constexpr const char* newPasswordName = "QUILLPOST_NEW_PASSWORD";

    std::optional<QString> password;
    std::optional<QString> newPassword;

    // First thing in the program: until then others of the same user can see them, and other threads must not run.
    [[nodiscard]] static PasswordVariables take()
    {
        return {Secrets::takeFromEnvironment(passwordName), Secrets::takeFromEnvironment(newPasswordName)};
    }
};
