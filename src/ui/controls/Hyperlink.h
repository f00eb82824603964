#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

class QUrl;

// A text that can be clicked, as rich text for a label.
namespace Hyperlink {

// The program's.
[[nodiscard]] QPalette defaultPalette();

// The text, over its whole length a link to the URL's absolute string: underlined once, in the label's own font, in
// the link colour of the palette. The text is taken as it stands; nothing in it is read as markup.
[[nodiscard]] QString hyperlinkFromString(const QString& text, const QUrl& withURL,
                                          const QPalette& palette = defaultPalette());
// Blue; a lighter one where the palette's own link colour could not be read on its windows.
[[nodiscard]] QColor linkColor(const QPalette& palette);

} // namespace Hyperlink
