#pragma once

#include "archive/ContainedFolder.h"
#include "archive/EncryptedEntry.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <unzip.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

class ZipArchive;

// One walk over the entries of an archive that is open, into a folder. Made for one run; the archive outlives it.
class ZipExtraction
{
public:
    ZipExtraction(ZipArchive& archive, QString folder, bool overWrite);

    // False when an entry could not be read, or written, to its end.
    bool run();

private:
    struct Entry
    {
        unz_file_info64 info{};
        bool isFolder = false;
        QString path;
        // Nothing when the entry would lie outside of the folder.
        std::optional<QStringList> components;
    };
    enum class Transfer { Done, Skipped, Failed };
    enum class Step { GoOn, End };

    bool openEntry();
    [[nodiscard]] int readFromEntry();
    [[nodiscard]] int closeEntry();
    [[nodiscard]] std::optional<Entry> readEntry() const;
    [[nodiscard]] QString decodedName(const QByteArray& name) const;
    [[nodiscard]] FileDescriptor openOutput(const Entry& entry);
    [[nodiscard]] Transfer transfer(const Entry& entry, FileDescriptor& output);
    void makeFolders(const Entry& entry);
    // False when what was written could not be kept, which is reported.
    [[nodiscard]] bool finishFile(const Entry& entry, FileDescriptor& output);
    [[nodiscard]] Step extractEntry();
    [[nodiscard]] Step goToNextEntry();
    void reportProgress();

    ZipArchive& m_archive;
    QString m_folder;
    bool m_overWrite;
    std::optional<ContainedFolder> m_contained;
    // The current entry where a password is needed to read it.
    std::unique_ptr<EncryptedEntry> m_encrypted;
    std::array<char, 4096> m_buffer{};
    std::uint64_t m_entriesWalked = 0;
    std::uint64_t m_filesDone = 0;
    bool m_success = true;
};
