#include "ui/errors/SyncErrorList.h"

#include "foundation/Assertion.h"

namespace {

constexpr qsizetype usualNumber = 10;

} // namespace

SyncErrorList::SyncErrorList()
{
    m_errorList.reserve(usualNumber);
}

void SyncErrorList::insertObject(const Error& error, qsizetype inErrorListAtIndex)
{
    if (!Assertion::check(inErrorListAtIndex >= 0 && inErrorListAtIndex <= m_errorList.size(),
                          "error list index out of range"))
        return;
    m_errorList.insert(inErrorListAtIndex, error);
    Q_EMIT errorInserted(inErrorListAtIndex);
}

void SyncErrorList::removeObjectFromErrorListAtIndex(qsizetype index)
{
    if (!Assertion::check(index >= 0 && index < m_errorList.size(), "error list index out of range"))
        return;
    m_errorList.removeAt(index);
    Q_EMIT errorRemoved(index);
}

void SyncErrorList::addError(const Error& error)
{
    insertObject(error, m_errorList.size());
}

void SyncErrorList::clear()
{
    while (!m_errorList.isEmpty())
        removeObjectFromErrorListAtIndex(m_errorList.size() - 1);
}
