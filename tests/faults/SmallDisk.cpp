#include "SmallDisk.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

namespace {

// Before any thread begins: mounts are then this process's own, and end with it.
const bool hasMountsOfItsOwn =
    ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;

void limitFileSize(rlim_t size)
{
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = std::min(size, limit.rlim_max);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

} // namespace

SmallDisk::SmallDisk(const QString& folder) : m_folder(folder)
{
    QDir().mkpath(folder);
    std::signal(SIGXFSZ, SIG_IGN);
    m_isMounted = hasMountsOfItsOwn &&
                  ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, "size=2m,mode=0700") == 0;
}

SmallDisk::~SmallDisk()
{
    if (!m_isMounted)
        free();
    takeAway();
}

void SmallDisk::fill()
{
    if (!m_isMounted) {
        limitFileSize(0);
        return;
    }
    QFile file(filler());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const QByteArray block(4096, 'x');
    while (file.write(block) == block.size()) {
    }
}

void SmallDisk::free()
{
    if (m_isMounted)
        QFile::remove(filler());
    else
        limitFileSize(RLIM_INFINITY);
}

bool SmallDisk::takeAway()
{
    const bool wasMounted = m_isMounted && ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH) == 0;
    m_isMounted = false;
    return wasMounted;
}

QString SmallDisk::filler() const
{
    return m_folder + QStringLiteral("/filler");
}
