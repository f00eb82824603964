#include "ui/main/MainWindowController.h"

#include "engine/JobModel.h"
#include "foundation/UserDefaults.h"
#include "foundation/Version.h"
#include "model/Job.h"
#include "ui/UserDialogs.h"
#include "ui/controls/DroppedFiles.h"
#include "ui/controls/ImageTextCell.h"
#include "ui/controls/ProgressCell.h"
#include "ui/errors/SyncErrorList.h"
#include "ui/main/JobListValues.h"
#include "ui/transformers/ValueTransformers.h"

#include <algorithm>
#include <cmath>

namespace {

// In the user's settings.
const QString columnsKey = QStringLiteral("MainWindowColumns");
const QString geometryKey = QStringLiteral("MainWindowGeometry");

QString footerTextFor(const QVariantList& statuses)
{
    return ValueTransformers::named(QStringLiteral("HasUncompletedLocalJobsToStringTransformer"))
        ->transformedValue(statuses)
        .toString();
}

} // namespace

MainWindowController::MainWindowController(ApplicationController& application)
    : m_application(application), m_jobs(application.jobModel())
{
    ValueTransformers::registerMainWindowTransformers();
    m_footerText = footerTextFor(m_jobs.jobStatuses());
    m_isListEmpty = m_jobs.rowCount() == 0;
    connect(&m_jobs, &JobListModel::changesAnnounced, this, &MainWindowController::followList);

    connect(&application.jobModel(), &JobModel::isCheckingJobStatusChanged, this, [this] {
        Q_EMIT isRefreshingChanged();
        Q_EMIT emptyListChanged();
    });

    for (const auto change : {&JobModel::jobRetried, &JobModel::jobRemoved})
        connect(&application.jobModel(), change, this, &MainWindowController::stoppedJobsChanged);
    connect(&application.jobModel(), &JobModel::jobStopped, this, &MainWindowController::stoppedJobsChanged);
    connect(&application.jobModel(), &JobModel::deliveryHadProblems, this, &MainWindowController::stoppedJobsChanged);

    const SyncErrorList& errors = application.syncErrorList();
    connect(&errors, &SyncErrorList::errorInserted, this, [this] {
        ++m_unseenErrorCount;
        Q_EMIT unseenErrorsChanged();
    });
    connect(&errors, &SyncErrorList::errorRemoved, this, [this, &errors] {
        m_unseenErrorCount = std::min(m_unseenErrorCount, static_cast<int>(errors.errorList().size()));
        Q_EMIT unseenErrorsChanged();
    });
}

void MainWindowController::setUserContactID(const QString& userContactID)
{
    m_userContactID = userContactID;
    Q_EMIT userContactIDChanged();
    Q_EMIT windowTitleChanged(); // Somebody has logged in.
}

QString MainWindowController::windowTitle() const
{
    const QString userName = m_application.userName();
    return userName.isEmpty() ? tr("Quillpost") : tr("Quillpost - %1").arg(userName);
}

// The list

void MainWindowController::followList()
{
    if (const bool isEmpty = m_jobs.rowCount() == 0; isEmpty != m_isListEmpty) {
        m_isListEmpty = isEmpty;
        Q_EMIT emptyListChanged();
    }
    if (QString text = footerTextFor(m_jobs.jobStatuses()); text != m_footerText) {
        m_footerText = std::move(text);
        Q_EMIT footerTextChanged();
    }
}

void MainWindowController::outlineViewWillDisplayCell(Cell& cell, JobListColumn /*column*/,
                                                      const MediaObject& item) const
{
    if (auto* progress = dynamic_cast<ProgressCell*>(&cell)) {
        const double total = item.totalValue().value_or(0);
        // A total below one counts as none: it is the integer that is asked about.
        progress->maxValue = std::trunc(total) == 0 ? 1 : total;
        progress->minValue = 0;
    } else if (auto* imageText = dynamic_cast<ImageTextCell*>(&cell)) {
        imageText->title = JobListValues::title(item);
        imageText->image = JobListValues::imageName(item);
    }
}

void MainWindowController::tableViewWillDisplayCell(Cell& cell, JobListColumn /*column*/, int row) const
{
    const auto job = m_jobs.arrangedJob(row);
    auto* const progress = dynamic_cast<ProgressCell*>(&cell);
    if (progress == nullptr || job == nullptr)
        return;
    // As it is, zero too: the outline alone replaces that.
    progress->maxValue = job->totalValue();
    progress->minValue = 0;
}

QString MainWindowController::emptyListText() const
{
    return isRefreshing() ? tr("Asking the service for your jobs…")
                          : tr("No jobs yet.\nDrop a transcript and its recordings here, or choose New Job.");
}

QString MainWindowController::jobNumberText(const QModelIndex& index) const
{
    const QModelIndex job = index.parent().isValid() ? index.parent() : index;
    return job.siblingAtColumn(static_cast<int>(JobListColumn::JobNumber)).data().toString();
}

std::shared_ptr<Job> MainWindowController::jobOfRow(const QModelIndex& index) const
{
    const QModelIndex job = index.parent().isValid() ? index.parent() : index;
    return job.isValid() ? m_jobs.arrangedJob(job.row()) : nullptr;
}

bool MainWindowController::canTryAgain(const QModelIndex& index) const
{
    const auto job = jobOfRow(index);
    return job && m_application.jobModel().canRetryJob(job);
}

void MainWindowController::tryAgain(const QModelIndex& index)
{
    if (const auto job = jobOfRow(index))
        m_application.jobModel().retryJob(job);
}

// Footer

bool MainWindowController::isRefreshing() const
{
    return m_application.jobModel().isCheckingJobStatus();
}

QString MainWindowController::refreshText() const
{
    return isRefreshing() ? tr("Checking with the service…") : QString();
}

// Errors

QString MainWindowController::errorsButtonText() const
{
    return m_unseenErrorCount == 0 ? tr("Errors") : tr("Errors (%1)").arg(m_unseenErrorCount);
}

void MainWindowController::errorsSeen()
{
    if (m_unseenErrorCount == 0)
        return;
    m_unseenErrorCount = 0;
    Q_EMIT unseenErrorsChanged();
}

void MainWindowController::showErrors()
{
    m_application.showErrorWindow();
    errorsSeen();
}

// Dropped files

QStringList MainWindowController::droppedPaths(const QList<QUrl>& urls)
{
    return DroppedFiles::localPaths(urls);
}

void MainWindowController::filesDropped(const QList<QUrl>& urls)
{
    if (const QStringList paths = droppedPaths(urls); !paths.isEmpty())
        m_application.showSubmitJobWindowWithFiles(paths);
}

// Look

QByteArray MainWindowController::savedColumns() const
{
    return m_application.userDefaults().value(columnsKey).toByteArray();
}

QByteArray MainWindowController::savedGeometry() const
{
    return m_application.userDefaults().value(geometryKey).toByteArray();
}

void MainWindowController::saveLook(const QByteArray& columns, const QByteArray& geometry)
{
    UserDefaults& defaults = m_application.userDefaults();
    if (columns != savedColumns())
        defaults.setValue(columnsKey, columns);
    if (geometry != savedGeometry())
        defaults.setValue(geometryKey, geometry);
}

// Actions

void MainWindowController::resetAndReload()
{
    const UserDialogs::Question question{
        tr("Reset and Reload from Server"),
        tr("The list of jobs is cleared and built again from what the service knows. Jobs that are still being "
           "prepared or uploaded on this computer are dropped and have to be submitted again. This cannot be undone."),
        tr("Keep the List"), tr("Reset and Reload"), /*isClosingDefault=*/true};
    if (!m_application.dialogs().ask(question))
        m_application.resetAndReloadFromServer();
}

QString MainWindowController::aboutTitle()
{
    return tr("About Quillpost");
}

QString MainWindowController::aboutText()
{
    return tr("Quillpost %1\n\nPrepares depositions, sends them to the sync service and delivers what comes back.\n\n"
              "Free software under the GNU General Public License, version 3.")
        .arg(applicationVersion());
}
