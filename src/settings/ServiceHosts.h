#pragma once

#include "foundation/Error.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <variant>

class UserDefaults;

// Where the service is: its secure host, reached over https alone because passwords travel, and its plain-http host of
// three static files. A value; copied freely between threads.
class ServiceHosts
{
public:
    struct Host
    {
        // A name, an IPv4 address, or an IPv6 address in its brackets.
        QString name;
        std::optional<std::uint16_t> port = std::nullopt;

        bool operator==(const Host&) const = default;
    };

    // The environment variable of that name; empty where it is not set.
    using EnvironmentLookup = std::function<QString(const char* name)>;

    static constexpr const char* secureHostVariable = "QUILLPOST_SECURE_HOST";
    static constexpr const char* fileHostVariable = "QUILLPOST_FILE_HOST";

    ServiceHosts(Host secure, Host file);

    // "https://HOST[:PORT]" and "http://HOST[:PORT]", with or without a closing slash.
    [[nodiscard]] static std::variant<ServiceHosts, Error> fromTexts(const QString& secureHost,
                                                                     const QString& fileHost);

    // Each host from the first place that gives it: the command line, the environment, the settings. There is no
    // default. The error says which place is wrong and how to put it right; it never repeats a password.
    [[nodiscard]] static std::variant<ServiceHosts, Error>
    read(const std::optional<QString>& commandLineSecure, const std::optional<QString>& commandLineFile,
         const UserDefaults& defaults, const EnvironmentLookup& environment = processEnvironment());

    // `path` begins with a slash and is appended as it stands.
    [[nodiscard]] QString secureUrl(const QString& path) const;
    [[nodiscard]] QString fileUrl(const QString& path) const;

    [[nodiscard]] const Host& secureHost() const { return m_secure; }
    [[nodiscard]] const Host& fileHost() const { return m_file; }

    bool operator==(const ServiceHosts&) const = default;

private:
    [[nodiscard]] static EnvironmentLookup processEnvironment();

    Host m_secure;
    Host m_file;
};
