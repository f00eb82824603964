#include "Figures.h"

#include "foundation/Text.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>

#include <algorithm>
#include <malloc.h>

namespace {

int entriesOf(const QString& folder)
{
    return static_cast<int>(QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
}

long memory(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf(field);
    return at < 0 ? 0 : text.mid(at).simplified().split(' ').value(1).toLong();
}

} // namespace

Figures Figures::now()
{
    // The listing of the descriptors opens one of its own.
    return {entriesOf(QStringLiteral("/proc/self/task")), entriesOf(QStringLiteral("/proc/self/fd")) - 1,
            memory("VmRSS:"), memory("RssAnon:")};
}

Figures Figures::settled(std::chrono::milliseconds time)
{
    QElapsedTimer since;
    since.start();
    ::malloc_trim(0);
    Figures least = now();
    while (!since.hasExpired(time.count())) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 10);
        ::malloc_trim(0);
        const Figures seen = now();
        least.threads = std::min(least.threads, seen.threads);
        least.descriptors = std::min(least.descriptors, seen.descriptors);
        least.residentKiB = std::min(least.residentKiB, seen.residentKiB);
        least.ownKiB = std::min(least.ownKiB, seen.ownKiB);
    }
    return least;
}

QString Figures::text() const
{
    return Text::format("{} threads, {} descriptors, {:.1f} MiB resident ({:.1f} of its own)", threads, descriptors,
                        static_cast<double>(residentKiB) / 1024.0, static_cast<double>(ownKiB) / 1024.0);
}
