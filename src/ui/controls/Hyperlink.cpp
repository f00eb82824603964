#include "ui/controls/Hyperlink.h"

#include <QGuiApplication>
#include <QUrl>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double readableContrast = 4.5;

double linear(float channel)
{
    const auto value = static_cast<double>(channel);
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other)
{
    const double first = luminance(one);
    const double second = luminance(other);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

} // namespace

QPalette Hyperlink::defaultPalette()
{
    return QGuiApplication::palette();
}

QColor Hyperlink::linkColor(const QPalette& palette)
{
    const QColor ground = palette.color(QPalette::Window);
    QColor color = palette.color(QPalette::Link);
    if (contrast(color, ground) >= readableContrast)
        return color;
    // Lightness moves towards the side of the text, which the palette's maker chose to be readable.
    const bool isDark = luminance(ground) < luminance(palette.color(QPalette::WindowText));
    constexpr float step = 0.02F;
    const float hue = std::max(0.0F, QColor(Qt::blue).hslHueF());
    for (float lightness = 0.5F; lightness > step && lightness < 1.0F - step; lightness += isDark ? step : -step) {
        color = QColor::fromHslF(hue, 1.0F, lightness);
        if (contrast(color, ground) >= readableContrast)
            return color;
    }
    return palette.color(QPalette::WindowText);
}

QString Hyperlink::hyperlinkFromString(const QString& text, const QUrl& withURL, const QPalette& palette)
{
    return u"<a href=\""_s + withURL.toString(QUrl::FullyEncoded).toHtmlEscaped() +
           u"\"><span style=\"text-decoration: underline; color: "_s + linkColor(palette).name() + u"\">"_s +
           text.toHtmlEscaped() + u"</span></a>"_s;
}
