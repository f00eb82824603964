#pragma once

#include "archive/FileAttributes.h"
#include "archive/ZipHandles.h"
#include "archive/ZipLimits.h"
#include "archive/ZipSource.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringConverter>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

class EntryReader;

// Told of errors and asked about existing files while an archive is open, on the thread that uses it. Each operation
// may be left as it is.
class ZipArchiveDelegate
{
public:
    virtual ~ZipArchiveDelegate() = default;
    virtual void ErrorMessage(const QString& message);
    // Whether the file at `path` may be replaced; false leaves it and passes the entry over.
    [[nodiscard]] virtual bool OverWriteOperation(const QString& path);
};

// Reads zip archives into a folder, and writes them. What is unpacked stays inside its folder, whatever names the
// entries bear and whatever links lie in it, and is made of folders and plain files only. One thread at a time; calls
// block. Errors go to the delegate alone, in fixed words, and end in false. No other archive is opened from a callback.
// There is no file manager to hand in: files are reached through the system alone.
class ZipArchive
{
public:
    // Percentage, files done, total files.
    using ProgressBlock = std::function<void(int, std::uint64_t, std::uint64_t)>;

    ZipArchive() = default;
    // Closes what is open.
    ~ZipArchive() = default;
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    // Reading. An archive that was open before is closed.
    [[nodiscard]] bool UnzipOpenFile(const QString& path);
    [[nodiscard]] bool UnzipOpenFilePassword(const QString& path, const QString& password);
    // Extracts every entry below `folder`, which is made where it does not exist. False when an entry could not be read
    // to its end; the files before it, and what was read of it, stay. An entry whose file cannot be opened, also
    // because it would lie outside, is passed over with a warning in the log and is no failure. Of two entries of one
    // name the later stays. False also for an archive beyond ZipLimits: see refusal().
    [[nodiscard]] bool UnzipFileTo(const QString& folder, bool overWrite);
    // Forgets the password; true when nothing is open.
    bool UnzipCloseFile();

    // Writing.
    [[nodiscard]] bool CreateZipFile2(const QString& path, bool append = false);
    [[nodiscard]] bool CreateZipFile2Password(const QString& path, const QString& password, bool append = false);
    [[nodiscard]] bool addFileToZip(const QString& path, const QString& newname);
    // The entry is dated 1 January 1980 without attributes. False for a name that an archive cannot hold, and for a
    // password that is not ASCII.
    [[nodiscard]] bool addDataToZip(const QByteArray& data,
                                    const std::optional<FileAttributes::Attributes>& fileAttributes,
                                    const QString& newname);
    // False when nothing is open.
    bool CloseZipFile2();

    // Midnight, local time: the earliest date that an archive can hold.
    [[nodiscard]] static QDateTime Date1980();
    void OutputErrorMessage(const QString& message) const;
    [[nodiscard]] bool OverWrite(const QString& path) const;

    // How many entries the archive opened last says it has.
    [[nodiscard]] std::uint64_t numFiles() const { return m_numFiles; }
    // The paths of the files written since the archive was opened, in the order of their entries.
    [[nodiscard]] QStringList unzippedFiles() const { return m_unzippedFiles; }

    // Why the last extraction was refused, of which nothing is then left; empty when it was not.
    [[nodiscard]] QString refusal() const { return m_refusal; }
    // How many entries the last extraction passed over because their files could not be opened.
    [[nodiscard]] std::uint64_t numPassedOver() const { return m_numPassedOver; }
    // How many threads read entries ahead of the one that extracts, which alone touches the folder and calls back;
    // nothing leaves it to the size of the archive and the number of processors. With a password none does.
    void setReaders(std::optional<unsigned> readers) { m_readers = readers; }
    void setFreeSpace(ZipLimits::FreeSpace freeSpace) { m_freeSpace = std::move(freeSpace); }

    // Empty for none. ASCII only.
    [[nodiscard]] QString password() const { return m_password; }
    void setPassword(const QString& password) { m_password = password; }
    [[nodiscard]] std::shared_ptr<ZipArchiveDelegate> delegate() const { return m_delegate; }
    void setDelegate(std::shared_ptr<ZipArchiveDelegate> delegate) { m_delegate = std::move(delegate); }
    // Called after each entry, on the thread that extracts.
    [[nodiscard]] const ProgressBlock& progressBlock() const { return m_progressBlock; }
    void setProgressBlock(ProgressBlock block) { m_progressBlock = std::move(block); }
    // Entry names are decoded with it; a name that it cannot decode is read byte by byte as Latin-1.
    [[nodiscard]] QStringConverter::Encoding stringEncoding() const { return m_stringEncoding; }
    void setStringEncoding(QStringConverter::Encoding encoding) { m_stringEncoding = encoding; }
    // zlib's level for new entries, from 0 to 9; -1 is zlib's own choice.
    [[nodiscard]] std::int64_t compression() const { return m_compression; }
    void setCompression(std::int64_t level) { m_compression = level; }

private:
    friend class ZipExtraction;

    [[nodiscard]] std::unique_ptr<EntryReader> makeReader() const;

    ZipHandle m_zipFile;
    std::optional<ZipSource> m_source; // what m_unzFile reads
    UnzHandle m_unzFile;
    std::optional<unsigned> m_readers;
    std::uint64_t m_numFiles = 0;
    std::uint64_t m_numPassedOver = 0;
    QString m_refusal;
    ZipLimits::FreeSpace m_freeSpace = &ZipLimits::freeSpaceOf;
    QString m_password;
    std::shared_ptr<ZipArchiveDelegate> m_delegate;
    ProgressBlock m_progressBlock;
    QStringList m_unzippedFiles;
    QStringConverter::Encoding m_stringEncoding = QStringConverter::Utf8;
    std::int64_t m_compression = -1;
};
