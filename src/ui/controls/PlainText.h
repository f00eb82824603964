#pragma once

#include <QString>

// Texts of others (file names, replies of the service) in places that read markup where they find it.
namespace PlainText {

// For a tooltip: shown as it stands, whatever markup it seems to hold.
[[nodiscard]] QString toolTip(const QString& text);

} // namespace PlainText
