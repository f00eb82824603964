#pragma once

#include <QString>

// The two percent-encodings of form values. Which field is sent with which is fixed by the service, field by field.
namespace UrlEncoding {

// Everything but unreserved characters is escaped, from the text's UTF-8.
[[nodiscard]] QString urlEncodeUsingEncoding(const QString& text);

// Escapes what may not stand in a URL's query. "&", "=", "+", "/", "?", ":" and "@" pass as they are, so a value that
// holds "&" or "=" breaks its field apart; the service expects exactly this.
[[nodiscard]] QString urlQueryString(const QString& text);

} // namespace UrlEncoding
