#pragma once

#include "foundation/Error.h"

#include <QAbstractTableModel>
#include <QDateTime>
#include <QList>

#include <functional>

class SyncErrorList;

// The error list as rows, oldest first. Equal errors that follow one another are one row with a count, so that a
// failure which repeats for hours leaves the others in sight. Follows the list error by error, each in constant time
// at the list's end. The list outlives it. Main thread.
class ErrorListModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum class Column { Time, Text, Count };
    static constexpr int columnNumber = 3;
    // The error's whole words, line breaks included.
    static constexpr int textRole = Qt::UserRole;

    using Clock = std::function<QDateTime()>;

    // Errors bear the clock's time of their arrival.
    explicit ErrorListModel(const SyncErrorList& list, Clock clock = &QDateTime::currentDateTime);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // One row: the time, or the first and the last time; the whole words; and how often, where more than once.
    [[nodiscard]] QString textOfRow(int row) const;

private:
    struct Run
    {
        Error error;
        qsizetype first = 0; // its place among all errors
        qsizetype count = 0;
    };

    void errorInserted(qsizetype index);
    void errorRemoved(qsizetype index);
    void append(const Error& error);
    void removeLast();
    void rebuild();
    void addToRuns(const Error& error);
    [[nodiscard]] QString timeText(const Run& run) const;
    [[nodiscard]] QVariant displayText(const Run& run, Column column) const;

    const SyncErrorList& m_list;
    const Clock m_clock;
    QList<QDateTime> m_times; // one for each error
    QList<Run> m_runs;
};
