#include "settings/ServiceHosts.h"

#include "foundation/Text.h"
#include "foundation/UserDefaults.h"
#include "settings/SettingsKey.h"

#include <QUrl>

#include <algorithm>
#include <arpa/inet.h>
#include <limits>
#include <utility>

namespace {

// A host as it was given: the text, and the words for the place that gave it.
struct Given
{
    QString text;
    QString place;
};

// What one of the two hosts is called in each place.
struct Kind
{
    QString scheme;
    const char* words;
    const char* option;
    const char* variable;
    QString settingsKey;
};

const Kind secureKind{QStringLiteral("https"), "the service's secure host", "--secure-host",
                      ServiceHosts::secureHostVariable, SettingsKey::SecureHost};
const Kind fileKind{QStringLiteral("http"), "the service's file host", "--file-host", ServiceHosts::fileHostVariable,
                    SettingsKey::FileHost};

// Either the host or what is wrong with its text.
using ReadHost = std::variant<ServiceHosts::Host, QString>;

bool isAsciiLetterOrDigit(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
}

bool isNumericAddress(int family, const QString& text)
{
    unsigned char address[sizeof(in6_addr)] = {};
    return ::inet_pton(family, text.toLatin1().constData(), address) == 1;
}

bool isHostName(const QString& name)
{
    constexpr qsizetype longestName = 253;
    constexpr qsizetype longestLabel = 63;
    if (name.size() > longestName)
        return false;
    const QStringList labels = name.split(u'.');
    const bool holds = std::all_of(labels.begin(), labels.end(), [](const QString& label) {
        return !label.isEmpty() && label.size() <= longestLabel && !label.startsWith(u'-') && !label.endsWith(u'-') &&
               std::all_of(label.begin(), label.end(),
                           [](QChar c) { return isAsciiLetterOrDigit(c) || c == u'-' || c == u'_'; });
    });
    // No name ends in a number: "10.0.0.256" is a slip in an address.
    const bool endsInNumber =
        std::all_of(labels.last().begin(), labels.last().end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    return holds && (!endsInNumber || isNumericAddress(AF_INET, name));
}

std::optional<std::uint16_t> readPort(const QString& text)
{
    constexpr qsizetype mostDigits = 5;
    if (text.isEmpty() || text.size() > mostDigits ||
        !std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; }))
        return std::nullopt;
    const int port = text.toInt();
    if (port < 1 || port > std::numeric_limits<std::uint16_t>::max())
        return std::nullopt;
    return static_cast<std::uint16_t>(port);
}

// "HOST", "HOST:PORT", "[ADDRESS]" or "[ADDRESS]:PORT".
ReadHost readAuthority(const QString& authority)
{
    ServiceHosts::Host host;
    QString afterName;
    if (authority.startsWith(u'[')) {
        const qsizetype end = authority.indexOf(u']');
        if (end < 0 || !isNumericAddress(AF_INET6, authority.mid(1, end - 1)))
            return QStringLiteral("the IPv6 address in it is not valid");
        host.name = authority.left(end + 1).toLower();
        afterName = authority.mid(end + 1);
        if (!afterName.isEmpty() && !afterName.startsWith(u':'))
            return QStringLiteral("something other than a port follows the address");
    } else {
        if (authority.count(u':') > 1)
            return QStringLiteral("it has more than one colon; an IPv6 address needs brackets, as in [::1]");
        const qsizetype colon = authority.indexOf(u':');
        const QString name = colon < 0 ? authority : authority.left(colon);
        if (name.isEmpty())
            return QStringLiteral("it names no host");
        host.name = QString::fromLatin1(QUrl::toAce(name)).toLower();
        if (host.name.isEmpty() || !isHostName(host.name))
            return QStringLiteral("its host name is not valid");
        afterName = colon < 0 ? QString() : authority.mid(colon);
    }
    if (!afterName.isEmpty()) {
        host.port = readPort(afterName.mid(1));
        if (!host.port)
            return QStringLiteral("its port is not a number from 1 to 65535");
    }
    return host;
}

ReadHost readHost(const QString& text, const QString& scheme)
{
    if (text.isEmpty())
        return QStringLiteral("it is empty");
    if (std::any_of(text.begin(), text.end(),
                    [](QChar c) { return c.isSpace() || c.category() == QChar::Other_Control; }))
        return QStringLiteral("it holds blanks");
    const qsizetype schemeEnd = text.indexOf(QStringLiteral("://"));
    if (schemeEnd <= 0)
        return Text::format("it does not begin with {}://", scheme);
    const QString givenScheme = text.left(schemeEnd).toLower();
    if (givenScheme != scheme) {
        if (scheme == secureKind.scheme && givenScheme == fileKind.scheme)
            return QStringLiteral("it must be https, because passwords travel to it");
        return Text::format("it does not begin with {}://", scheme);
    }
    const QString rest = text.mid(schemeEnd + 3);
    if (rest.contains(u'#'))
        return QStringLiteral("it has a fragment (#)");
    if (rest.contains(u'?'))
        return QStringLiteral("it has a query (?)");
    const qsizetype slash = rest.indexOf(u'/');
    const QString authority = slash < 0 ? rest : rest.left(slash);
    if (authority.contains(u'@'))
        return QStringLiteral("it holds a user name or password");
    if (slash >= 0 && slash + 1 != rest.size())
        return QStringLiteral("it has a path; only scheme, host and port are wanted");
    return readAuthority(authority);
}

Error hostError(const QString& words)
{
    return {ErrorDomain::Platform, 0, words};
}

std::variant<ServiceHosts::Host, Error> hostOf(const Given& given, const Kind& kind)
{
    const ReadHost read = readHost(given.text, kind.scheme);
    if (const auto* host = std::get_if<ServiceHosts::Host>(&read))
        return *host;
    // What follows an @ or precedes it may be a password, which belongs on no screen and in no log.
    const QString shown = given.text.contains(u'@') ? QString() : Text::format(" \"{}\"", given.text);
    return hostError(Text::format("The address{} of {} given by {} is not usable: {}. Write it as {}://HOST or "
                                  "{}://HOST:PORT.",
                                  shown, kind.words, given.place, std::get<QString>(read), kind.scheme, kind.scheme));
}

std::variant<Given, Error> given(const std::optional<QString>& commandLine, const UserDefaults& defaults,
                                 const ServiceHosts::EnvironmentLookup& environment, const Kind& kind)
{
    if (commandLine)
        return Given{*commandLine, Text::format("the option {}", kind.option)};
    if (const QString text = environment(kind.variable); !text.isEmpty())
        return Given{text, Text::format("the environment variable {}", kind.variable)};
    if (const QString text = defaults.value(kind.settingsKey).toString(); !text.isEmpty())
        return Given{text, Text::format("the settings key {}", kind.settingsKey)};
    return hostError(Text::format("No address of {} is given. Give it with the option {}, the environment variable {} "
                                  "or the settings key {}, as {}://HOST or {}://HOST:PORT.",
                                  kind.words, kind.option, kind.variable, kind.settingsKey, kind.scheme, kind.scheme));
}

std::variant<ServiceHosts, Error> hostsOf(const Given& secure, const Given& file)
{
    auto secureHost = hostOf(secure, secureKind);
    if (const Error* error = std::get_if<Error>(&secureHost))
        return *error;
    auto fileHost = hostOf(file, fileKind);
    if (const Error* error = std::get_if<Error>(&fileHost))
        return *error;
    return ServiceHosts(std::get<ServiceHosts::Host>(secureHost), std::get<ServiceHosts::Host>(fileHost));
}

QString urlOf(const QString& scheme, const ServiceHosts::Host& host, const QString& path)
{
    const QString port = host.port ? u':' + QString::number(*host.port) : QString();
    return scheme + QStringLiteral("://") + host.name + port + path;
}

} // namespace

ServiceHosts::ServiceHosts(Host secure, Host file) : m_secure(std::move(secure)), m_file(std::move(file)) {}

std::variant<ServiceHosts, Error> ServiceHosts::fromTexts(const QString& secureHost, const QString& fileHost)
{
    const QString place = QStringLiteral("the program");
    return hostsOf({secureHost, place}, {fileHost, place});
}

std::variant<ServiceHosts, Error> ServiceHosts::read(const std::optional<QString>& commandLineSecure,
                                                     const std::optional<QString>& commandLineFile,
                                                     const UserDefaults& defaults, const EnvironmentLookup& environment)
{
    const auto secure = given(commandLineSecure, defaults, environment, secureKind);
    if (const Error* error = std::get_if<Error>(&secure))
        return *error;
    const auto file = given(commandLineFile, defaults, environment, fileKind);
    if (const Error* error = std::get_if<Error>(&file))
        return *error;
    return hostsOf(std::get<Given>(secure), std::get<Given>(file));
}

QString ServiceHosts::secureUrl(const QString& path) const
{
    return urlOf(secureKind.scheme, m_secure, path);
}

QString ServiceHosts::fileUrl(const QString& path) const
{
    return urlOf(fileKind.scheme, m_file, path);
}

ServiceHosts::EnvironmentLookup ServiceHosts::processEnvironment()
{
    return [](const char* name) { return qEnvironmentVariable(name); };
}
