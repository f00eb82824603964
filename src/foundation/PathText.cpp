#include "foundation/PathText.h"

#include <QDir>

QString PathText::lastPathComponent(const QString& path)
{
    qsizetype end = path.size();
    while (end > 1 && path.at(end - 1) == u'/')
        --end;
    if (end == 1 && path.at(0) == u'/')
        return QStringLiteral("/");
    return path.mid(path.lastIndexOf(u'/', end - 1) + 1, end - path.lastIndexOf(u'/', end - 1) - 1);
}

QString PathText::pathExtension(const QString& path)
{
    const QString name = lastPathComponent(path);
    const qsizetype point = name.lastIndexOf(u'.');
    return point <= 0 ? QString() : name.mid(point + 1);
}

QString PathText::appendingPathComponent(const QString& path, const QString& component)
{
    if (component.isEmpty())
        return path;
    if (path.isEmpty())
        return component;
    return path.endsWith(u'/') ? path + component : path + u'/' + component;
}

QString PathText::standardizedPath(const QString& path)
{
    QString expanded = path;
    if (expanded == QStringLiteral("~") || expanded.startsWith(QStringLiteral("~/")))
        expanded.replace(0, 1, QDir::homePath());
    return QDir::cleanPath(expanded);
}
