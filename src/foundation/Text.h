#pragma once

#include <QString>
#include <fmt/format.h>

#include <string>
#include <string_view>

// Composing texts with fmt: QString goes in as UTF-8, the result comes out as a QString. Values are inserted as they
// stand; unlike QString::arg, a value that holds "%1" or "{}" is never read as a place to fill.
template <>
struct fmt::formatter<QString> : fmt::formatter<std::string_view>
{
    template <typename FormatContext>
    auto format(const QString& text, FormatContext& context) const
    {
        const QByteArray utf8 = text.toUtf8();
        return fmt::formatter<std::string_view>::format(
            std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())), context);
    }
};

namespace Text {

template <typename... Args>
[[nodiscard]] QString format(fmt::format_string<Args...> pattern, Args&&... args)
{
    return QString::fromStdString(fmt::format(pattern, std::forward<Args>(args)...));
}

} // namespace Text
