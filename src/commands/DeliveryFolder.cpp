#include "commands/DeliveryFolder.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

void DeliveryFolder::keepInSight()
{
    // An open folder's number is given to no other one.
    if (!m_folder.isOpen())
        m_folder = FileDescriptor(::open(QFile::encodeName(m_path).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

bool DeliveryFolder::isInPlace() const
{
    if (!m_folder.isOpen())
        return true; // Nothing of it was seen.
    struct stat seen = {};
    struct stat there = {};
    return ::fstat(m_folder.get(), &seen) == 0 && ::stat(QFile::encodeName(m_path).constData(), &there) == 0 &&
           seen.st_dev == there.st_dev && seen.st_ino == there.st_ino;
}
