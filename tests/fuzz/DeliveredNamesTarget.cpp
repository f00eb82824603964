// What the service calls a job's folder, then what it calls its files.
#include "FuzzTarget.h"

#include "commands/DeliveryPath.h"
#include "commands/DownloadFileCommand.h"
#include "foundation/PathText.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

using FuzzTarget::require;

namespace {

const QString home = QStringLiteral("delivery");

void requireName(const QString& component)
{
    require(component.toUtf8().size() <= 255, "a name is as long as a file system takes");
    require(!component.contains(QChar(u'\0')), "a name has no NUL");
    require(component != u"..", "a name does not lead up");
}

void download(const QString& destination)
{
    static const ServiceHosts hosts({QStringLiteral("127.0.0.1"), std::uint16_t{9}},
                                    {QStringLiteral("127.0.0.1"), std::uint16_t{9}});
    const DownloadFileCommand command(hosts, QStringLiteral("u"), QStringLiteral("p"), 1, 0, destination);
    if (!command.isFileMade())
        return;
    require(QFileInfo(destination).isFile(), "a file that was made is there");
}

} // namespace

FUZZ_TARGET(DeliveredNames)
{
    const QList<QByteArray> names = FuzzTarget::pieces(input);
    const QString folder = FuzzTarget::emptyFolder();
    const QString jobFolder = DeliveryPath::jobFolder(QString::fromUtf8(names.at(0)));
    require(jobFolder == DeliveryPath::jobFolder(QString::fromUtf8(names.at(0))), "asking twice gives the same");
    require(!jobFolder.startsWith(u'/'), "a job's folder lies in the delivery folder");
    require(jobFolder.toUtf8().size() <= 1024, "a job's folder leaves room for names");
    require(DeliveryPath::jobFolder(jobFolder) == jobFolder, "a job's folder is a fit name for one");
    for (const QString& component : jobFolder.split(u'/'))
        requireName(component);

    const QString jobPath = PathText::appendingPathComponent(folder + u'/' + home, jobFolder);
    qsizetype files = 0;
    for (const QByteArray& listed : names.mid(1, 20)) {
        const QString name = DeliveryPath::fileName(QString::fromUtf8(listed));
        requireName(name);
        require(name != u"." && !name.contains(u'/') && !name.contains(u'\\'), "a name is one name");
        require(DeliveryPath::fileName(name) == name || name.startsWith(u'~'), "a file's name is a fit name for one");
        const QString subFolder = DeliveryPath::fileTypeSubFolder(name).value_or(QString());
        require(!subFolder.contains(u'/'), "a type's folder is one folder");
        const QString path = PathText::appendingPathComponent(jobPath, subFolder);
        if (name.isEmpty())
            continue;
        download(PathText::appendingPathComponent(path, name));
        ++files;
    }

    require(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot) ==
                    QStringList{home} ||
                files == 0,
            "nothing is written beside the delivery folder");
}
