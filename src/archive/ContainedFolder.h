#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// An open file descriptor that is closed when its owner goes.
class FileDescriptor
{
public:
    explicit FileDescriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    ~FileDescriptor();
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;

    [[nodiscard]] int get() const { return m_descriptor; }
    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    // False when what was written could not be kept.
    bool close();

private:
    int m_descriptor;
};

// A folder that files are written into by relative paths, and never outside of it, whatever the paths say and whatever
// links lie below it: no link below the folder is followed. The folder itself may be reached over links.
class ContainedFolder
{
public:
    // The components of an entry's path: no empty ones, no "." and no "..". Nothing when the name is absolute, leads
    // out of the folder, or holds a NUL; none at all when it names the folder itself.
    [[nodiscard]] static std::optional<QStringList> componentsOfName(const QString& name);

    // Makes the folder, with the folders above it, where it does not exist.
    explicit ContainedFolder(const QString& path);

    // Makes the folder that the components lead to, with those on the way, and adds those that were not there to
    // `made`; an existing one is fine.
    bool makeFolder(const QStringList& components, QList<QStringList>* made = nullptr) const;
    // Whether anything is there, be it a link that leads nowhere.
    [[nodiscard]] bool exists(const QStringList& components) const;
    // Opens a regular file for writing, new or emptied, in a folder that exists. Not open on any failure.
    [[nodiscard]] FileDescriptor openForWriting(const QStringList& components) const;
    // Removes a file, and a folder that is empty. What is not there, and what cannot be removed, is left.
    void removeFile(const QStringList& components) const { remove(components, 0); }
    void removeFolder(const QStringList& components) const;

private:
    [[nodiscard]] FileDescriptor openFolder(const QStringList& components, qsizetype count, bool make,
                                            QList<QStringList>* made = nullptr) const;
    void remove(const QStringList& components, int flags) const;

    FileDescriptor m_folder;
};
