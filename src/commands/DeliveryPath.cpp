#include "commands/DeliveryPath.h"

#include "foundation/PathText.h"

#include <QCryptographicHash>
#include <QStringList>

#include <array>

namespace {

// In bytes of UTF-8, as Linux file systems count.
constexpr qsizetype longestComponent = 255;

// The folder's own path and a name below it have to find room beside it.
constexpr qsizetype longestJobFolder = 1024;
constexpr qsizetype longestExtension = 16;

// At most so many bytes, no character cut in two.
QString cutToBytes(const QString& text, qsizetype bytes)
{
    const QByteArray utf8 = text.toUtf8();
    if (utf8.size() <= bytes)
        return text;
    const auto isContinued = [&](qsizetype at) { return (static_cast<unsigned char>(utf8.at(at)) & 0xc0U) == 0x80U; };
    while (bytes > 0 && isContinued(bytes))
        --bytes;
    return QString::fromUtf8(utf8.first(bytes));
}

// What is too long for a file system is cut, with a mark of the whole before its ending: names that differ where they
// are cut stay apart.
QString fitting(const QString& name, const QString& ending = {})
{
    if (name.toUtf8().size() <= longestComponent)
        return name;
    const QByteArray hash = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha256);
    const QString mark = u'~' + QString::fromLatin1(hash.first(4).toHex()) + ending;
    return cutToBytes(name.chopped(ending.size()), longestComponent - mark.toUtf8().size()) + mark;
}

struct Row
{
    const char* extension;
    const char* folder;
};

constexpr std::array<Row, 9> rows{{{"txt", "Universal_ASCII"},
                                   {"cms", "TrialDirector"},
                                   {"ptf", "LiveNote"},
                                   {"vid", "LiveNote"},
                                   {"set", "Ostrova"},
                                   {"sync", "Ostrova"},
                                   {"xmef", "TextMap"},
                                   {"clt", "Clarity_Legal"},
                                   {"zip", "Korvane"}}};

} // namespace

QString DeliveryPath::fileName(const QString& listedName)
{
    QString path = listedName;
    path.replace(u'\\', QStringLiteral("//"));
    path.remove(QChar(u'\0'));
    const QString name = PathText::lastPathComponent(PathText::standardizedPath(path));
    if (name == u"." || name == u".." || name == u"/")
        return {};
    const QString extension = PathText::pathExtension(name);
    if (extension.isEmpty() || extension.toUtf8().size() > longestExtension)
        return fitting(name);
    return fitting(name, u'.' + extension);
}

QString DeliveryPath::incomplete(const QString& path)
{
    const QString mark = QStringLiteral(".incomplete");
    const qsizetype nameBegin = path.lastIndexOf(u'/') + 1;
    return path.left(nameBegin) + cutToBytes(path.mid(nameBegin), longestComponent - mark.size()) + mark;
}

std::optional<QString> DeliveryPath::fileTypeSubFolder(const QString& fileName)
{
    const QString extension = PathText::pathExtension(fileName).toLower();
    for (const Row& row : rows) {
        if (extension == QLatin1String(row.extension))
            return QString::fromLatin1(row.folder);
    }
    if (extension == u"mdb")
        return fileName.endsWith(QStringLiteral("_id.mdb")) ? QStringLiteral("inData") : QStringLiteral("Sanction");
    if (extension == u"xml")
        return fileName.endsWith(QStringLiteral("_rl.xml")) ? QStringLiteral("RealLegal") : QStringLiteral("Ostrova");
    return std::nullopt;
}

QString DeliveryPath::jobFolder(const QString& serviceName)
{
    QString name = serviceName;
    name.remove(QChar(u'\0'));
    QStringList components = name.split(u'/');
    if (name.startsWith(u'/') || components.contains(QStringLiteral("..")))
        components = {name.replace(u'/', u'_')};
    for (QString& component : components)
        component = component == u".." ? QStringLiteral("__") : fitting(component);
    const QString folder = components.join(u'/');
    return folder.toUtf8().size() <= longestJobFolder ? folder : fitting(name.replace(u'/', u'_'));
}
