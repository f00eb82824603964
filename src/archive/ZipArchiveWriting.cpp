#include "archive/ZipArchive.h"
#include "archive/ZipCipher.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <optional>

namespace {

constexpr qsizetype longestName = 65535;
constexpr qsizetype writeStep = 64LL * 1024 * 1024;
constexpr std::uint64_t firstZip64Size = 0xffffffff;
constexpr uLong encryptedFlag = 1;
// Tells readers that the name is UTF-8.
constexpr uLong utf8NameFlag = 1U << 11;

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

zip_fileinfo infoDated(const std::optional<FileAttributes::Attributes>& attributes)
{
    QDateTime date = attributes ? attributes->modificationDate.toLocalTime() : QDateTime();
    // An archive holds the years from 1980 to 2107.
    if (!date.isValid() || date.date().year() < 1980 || date.date().year() > 2107)
        date = ZipArchive::Date1980();
    zip_fileinfo info{};
    info.tmz_date.tm_year = static_cast<uInt>(date.date().year());
    info.tmz_date.tm_mon = static_cast<uInt>(date.date().month() - 1);
    info.tmz_date.tm_mday = static_cast<uInt>(date.date().day());
    info.tmz_date.tm_hour = static_cast<uInt>(date.time().hour());
    info.tmz_date.tm_min = static_cast<uInt>(date.time().minute());
    info.tmz_date.tm_sec = static_cast<uInt>(date.time().second());
    return info;
}

uLong checksum(const QByteArray& data)
{
    return crc32_z(crc32_z(0, nullptr, 0), reinterpret_cast<const Bytef*>(data.constData()),
                   static_cast<std::size_t>(data.size()));
}

bool writeData(zipFile zip, const QByteArray& data)
{
    for (qsizetype done = 0; done < data.size(); done += writeStep) {
        const qsizetype step = std::min(writeStep, data.size() - done);
        if (zipWriteInFileInZip(zip, data.constData() + done, static_cast<unsigned>(step)) != ZIP_OK)
            return false;
    }
    return true;
}

// The data deflated; nothing when memory does not suffice.
std::optional<QByteArray> deflated(const QByteArray& data, int level)
{
    z_stream stream{};
    if (deflateInit2(&stream, level, Z_DEFLATED, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY) != Z_OK)
        return std::nullopt;
    QByteArray packed;
    std::array<Bytef, 64 * 1024> step{};
    int result = Z_OK;
    for (qsizetype done = 0; result == Z_OK;) {
        if (stream.avail_in == 0) {
            const qsizetype size = std::min(writeStep, data.size() - done);
            stream.next_in = reinterpret_cast<z_const Bytef*>(const_cast<char*>(data.constData() + done));
            stream.avail_in = static_cast<uInt>(size);
            done += size;
        }
        stream.next_out = step.data();
        stream.avail_out = static_cast<uInt>(step.size());
        result = deflate(&stream, done == data.size() ? Z_FINISH : Z_NO_FLUSH);
        packed.append(reinterpret_cast<const char*>(step.data()),
                      static_cast<qsizetype>(step.size() - stream.avail_out));
    }
    deflateEnd(&stream);
    return result == Z_STREAM_END ? std::optional(packed) : std::nullopt;
}

// The bytes of an encrypted entry: the cipher's header, then the data deflated.
std::optional<QByteArray> encrypted(const QByteArray& data, int level, uLong dataChecksum, const QByteArray& password)
{
    const std::optional<QByteArray> packed = deflated(data, level);
    if (!packed)
        return std::nullopt;
    QByteArray bytes(ZipCipher::headerSize - 1, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(QRandomGenerator::system()->bounded(256));
    bytes += static_cast<char>(dataChecksum >> 24);
    bytes += *packed;
    ZipCipher cipher(password);
    for (char& byte : bytes)
        byte = static_cast<char>(cipher.encrypted(static_cast<unsigned char>(byte)));
    return bytes;
}

} // namespace

bool ZipArchive::CreateZipFile2(const QString& path, bool append)
{
    m_zipFile.reset();
    const QFileInfo info(path);
    if (!info.exists() || info.isFile())
        m_zipFile.reset(zipOpen64(path.toUtf8().constData(), append ? APPEND_STATUS_ADDINZIP : APPEND_STATUS_CREATE));
    return m_zipFile != nullptr;
}

bool ZipArchive::CreateZipFile2Password(const QString& path, const QString& password, bool append)
{
    setPassword(password);
    return CreateZipFile2(path, append);
}

bool ZipArchive::addFileToZip(const QString& path, const QString& newname)
{
    const auto attributes = FileAttributes::attributesOfItemAtPath(path, true);
    QFile file(path);
    if (!m_zipFile || !attributes || !QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray data = file.readAll();
    return file.error() == QFileDevice::NoError && addDataToZip(data, attributes, newname);
}

bool ZipArchive::addDataToZip(const QByteArray& data, const std::optional<FileAttributes::Attributes>& fileAttributes,
                              const QString& newname)
{
    const QByteArray name = newname.toUtf8();
    // Written without its password, an entry would be open to everybody.
    if (!m_zipFile || name.isEmpty() || name.size() > longestName || name.contains('\0') || !isAscii(m_password))
        return false;
    const int level = static_cast<int>(std::clamp<std::int64_t>(m_compression, -1, 9));
    const bool isEncrypted = !m_password.isEmpty();
    const uLong dataChecksum = isEncrypted ? checksum(data) : 0;
    const std::optional<QByteArray> bytes =
        isEncrypted ? encrypted(data, level, dataChecksum, m_password.toLatin1()) : data;
    if (!bytes)
        return false;
    const zip_fileinfo info = infoDated(fileAttributes);
    const uLong flags = (isAscii(newname) ? 0 : utf8NameFlag) | (isEncrypted ? encryptedFlag : 0);
    const bool isLarge = static_cast<std::uint64_t>(std::max(data.size(), bytes->size())) >= firstZip64Size;
    // What is encrypted goes in as it is.
    if (zipOpenNewFileInZip4_64(m_zipFile.get(), name.constData(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                                level, isEncrypted ? 1 : 0, -MAX_WBITS, DEF_MEM_LEVEL, Z_DEFAULT_STRATEGY, nullptr, 0,
                                0, flags, isLarge ? 1 : 0) != ZIP_OK)
        return false;
    const bool written = writeData(m_zipFile.get(), *bytes);
    const int closed = isEncrypted
                           ? zipCloseFileInZipRaw64(m_zipFile.get(), static_cast<ZPOS64_T>(data.size()), dataChecksum)
                           : zipCloseFileInZip(m_zipFile.get());
    return closed == ZIP_OK && written;
}

bool ZipArchive::CloseZipFile2()
{
    return m_zipFile && zipClose(m_zipFile.release(), nullptr) == ZIP_OK;
}

QDateTime ZipArchive::Date1980()
{
    return QDate(1980, 1, 1).startOfDay();
}
