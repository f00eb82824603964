#include "transcript/TranscriptText.h"

#include "foundation/Text.h"

#include <QFile>
#include <QFileInfo>
#include <unicode/ucnv.h>
#include <unicode/ucsdet.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

// Far above any transcript: a thousand pages are some 2 MiB. Decoded and cut into lines, a file takes several times
// its size in memory.
constexpr qint64 largestFile = 64LL * 1024 * 1024;
// The detector reads no more than this.
constexpr qsizetype sampleSize = 8192;

// Decodes the whole or nothing: a byte that has no meaning in the encoding makes it the wrong encoding.
std::optional<QString> decodeStrictly(QByteArrayView bytes, const char* encoding)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUConverterPointer converter(ucnv_open(encoding, &status));
    if (U_FAILURE(status))
        return std::nullopt;
    ucnv_setToUCallBack(converter.getAlias(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    // No encoding used here makes more code units than it has bytes.
    QString text(bytes.size(), Qt::Uninitialized);
    auto* const begin = reinterpret_cast<char16_t*>(text.data());
    char16_t* target = begin;
    const char* source = bytes.data();
    ucnv_toUnicode(converter.getAlias(), &target, begin + text.size(), &source, source + bytes.size(), nullptr, true,
                   &status);
    if (U_FAILURE(status))
        return std::nullopt;
    text.truncate(target - begin);
    return text;
}

QString decodeWestern(QByteArrayView bytes)
{
    // Every byte has a meaning in this table of the converter's; the five that Windows leaves open are controls.
    return decodeStrictly(bytes, "windows-1252").value_or(QString::fromLatin1(bytes));
}

bool isAsciiLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isAscii(char c)
{
    return static_cast<unsigned char>(c) < 0x80;
}

bool isAllAscii(QByteArrayView bytes)
{
    unsigned char all = 0;
    for (const char c : bytes)
        all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
    return all < 0x80;
}

// A few curly quotes, dashes and accents in English make statistical detection guess at random; only a text whose
// letters are mostly not ASCII tells enough about itself.
bool isMostlyForeign(QByteArrayView bytes)
{
    const auto letters = std::count_if(bytes.begin(), bytes.end(), isAsciiLetter);
    const auto ascii = std::count_if(bytes.begin(), bytes.end(), isAscii);
    return bytes.size() - ascii > letters;
}

std::optional<QString> decodeForeign(QByteArrayView bytes)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUCharsetDetectorPointer detector(ucsdet_open(&status));
    const auto firstForeign = std::find_if_not(bytes.begin(), bytes.end(), isAscii);
    const QByteArrayView sample = bytes.sliced(firstForeign - bytes.begin())
                                      .first(std::min(sampleSize, static_cast<qsizetype>(bytes.end() - firstForeign)));
    if (U_SUCCESS(status))
        ucsdet_setText(detector.getAlias(), sample.data(), static_cast<int32_t>(sample.size()), &status);
    int32_t found = 0;
    const UCharsetMatch** const matches =
        U_SUCCESS(status) ? ucsdet_detectAll(detector.getAlias(), &found, &status) : nullptr;
    if (U_FAILURE(status))
        return std::nullopt;
    for (int32_t i = 0; i < found; ++i) {
        const std::string_view name = ucsdet_getName(matches[i], &status);
        if (U_FAILURE(status) || ucsdet_getConfidence(matches[i], &status) < 30)
            break;
        // A mark or a zero in every other byte tells the wide encodings; a mainframe's is no transcript.
        if (name.starts_with("UTF-") || name.starts_with("IBM") || name.starts_with("ISO-2022"))
            continue;
        if (auto text = decodeStrictly(bytes, name == "ISO-8859-1" ? "windows-1252" : name.data()))
            return text;
    }
    return std::nullopt;
}

// UTF-16 without a mark, only when it is beyond doubt: one of each pair of bytes is zero at least half of the time,
// and the other hardly ever.
const char* unmarkedWideEncoding(QByteArrayView bytes)
{
    if (bytes.size() < 2 || bytes.size() % 2 != 0)
        return nullptr;
    std::array<qsizetype, 2> zeros{};
    const qsizetype looked = std::min(bytes.size(), sampleSize);
    for (qsizetype i = 0; i < looked; ++i) {
        if (bytes[i] == '\0')
            ++zeros[static_cast<std::size_t>(i % 2)];
    }
    if (zeros[1] * 4 >= looked && zeros[0] * 20 <= zeros[1])
        return "UTF-16LE";
    if (zeros[0] * 4 >= looked && zeros[1] * 20 <= zeros[0])
        return "UTF-16BE";
    return nullptr;
}

struct Mark
{
    QByteArrayView bytes;
    const char* encoding;
};

// UTF-32's little-endian mark begins with UTF-16's, so it is asked for first.
const std::array<Mark, 4> wideMarks{{
    {QByteArrayView("\xFF\xFE\0\0", 4), "UTF-32LE"},
    {QByteArrayView("\0\0\xFE\xFF", 4), "UTF-32BE"},
    {QByteArrayView("\xFF\xFE", 2), "UTF-16LE"},
    {QByteArrayView("\xFE\xFF", 2), "UTF-16BE"},
}};
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

} // namespace

std::optional<QString> TranscriptText::decode(QByteArrayView bytes)
{
    for (const Mark& mark : wideMarks) {
        if (bytes.startsWith(mark.bytes)) {
            // The mark's bytes are neither ASCII nor UTF-8, so there is nothing to fall back on.
            return decodeStrictly(bytes.sliced(mark.bytes.size()), mark.encoding);
        }
    }
    if (bytes.startsWith(QByteArrayView(utf8Mark)))
        bytes = bytes.sliced(static_cast<qsizetype>(utf8Mark.size()));
    if (const char* const wide = unmarkedWideEncoding(bytes)) {
        if (auto text = decodeStrictly(bytes, wide))
            return text;
    }
    // What most transcripts are; also valid UTF-8, which takes longer to find out.
    if (isAllAscii(bytes))
        return QString::fromLatin1(bytes);
    if (auto text = decodeStrictly(bytes, "UTF-8"))
        return text;
    if (isMostlyForeign(bytes)) {
        if (auto text = decodeForeign(bytes))
            return text;
    }
    return decodeWestern(bytes);
}

TranscriptText::Reading TranscriptText::read(const QString& path)
{
    // Opening a pipe would wait for its writer, and a device may never end.
    const QFileInfo info(path);
    if (path.isEmpty() || (info.exists() && !info.isFile()))
        return {.text = {}, .error = Text::format("\"{}\" is not a regular file", path)};
    if (info.size() > largestFile)
        return {.text = {}, .error = Text::format("\"{}\" is too large for a transcript", path)};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {.text = {}, .error = Text::format("\"{}\": {}", path, file.errorString())};
    const QByteArray bytes = file.read(largestFile);
    if (file.error() != QFileDevice::NoError)
        return {.text = {}, .error = Text::format("\"{}\": {}", path, file.errorString())};
    auto text = decode(bytes);
    if (!text)
        return {.text = {}, .error = Text::format("\"{}\" is text in no known encoding", path)};
    return {.text = std::move(text), .error = {}};
}
