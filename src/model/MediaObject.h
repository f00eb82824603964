#pragma once

#include "model/JobStatus.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>

// A row of the job list: what a job and a media file have in common.
//
// Reading and writing from every thread. A setter announces its change always, also when the value is the same, on the
// thread that made it, after the value is stored and with no lock held. Held by std::shared_ptr; when the last one is
// let go on a worker thread, the object is deleted on the main thread.
class MediaObject : public QObject, public std::enable_shared_from_this<MediaObject>
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QString serverStatus READ serverStatus WRITE setServerStatus NOTIFY serverStatusChanged)
    Q_PROPERTY(std::optional<double> totalValue READ totalValue WRITE setTotalValue NOTIFY totalValueChanged)
    Q_PROPERTY(
        std::optional<double> processedValue READ processedValue WRITE setProcessedValue NOTIFY processedValueChanged)
    Q_PROPERTY(int status READ status WRITE setStatus NOTIFY statusChanged)
    Q_PROPERTY(std::optional<int> scoreValue READ scoreValue WRITE setScoreValue NOTIFY scoreValueChanged)
public:
    // Status 0, name "", processed and total 0.
    MediaObject();
    ~MediaObject() override;

    [[nodiscard]] QString name() const;
    void setName(const QString& name);
    // The service's status word; null when it gave none. Setting it announces `status` too, because the words shown
    // for a status on the server are these.
    [[nodiscard]] QString serverStatus() const;
    void setServerStatus(const QString& serverStatus);
    // Progress: how much there is to do and how much is done, in the unit of the phase of work (time, then bytes).
    [[nodiscard]] std::optional<double> totalValue() const;
    void setTotalValue(std::optional<double> totalValue);
    [[nodiscard]] std::optional<double> processedValue() const;
    void setProcessedValue(std::optional<double> processedValue);
    // A JobStatus, or any other int.
    [[nodiscard]] int status() const { return m_status.load(); }
    void setStatus(int status);
    // The service's quality score of a segment.
    [[nodiscard]] std::optional<int> scoreValue() const;
    void setScoreValue(std::optional<int> scoreValue);

    // The rows below this one.
    [[nodiscard]] virtual QList<std::shared_ptr<MediaObject>> childs() const;
    [[nodiscard]] virtual bool isLeaf() const;

    // Access to the user's file behind the object. A refused start is logged and not otherwise reported. Abstract: on
    // the base they fail the assertion "Implement in subclass".
    virtual void startAccessingBookmarkedURL();
    virtual void stopAccessingBookmarkedURL();

    // See PathBookmarks.
    static void saveBookmark(const QString& path);
    [[nodiscard]] static QUrl getBookmarkedURL(const QString& path);

Q_SIGNALS:
    void nameChanged();
    void serverStatusChanged();
    void totalValueChanged();
    void processedValueChanged();
    void statusChanged();
    void scoreValueChanged();
    // After each of the signals above and of those of the derived classes that a list of jobs shows something of; for
    // lists that would otherwise need a dozen connections for each of many thousand rows.
    void rowChanged();

protected:
    // The deleter of the shared pointers.
    struct DeletedOnMainThread
    {
        void operator()(MediaObject* object) const;
    };

    template <typename Value>
    [[nodiscard]] Value copied(const Value& field) const
    {
        const std::scoped_lock lock(m_mutex);
        return field;
    }
    template <typename Value>
    void store(Value& field, std::type_identity_t<Value> value)
    {
        const std::scoped_lock lock(m_mutex);
        std::swap(field, value);
    }

    // Called inside a change of `status`, before its signal, with no lock held.
    virtual void statusDidChange() {}

    // Guards every field of the object and of the classes derived from it.
    mutable std::mutex m_mutex;
    QString m_name;
    QString m_serverStatus;
    std::optional<double> m_totalValue;
    std::optional<double> m_processedValue;
    std::atomic<int> m_status = JobStatusIdle; // written under m_mutex, read without
    std::optional<int> m_scoreValue;
};
