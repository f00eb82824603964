#pragma once

#include "foundation/Error.h"

#include <QList>
#include <QObject>

// The errors of the service's domain that the user was told of in this run, oldest first. Never saved. Main thread.
class SyncErrorList : public QObject
{
    Q_OBJECT
public:
    SyncErrorList();

    [[nodiscard]] const QList<Error>& errorList() const { return m_errorList; }
    void insertObject(const Error& error, qsizetype inErrorListAtIndex);
    void removeObjectFromErrorListAtIndex(qsizetype index);

    // At the end.
    void addError(const Error& error);
    // One by one from the last, so that whoever shows the list follows.
    void clear();

Q_SIGNALS:
    // After the change.
    void errorInserted(qsizetype index);
    void errorRemoved(qsizetype index);

private:
    QList<Error> m_errorList;
};
