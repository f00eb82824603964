#include "archive/ContainedFolder.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
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

ContainedFolder::ContainedFolder(const QString& path)
{
    QDir().mkpath(path);
    m_folder = FileDescriptor(open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

FileDescriptor ContainedFolder::openFolder(const QStringList& components, qsizetype count, bool make,
                                           QList<QStringList>* made) const
{
    FileDescriptor folder(fcntl(m_folder.get(), F_DUPFD_CLOEXEC, 0));
    for (qsizetype i = 0; i < count && folder.isOpen(); ++i) {
        const QByteArray name = QFile::encodeName(components.at(i));
        if (make && mkdirat(folder.get(), name.constData(), 0777) == 0 && made != nullptr)
            made->append(components.first(i + 1));
        folder =
            FileDescriptor(openat(folder.get(), name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
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
    const FileDescriptor parent = openFolder(components, components.size() - 1, false);
    if (!parent.isOpen())
        return FileDescriptor();
    // Without O_NONBLOCK a pipe of that name would wait for its reader. What is not a regular file is left alone, so
    // the file is emptied only when it is known to be one.
    FileDescriptor file(openat(parent.get(), QFile::encodeName(components.last()).constData(),
                               O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666));
    struct stat status
    {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || ftruncate(file.get(), 0) != 0)
        return FileDescriptor();
    return file;
}
