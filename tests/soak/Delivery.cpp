#include "Delivery.h"

#include "foundation/NumberReading.h"
#include "foundation/Text.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

QString Delivery::check(const QString& deliveryFolder, const Job& job, int& files)
{
    const int depo = NumberReading::valueOrZero(job.depoNum());
    const QStringList folders =
        QDir(deliveryFolder).entryList({Text::format("*_{}", depo)}, QDir::Dirs | QDir::NoDotAndDotDot);
    if (folders.size() != 1)
        return Text::format("job {} has {} folders", depo, folders.size());
    QDir folder(deliveryFolder + u'/' + folders.constFirst());
    // The first line of the job's own transcript is in its result files.
    QFile transcript(job.transcriptFile());
    const QByteArray words = transcript.open(QIODevice::ReadOnly) ? transcript.readLine().trimmed() : QByteArray();
    int count = 0;
    bool hasWords = false;
    for (QDirIterator each(folder.path(), QDir::Files, QDirIterator::Subdirectories); each.hasNext(); ++count) {
        QFile file(each.next());
        if (!file.open(QIODevice::ReadOnly) || file.size() == 0)
            return Text::format("job {}: {} is empty", depo, file.fileName());
        hasWords = hasWords || file.readAll().contains(words);
    }
    if (!hasWords || words.isEmpty())
        return Text::format("job {} has the result of another transcript", depo);
    if (files == 0)
        files = count;
    if (count != files)
        return Text::format("job {} has {} files instead of {}", depo, count, files);
    return folder.removeRecursively() ? QString() : Text::format("job {}: its folder cannot be taken away", depo);
}
