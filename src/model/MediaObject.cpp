#include "model/MediaObject.h"

#include "foundation/Assertion.h"
#include "foundation/MainThread.h"
#include "model/PathBookmarks.h"

MediaObject::MediaObject() : m_name(QStringLiteral("")), m_totalValue(0), m_processedValue(0) {}

MediaObject::~MediaObject() = default;

void MediaObject::DeletedOnMainThread::operator()(MediaObject* object) const
{
    // As a QObject: nothing can take hold of the media object any more.
    std::shared_ptr<QObject> holder(static_cast<QObject*>(object));
    // Work that the main thread no longer takes is destroyed, and the object with it.
    if (!MainThread::isCurrent())
        MainThread::post([held = std::move(holder)] {});
}

QString MediaObject::name() const
{
    return copied(m_name);
}

void MediaObject::setName(const QString& name)
{
    store(m_name, name);
    Q_EMIT nameChanged();
    Q_EMIT rowChanged();
}

QString MediaObject::serverStatus() const
{
    return copied(m_serverStatus);
}

void MediaObject::setServerStatus(const QString& serverStatus)
{
    store(m_serverStatus, serverStatus);
    statusDidChange();
    Q_EMIT statusChanged();
    Q_EMIT serverStatusChanged();
    Q_EMIT rowChanged();
}

std::optional<double> MediaObject::totalValue() const
{
    return copied(m_totalValue);
}

void MediaObject::setTotalValue(std::optional<double> totalValue)
{
    store(m_totalValue, totalValue);
    Q_EMIT totalValueChanged();
    Q_EMIT rowChanged();
}

std::optional<double> MediaObject::processedValue() const
{
    return copied(m_processedValue);
}

void MediaObject::setProcessedValue(std::optional<double> processedValue)
{
    store(m_processedValue, processedValue);
    Q_EMIT processedValueChanged();
    Q_EMIT rowChanged();
}

void MediaObject::setStatus(int status)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_status = status;
    }
    statusDidChange();
    Q_EMIT statusChanged();
    Q_EMIT rowChanged();
}

std::optional<int> MediaObject::scoreValue() const
{
    return copied(m_scoreValue);
}

void MediaObject::setScoreValue(std::optional<int> scoreValue)
{
    store(m_scoreValue, scoreValue);
    Q_EMIT scoreValueChanged();
    Q_EMIT rowChanged();
}

QList<std::shared_ptr<MediaObject>> MediaObject::childs() const
{
    return {};
}

bool MediaObject::isLeaf() const
{
    return true;
}

void MediaObject::startAccessingBookmarkedURL()
{
    Assertion::failed("Implement in subclass");
}

void MediaObject::stopAccessingBookmarkedURL()
{
    Assertion::failed("Implement in subclass");
}

void MediaObject::saveBookmark(const QString& path)
{
    PathBookmarks::saveBookmark(path);
}

QUrl MediaObject::getBookmarkedURL(const QString& path)
{
    return PathBookmarks::getBookmarkedURL(path);
}
