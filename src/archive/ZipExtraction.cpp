#include "archive/ZipExtraction.h"

#include "archive/ZipArchive.h"
#include "foundation/Log.h"
#include "foundation/PathText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

// minizip knows the end of the list by the number of entries, but takes this number for "too many to say".
constexpr std::uint64_t uncountedEntries = 0xffff;
// An archive full of names that cannot be written must not fill the log.
constexpr std::uint64_t mostWarnings = 20;
constexpr qsizetype longestNameInLog = 200;

bool writeAll(int descriptor, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = write(descriptor, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

// Years are stored from 1980 on; archivers leave the field at 0 when they know no date.
bool hasDate(const unz_file_info64& info)
{
    return (info.dosDate >> 25U) != 0;
}

// Values out of range, a 31 April say, run over into the next month.
bool setModificationDate(int descriptor, const tm_unz& date)
{
    std::tm fields{};
    fields.tm_sec = static_cast<int>(date.tm_sec);
    fields.tm_min = static_cast<int>(date.tm_min);
    fields.tm_hour = static_cast<int>(date.tm_hour);
    fields.tm_mday = static_cast<int>(date.tm_mday);
    fields.tm_mon = static_cast<int>(date.tm_mon);
    fields.tm_year = static_cast<int>(date.tm_year) - 1900;
    fields.tm_isdst = -1;
    const std::time_t time = std::mktime(&fields);
    const std::array<timespec, 2> times{{{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, {.tv_sec = time, .tv_nsec = 0}}};
    return time != -1 && futimens(descriptor, times.data()) == 0;
}

} // namespace

ZipExtraction::ZipExtraction(ZipArchive& archive, std::unique_ptr<EntryReader> reader, QString folder, bool overWrite,
                             std::uint64_t room)
    : m_archive(archive), m_reader(std::move(reader)), m_folder(std::move(folder)), m_overWrite(overWrite), m_room(room)
{}

bool ZipExtraction::run()
{
    if (unzGoToFirstFile(m_archive.m_unzFile.get()) != UNZ_OK)
        m_archive.OutputErrorMessage(QStringLiteral("Failed"));
    while (extractEntry() == Step::GoOn) {
    }
    return m_success;
}

ZipExtraction::Step ZipExtraction::extractEntry()
{
    const auto end = [this](const QString& message) {
        m_archive.OutputErrorMessage(message);
        m_success = false;
        return Step::End;
    };
    // A callback may have closed the archive.
    if (!m_archive.m_unzFile || !m_reader->open())
        return end(QStringLiteral("Error occurs"));
    const std::optional<Entry> entry = readEntry();
    if (!entry) {
        (void)m_reader->close();
        return end(QStringLiteral("Error occurs while getting file info"));
    }
    makeFolders(*entry);

    FileDescriptor output;
    Transfer transferred = transfer(*entry, output);
    if (transferred == Transfer::Refused) {
        refuse();
        return Step::End;
    }
    if (output.isOpen() && !finishFile(*entry, output))
        transferred = Transfer::Failed;
    Step step = Step::GoOn;
    if (transferred == Transfer::Failed) {
        // The entry stays open: it is closed with the archive.
        m_success = false;
        step = Step::End;
    } else if (m_reader->close() != UNZ_OK) {
        return end(QStringLiteral("file was unzipped but failed crc check"));
    } else {
        step = goToNextEntry();
    }
    reportProgress();
    return step;
}

std::optional<ZipExtraction::Entry> ZipExtraction::readEntry() const
{
    Entry entry;
    const unzFile file = m_archive.m_unzFile.get();
    if (unzGetCurrentFileInfo64(file, &entry.info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK)
        return std::nullopt;
    QByteArray name(static_cast<qsizetype>(entry.info.size_filename) + 1, '\0');
    if (unzGetCurrentFileInfo64(file, &entry.info, name.data(), static_cast<uLong>(name.size()), nullptr, 0, nullptr,
                                0) != UNZ_OK)
        return std::nullopt;
    name.chop(1);
    entry.isFolder = name.endsWith('/') || name.endsWith('\\');
    QString path = decodedName(name);
    path.replace(u'\\', u'/');
    entry.components = ContainedFolder::componentsOfName(path);
    if (entry.components)
        path = entry.components->join(u'/');
    entry.path = PathText::appendingPathComponent(m_folder, path);
    return entry;
}

QString ZipExtraction::decodedName(const QByteArray& name) const
{
    using Flag = QStringConverter::Flag;
    QStringDecoder decoder(m_archive.stringEncoding(), Flag::Stateless | Flag::ConvertInitialBom);
    const QString decoded = decoder.decode(name);
    // Latin-1 keeps names apart that replacement characters would make one.
    return decoder.hasError() ? QString::fromLatin1(name) : decoded;
}

void ZipExtraction::makeFolders(const Entry& entry)
{
    if (!entry.components)
        return;
    if (!m_contained)
        m_contained.emplace(m_folder);
    QStringList folders = *entry.components;
    if (!entry.isFolder && !folders.isEmpty())
        folders.removeLast();
    // A folder that cannot be made shows when its files cannot be opened.
    (void)m_contained->makeFolder(folders, &m_madeFolders);
}

void ZipExtraction::passOver(const Entry& entry)
{
    m_archive.OutputErrorMessage(QStringLiteral("Failed to open output file for writing"));
    if (++m_archive.m_numPassedOver <= mostWarnings)
        Log::warning("An entry of the zip file is passed over, because its file cannot be opened: {}",
                     entry.path.right(longestNameInLog));
}

void ZipExtraction::refuse()
{
    for (const QStringList& file : m_writtenFiles)
        m_contained->removeFile(file);
    while (!m_madeFolders.isEmpty())
        m_contained->removeFolder(m_madeFolders.takeLast());
    m_archive.m_unzippedFiles.clear();
    m_archive.m_refusal = QStringLiteral("The zip file unpacks to more than it says, and than there is room for");
    m_archive.OutputErrorMessage(m_archive.m_refusal);
    m_success = false;
}

FileDescriptor ZipExtraction::openOutput(const Entry& entry)
{
    FileDescriptor output;
    if (entry.components) {
        if (!m_overWrite && m_contained->exists(*entry.components) && !m_archive.OverWrite(entry.path))
            return output;
        output = m_contained->openForWriting(*entry.components);
    }
    if (output.isOpen())
        m_writtenFiles += *entry.components;
    else
        passOver(entry);
    return output;
}

ZipExtraction::Transfer ZipExtraction::transfer(const Entry& entry, FileDescriptor& output)
{
    for (bool isFirst = true;; isFirst = false) {
        const EntryReader::Piece piece = m_reader->read();
        if (piece.size < 0) {
            m_archive.OutputErrorMessage(QStringLiteral("Failed to read zip file"));
            return Transfer::Failed;
        }
        // What leads outside is refused for a folder as for a file.
        if (isFirst && (!entry.isFolder || !entry.components)) {
            output = openOutput(entry);
            if (!output.isOpen())
                return Transfer::Skipped;
        }
        if (piece.size == 0)
            return Transfer::Done;
        if (const Transfer kept = keep(piece, output); kept != Transfer::Done)
            return kept;
    }
}

ZipExtraction::Transfer ZipExtraction::keep(const EntryReader::Piece& piece, const FileDescriptor& output)
{
    // The steps that there is room for come before the one that there is none for. Also what is not written, the data
    // of a folder say, takes its time to read.
    const auto size = static_cast<std::uint64_t>(piece.size);
    const std::uint64_t kept = size <= m_room ? size : m_room - m_room % EntryReader::stepSize;
    m_room -= kept;
    if (output.isOpen() && !writeAll(output.get(), piece.data, static_cast<std::size_t>(kept))) {
        m_archive.OutputErrorMessage(QStringLiteral("Failed to write output file"));
        return Transfer::Failed;
    }
    return kept == size ? Transfer::Done : Transfer::Refused;
}

bool ZipExtraction::finishFile(const Entry& entry, FileDescriptor& output)
{
    // A second descriptor dates the very file that was written, whatever bears its name by then. Dated before it is
    // closed, a file whose last bytes are written on closing would bear the time of that.
    const FileDescriptor dated(fcntl(output.get(), F_DUPFD_CLOEXEC, 0));
    const bool closed = output.close();
    m_archive.m_unzippedFiles += entry.path;
    if (hasDate(entry.info) && !setModificationDate(dated.get(), entry.info.tmu_date))
        Log::system("Failed to set attributes");
    if (!closed)
        m_archive.OutputErrorMessage(QStringLiteral("Failed to write output file"));
    return closed;
}

ZipExtraction::Step ZipExtraction::goToNextEntry()
{
    ++m_entriesWalked;
    const int result = unzGoToNextFile(m_archive.m_unzFile.get());
    if (result == UNZ_END_OF_LIST_OF_FILE || (result != UNZ_OK && m_entriesWalked == uncountedEntries))
        return Step::End;
    // An entry that the directory promises and does not have cannot be opened, which is reported there.
    return Step::GoOn;
}

void ZipExtraction::reportProgress()
{
    const std::uint64_t total = m_archive.numFiles();
    if (!m_archive.progressBlock() || total == 0)
        return;
    ++m_filesDone;
    // A copy: the block may set another.
    const auto block = m_archive.progressBlock();
    block(static_cast<int>(m_filesDone * 100 / total), m_filesDone, total);
}
