#include "commands/UrlEncoding.h"

#include <QByteArray>

namespace {

// `passes` names the ASCII characters beyond letters and digits that stay as they are.
QString percentEncoded(const QString& text, const char* passes)
{
    static constexpr char hexDigits[] = "0123456789ABCDEF";
    const QByteArray allowed(passes);
    QByteArray encoded;
    for (const char c : text.toUtf8()) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isAlphanumeric =
            (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9');
        if (isAlphanumeric || (byte != 0 && byte < 0x80 && allowed.contains(c)))
            encoded += c;
        else
            encoded.append('%').append(hexDigits[byte >> 4]).append(hexDigits[byte & 15]);
    }
    return QString::fromLatin1(encoded);
}

} // namespace

QString UrlEncoding::urlEncodeUsingEncoding(const QString& text)
{
    return percentEncoded(text, "-._~");
}

QString UrlEncoding::urlQueryString(const QString& text)
{
    return percentEncoded(text, "!$&'()*+,-./:;=?@_~");
}
