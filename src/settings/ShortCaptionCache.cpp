#include "settings/ShortCaptionCache.h"

#include <QJsonArray>
#include <QJsonDocument>

QByteArray ShortCaptionCache::archived(const QStringList& captions)
{
    return QJsonDocument(QJsonArray::fromStringList(captions)).toJson(QJsonDocument::Compact);
}

QStringList ShortCaptionCache::unarchived(const QVariant& data)
{
    QStringList captions;
    const QJsonArray archive = QJsonDocument::fromJson(data.toByteArray()).array();
    for (const QJsonValue& entry : archive) {
        if (entry.isString())
            captions.append(entry.toString());
    }
    return captions;
}
