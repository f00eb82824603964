#pragma once

#include "archive/ContainedFolder.h"
#include "archive/EntryReader.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <unzip.h>

#include <cstdint>
#include <memory>
#include <optional>

class ZipArchive;

// One walk over the entries of an archive that is open, into a folder. Made for one run; the archive outlives it.
class ZipExtraction
{
public:
    // The reader stands before the first entry. `room` is how many bytes may be written.
    ZipExtraction(ZipArchive& archive, std::unique_ptr<EntryReader> reader, QString folder, bool overWrite,
                  std::uint64_t room);

    // False when an entry could not be read, or written, to its end. An archive that unpacks to more than there is
    // room for is refused: what was written of it is removed.
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
    enum class Transfer { Done, Skipped, Failed, Refused };
    enum class Step { GoOn, End };

    [[nodiscard]] std::optional<Entry> readEntry() const;
    [[nodiscard]] QString decodedName(const QByteArray& name) const;
    [[nodiscard]] FileDescriptor openOutput(const Entry& entry);
    [[nodiscard]] Transfer transfer(const Entry& entry, FileDescriptor& output);
    // Keeps a piece, if only in the account of what was unpacked.
    [[nodiscard]] Transfer keep(const EntryReader::Piece& piece, const FileDescriptor& output);
    void makeFolders(const Entry& entry);
    void passOver(const Entry& entry);
    void refuse();
    // False when what was written could not be kept, which is reported.
    [[nodiscard]] bool finishFile(const Entry& entry, FileDescriptor& output);
    [[nodiscard]] Step extractEntry();
    [[nodiscard]] Step goToNextEntry();
    void reportProgress();

    ZipArchive& m_archive;
    std::unique_ptr<EntryReader> m_reader;
    QString m_folder;
    bool m_overWrite;
    std::uint64_t m_room;
    // What a refusal has to remove, in the order in which it was made.
    QList<QStringList> m_madeFolders;
    QList<QStringList> m_writtenFiles;
    std::optional<ContainedFolder> m_contained;
    std::uint64_t m_entriesWalked = 0;
    std::uint64_t m_filesDone = 0;
    bool m_success = true;
};
