#include "archive/ContainedFolder.h"

#include <QDir>
#include <QFile>

#include <cstdint>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

FileDescriptor::~FileDescriptor()
{
    close();
}

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept
{
    if (this != &other) {
        close();
        m_descriptor = std::exchange(other.m_descriptor, -1);
    }
    return *this;
}

bool FileDescriptor::close()
{
    const int descriptor = std::exchange(m_descriptor, -1);
    return descriptor < 0 || ::close(descriptor) == 0;
}

std::optional<QStringList> ContainedFolder::componentsOfName(const QString& name)
{
    if (name.startsWith(u'/') || name.contains(QChar::Null))
        return std::nullopt;
    QStringList components;
    for (const QString& component : name.split(u'/')) {
        if (component.isEmpty() || component == u".")
            continue;
        if (component != u"..") {
            components += component;
        } else if (components.isEmpty()) {
            return std::nullopt;
        } else {
            components.removeLast();
        }
    }
    return components;
}

namespace {

// Opens what the components lead to in one call, which follows no link on the way. Not open where the system does not
// know the call or refuses it, for whatever reason: the walk folder by folder then finds out.
FileDescriptor openAtOnce(int folder, const QStringList& components, qsizetype count, std::uint64_t flags,
                          std::uint64_t mode)
{
    const QByteArray path = QFile::encodeName(components.first(count).join(u'/'));
    open_how how{.flags = flags, .mode = mode, .resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS};
    return FileDescriptor(static_cast<int>(syscall(SYS_openat2, folder, path.constData(), &how, sizeof how)));
}

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
// Without O_NONBLOCK a pipe of that name would wait for its reader.
constexpr int writingFlags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

// What is not a regular file is left alone, so the file is emptied only when it is known to be one. An empty one is
// not emptied again: file systems take that for the replacing of a file, and write it to the disk as it is closed.
bool isEmptied(const FileDescriptor& file)
{
    struct stat status
    {};
    return file.isOpen() && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
           (status.st_size == 0 || ftruncate(file.get(), 0) == 0);
}

} // namespace

ContainedFolder::ContainedFolder(const QString& path)
{
    QDir().mkpath(path);
    m_folder = FileDescriptor(open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

FileDescriptor ContainedFolder::openFolder(const QStringList& components, qsizetype count, bool make,
                                           QList<QStringList>* made) const
{
    if (count > 0) {
        if (FileDescriptor there = openAtOnce(m_folder.get(), components, count, folderFlags, 0); there.isOpen())
            return there;
    }
    FileDescriptor folder(fcntl(m_folder.get(), F_DUPFD_CLOEXEC, 0));
    for (qsizetype i = 0; i < count && folder.isOpen(); ++i) {
        const QByteArray name = QFile::encodeName(components.at(i));
        if (make && mkdirat(folder.get(), name.constData(), 0777) == 0 && made != nullptr)
            made->append(components.first(i + 1));
        folder = FileDescriptor(openat(folder.get(), name.constData(), folderFlags));
    }
    return folder;
}

bool ContainedFolder::makeFolder(const QStringList& components, QList<QStringList>* made) const
{
    return openFolder(components, components.size(), true, made).isOpen();
}

void ContainedFolder::removeFolder(const QStringList& components) const
{
    remove(components, AT_REMOVEDIR);
}

void ContainedFolder::remove(const QStringList& components, int flags) const
{
    if (components.isEmpty())
        return;
    const FileDescriptor parent = openFolder(components, components.size() - 1, false);
    if (parent.isOpen())
        unlinkat(parent.get(), QFile::encodeName(components.last()).constData(), flags);
}

bool ContainedFolder::exists(const QStringList& components) const
{
    if (components.isEmpty())
        return m_folder.isOpen();
    const FileDescriptor parent = openFolder(components, components.size() - 1, false);
    struct stat status
    {};
    return parent.isOpen() &&
           fstatat(parent.get(), QFile::encodeName(components.last()).constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

FileDescriptor ContainedFolder::openForWriting(const QStringList& components) const
{
    if (components.isEmpty())
        return FileDescriptor();
    FileDescriptor file = openAtOnce(m_folder.get(), components, components.size(), writingFlags, 0666);
    if (!file.isOpen()) {
        const FileDescriptor parent = openFolder(components, components.size() - 1, false);
        if (parent.isOpen())
            file = FileDescriptor(
                openat(parent.get(), QFile::encodeName(components.last()).constData(), writingFlags, 0666));
    }
    return isEmptied(file) ? std::move(file) : FileDescriptor();
}
