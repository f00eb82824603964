#include "UnpackedFolder.h"

#include "FuzzTarget.h"

#include "archive/ZipArchive.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

using FuzzTarget::require;

namespace {

bool unpack(const QString& folder, const QString& password, quint64 room)
{
    ZipArchive archive;
    archive.setFreeSpace([room](const QString&) { return ZipLimits::keptFree + room; });
    if (!archive.UnzipOpenFilePassword(folder + QStringLiteral("/a.zip"), password))
        return false;
    const QString out = folder + QStringLiteral("/out");
    const bool unpacked = archive.UnzipFileTo(out, /*overWrite=*/true);
    require(archive.refusal().isEmpty() || (!unpacked && archive.unzippedFiles().isEmpty()),
            "nothing of a refused archive stays");
    for (const QString& file : archive.unzippedFiles()) {
        require(file.startsWith(out + u'/'), "an unpacked file lies in the folder");
        require(!file.split(u'/').contains(QStringLiteral("..")), "an unpacked file's path is straight");
        require(!file.contains(QChar(u'\0')), "an unpacked file's path has no NUL");
    }
    archive.UnzipCloseFile();
    return unpacked;
}

void look(const QString& folder, quint64 room)
{
    QStringList found = QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    found.removeOne(QStringLiteral("out"));
    require(found == QStringList{QStringLiteral("a.zip"), QStringLiteral("beside.txt")}, "nothing is written beside");
    QFile beside(folder + QStringLiteral("/beside.txt"));
    require(beside.open(QIODevice::ReadOnly) && beside.readAll() == "untouched", "what lies beside is untouched");

    quint64 size = 0;
    QDirIterator entries(folder + QStringLiteral("/out"),
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo entry(entries.next());
        require(!entry.isSymLink() && (entry.isFile() || entry.isDir()), "only folders and files are made");
        require(QFile::encodeName(entry.fileName()).size() <= 255, "names are as long as a file system takes");
        if (entry.isFile())
            size += static_cast<quint64>(entry.size());
    }
    require(size <= room, "no more is written than there is room for");
}

} // namespace

bool unpackAndLook(const QByteArray& zip, const QString& password, quint64 room)
{
    const QString folder = FuzzTarget::emptyFolder();
    FuzzTarget::writeFile(folder + QStringLiteral("/a.zip"), zip);
    FuzzTarget::writeFile(folder + QStringLiteral("/beside.txt"), "untouched");
    const bool unpacked = unpack(folder, password, room);
    look(folder, room);
    require(unpack(folder, password, room) == unpacked, "unpacking twice ends the same");
    look(folder, room);
    return unpacked;
}
