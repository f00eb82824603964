#pragma once

#include "ui/WindowController.h"
#include "ui/errors/ErrorListModel.h"

class ApplicationController;

// The window of the errors that the user was told of in this run. Main thread.
class ErrorWindowController : public WindowController
{
    Q_OBJECT
    Q_PROPERTY(bool hasErrors READ hasErrors NOTIFY summaryChanged)
    Q_PROPERTY(QString summaryText READ summaryText NOTIFY summaryChanged)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
public:
    explicit ErrorWindowController(ApplicationController& application,
                                   ErrorListModel::Clock clock = &QDateTime::currentDateTime);

    [[nodiscard]] ErrorListModel& errors() { return m_errors; }
    [[nodiscard]] bool hasErrors() const;
    // Counts errors, not rows: "3 errors"; nothing while there is none.
    [[nodiscard]] QString summaryText() const;
    [[nodiscard]] QString emptyText() const;

    // What the pane below the list says of the selected rows.
    [[nodiscard]] QString detailsOfRows(const QList<int>& rows) const;
    // The selected rows for the clipboard, in the list's order.
    [[nodiscard]] QString copiedText(QList<int> rows) const;

    void clearLogButtonPressed();

Q_SIGNALS:
    void summaryChanged();

private:
    ApplicationController& m_application;
    ErrorListModel m_errors;
};
