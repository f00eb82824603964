#pragma once

#include "ui/ApplicationController.h"
#include "ui/WindowController.h"
#include "ui/main/JobListModel.h"

#include <QByteArray>
#include <QList>
#include <QUrl>

class Cell;
class MediaObject;

// The main window: the list of jobs, the line that says whether it is safe to quit, and the menus' actions. It changes
// no job. Made once; the application must outlive it. Main thread.
class MainWindowController : public WindowController
{
    Q_OBJECT
    Q_PROPERTY(QString userContactID READ userContactID WRITE setUserContactID NOTIFY userContactIDChanged)
    Q_PROPERTY(QString windowTitle READ windowTitle NOTIFY windowTitleChanged)
    Q_PROPERTY(QString footerText READ footerText NOTIFY footerTextChanged)
    Q_PROPERTY(bool isRefreshing READ isRefreshing NOTIFY isRefreshingChanged)
    Q_PROPERTY(QString refreshText READ refreshText NOTIFY isRefreshingChanged)
    Q_PROPERTY(bool isListEmpty READ isListEmpty NOTIFY emptyListChanged)
    Q_PROPERTY(QString emptyListText READ emptyListText NOTIFY emptyListChanged)
    Q_PROPERTY(int unseenErrorCount READ unseenErrorCount NOTIFY unseenErrorsChanged)
    Q_PROPERTY(QString errorsButtonText READ errorsButtonText NOTIFY unseenErrorsChanged)
public:
    // Registers the five transformers of the main window.
    explicit MainWindowController(ApplicationController& application);

    // --- Who is logged in ---
    [[nodiscard]] QString userContactID() const { return m_userContactID; }
    void setUserContactID(const QString& userContactID);
    [[nodiscard]] QString windowTitle() const;

    // --- The list ---
    // Its top rows are the arranged objects of the flat list.
    [[nodiscard]] JobListModel& jobsArrayController() { return m_jobs; }
    // Set a cell up for its row, before it is drawn.
    void outlineViewWillDisplayCell(Cell& cell, JobListColumn column, const MediaObject& item) const;
    void tableViewWillDisplayCell(Cell& cell, JobListColumn column, int row) const;
    [[nodiscard]] bool isListEmpty() const { return m_isListEmpty; }
    // What to do next.
    [[nodiscard]] QString emptyListText() const;
    // What "Copy Job Number" copies: for a media file, its job's number. Empty where there is none yet.
    [[nodiscard]] QString jobNumberText(const QModelIndex& index) const;
    // Whether the row's job, or the job of the row's file, stopped and can be tried again.
    [[nodiscard]] bool canTryAgain(const QModelIndex& index) const;
    void tryAgain(const QModelIndex& index);

    // --- Footer ---
    [[nodiscard]] QString footerText() const { return m_footerText; }
    [[nodiscard]] bool isRefreshing() const;
    [[nodiscard]] QString refreshText() const;

    // --- Errors that came since the error window was last shown ---
    [[nodiscard]] int unseenErrorCount() const { return m_unseenErrorCount; }
    [[nodiscard]] QString errorsButtonText() const;
    // To be called when the error window is shown, or an error comes while the user is in it.
    void errorsSeen();

    // --- Files dropped on the list ---
    // The paths of the files on this disk among them; a drag that has none is refused.
    [[nodiscard]] static QStringList droppedPaths(const QList<QUrl>& urls);
    void filesDropped(const QList<QUrl>& urls);

    // --- What the window keeps of its look ---
    [[nodiscard]] QByteArray savedColumns() const;
    [[nodiscard]] QByteArray savedGeometry() const;
    void saveLook(const QByteArray& columns, const QByteArray& geometry);

    // --- Actions ---
    void newJob() { m_application.showSubmitJobWindow(); }
    void refresh() { m_application.refreshJobsStatus(); }
    void openDeliveryFolder() { m_application.openDeliveryFolder(); }
    void showErrors();
    void showLog() { m_application.showCustomLogWindow(); }
    void showPreferences() { m_application.showPreferencesWindow(); }
    void openAccountPage() { m_application.openAccountSettings(); }
    // Asks first: local work is dropped.
    void resetAndReload();
    void quit() { m_application.quit(); }
    [[nodiscard]] static QString aboutTitle();
    [[nodiscard]] static QString aboutText();

Q_SIGNALS:
    void userContactIDChanged();
    void windowTitleChanged();
    void footerTextChanged();
    void isRefreshingChanged();
    void emptyListChanged();
    void stoppedJobsChanged();
    void unseenErrorsChanged();

private:
    void followList();
    [[nodiscard]] std::shared_ptr<Job> jobOfRow(const QModelIndex& index) const;

    ApplicationController& m_application;
    JobListModel m_jobs;
    QString m_userContactID;
    QString m_footerText;
    bool m_isListEmpty = true;
    int m_unseenErrorCount = 0;
};
