#include "works/ZipSample.h"

#include "harness/InputFiles.h"

#include "archive/ZipHandles.h"

#include <QByteArray>
#include <zip.h>

#include <algorithm>
#include <array>
#include <random>

namespace {

// Sizes in tenths of the mean; their mean is ten.
constexpr std::array<std::uint64_t, 8> sizesInTenths{1, 20, 4, 16, 6, 14, 9, 10};
constexpr std::size_t stockSize = 8U << 20;

// Words of a made-up language by a law as that of real ones, so that it deflates to less than half, as prose and
// markup do.
QByteArray prose(std::size_t size)
{
    std::mt19937 random(11);
    std::array<QByteArray, 4000> words;
    for (QByteArray& word : words) {
        for (unsigned letters = 2 + random() % 8; letters > 0; --letters)
            word += "etaoinshrdlucmfwypvbgkqjxz"[std::min(random() % 26, random() % 26)];
    }
    QByteArray text;
    for (unsigned count = 1; static_cast<std::size_t>(text.size()) < size; ++count) {
        const double place = std::generate_canonical<double, 32>(random);
        text += words[static_cast<std::size_t>(place * place * place * 4000) % words.size()];
        text += count % 12 == 0 ? "\r\n" : " ";
    }
    return text;
}

bool add(zipFile zip, const QByteArray& name, const char* data, std::uint64_t size, bool isStored)
{
    zip_fileinfo info{};
    info.dosDate = (45U << 25) | (3U << 21) | (4U << 16) | (10U << 11) | (20U << 5);
    return zipOpenNewFileInZip64(zip, name.constData(), &info, nullptr, 0, nullptr, 0, nullptr,
                                 isStored ? 0 : Z_DEFLATED, Z_DEFAULT_COMPRESSION, 0) == ZIP_OK &&
           zipWriteInFileInZip(zip, data, static_cast<unsigned>(size)) == ZIP_OK && zipCloseFileInZip(zip) == ZIP_OK;
}

} // namespace

bool ZipSample::write(const QString& path, int entries, std::uint64_t bytes)
{
    const ZipHandle zip(zipOpen64(path.toUtf8().constData(), APPEND_STATUS_CREATE));
    const std::uint64_t mean = bytes / static_cast<std::uint64_t>(std::max(entries, 1));
    const std::uint64_t stock = std::max<std::uint64_t>(stockSize, 4 * mean);
    const QByteArray text = prose(stock);
    const QByteArray media = Bench::noise(static_cast<long long>(stock), 7);
    std::mt19937_64 random(13);
    for (int i = 0; zip && i < entries; ++i) {
        const std::uint64_t size = mean * sizesInTenths[static_cast<std::size_t>(i / 4) % sizesInTenths.size()] / 10;
        const bool isText = i % 2 == 0;
        const bool isStored = i % 4 == 1;
        const QByteArray name = "viewer/" + QByteArray::number(i / 100) + '/' + (isText ? "pages/" : "media/") +
                                QByteArray::number(i) +
                                (isText     ? ".html"
                                 : isStored ? ".mp3"
                                            : ".png");
        if (!add(zip.get(), name, (isText ? text : media).constData() + random() % (stock - size), size, isStored))
            return false;
    }
    return zip != nullptr;
}
