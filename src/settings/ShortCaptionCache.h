#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVariant>

// The short captions entered before, as they lie in the settings: a JSON array of texts.
namespace ShortCaptionCache {

[[nodiscard]] QByteArray archived(const QStringList& captions);
// What is no text is left out; what is no array is no captions.
[[nodiscard]] QStringList unarchived(const QVariant& data);

} // namespace ShortCaptionCache
