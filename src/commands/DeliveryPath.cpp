#include "commands/DeliveryPath.h"

#include "foundation/PathText.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

// In bytes of UTF-8, as Linux file systems count.
constexpr qsizetype longestComponent = 255;

QString cutToBytes(QString text, qsizetype bytes)
{
    while (text.toUtf8().size() > bytes) {
        const qsizetype excess = text.toUtf8().size() - bytes;
        text.chop(std::max<qsizetype>(1, excess / 4));
        if (text.endsWith(QChar(QChar::ReplacementCharacter)) || (!text.isEmpty() && text.back().isHighSurrogate()))
            text.chop(1);
    }
    return text;
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
    if (name.toUtf8().size() <= longestComponent)
        return name;
    const QString extension = PathText::pathExtension(name);
    if (extension.isEmpty() || extension.toUtf8().size() > 16)
        return cutToBytes(name, longestComponent);
    const QString suffix = u'.' + extension;
    return cutToBytes(name.chopped(suffix.size()), longestComponent - suffix.toUtf8().size()) + suffix;
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
        component = component == u".." ? QStringLiteral("__") : cutToBytes(component, longestComponent);
    return components.join(u'/');
}
