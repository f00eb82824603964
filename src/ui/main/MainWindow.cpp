#include "ui/main/MainWindow.h"

#include "ui_MainWindow.h"

#include "ui/controls/CellDelegates.h"
#include "ui/controls/DroppedFiles.h"
#include "ui/controls/EmptyStateOverlay.h"
#include "ui/controls/QuillpostIcons.h"
#include "ui/controls/WindowBinding.h"
#include "ui/main/MainWindowController.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QShortcut>
#include <QToolButton>

namespace {

constexpr int nameColumn = static_cast<int>(JobListColumn::Name);
constexpr int progressColumn = static_cast<int>(JobListColumn::Progress);

// In characters, by column.
constexpr std::array<int, jobListColumnCount> firstWidths{52, 28, 12, 12, 14, 12, 24};
constexpr int firstRowCount = 22;

// Plain texts, with room above and below; all rows are as high as the highest cell of the first.
class RoomyDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] static int rowHeight(const QFontMetrics& metrics) { return metrics.height() * 3 / 2; }
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const QSize plain = QStyledItemDelegate::sizeHint(option, index);
        return plain.expandedTo({0, rowHeight(option.fontMetrics)});
    }
};

} // namespace

MainWindow::MainWindow(MainWindowController& controller)
    : m_controller(controller), m_ui(std::make_unique<Ui::MainWindow>())
{
    m_ui->setupUi(this);
    setWindowIcon(QuillpostIcons::application());
    WindowBinding::bind(controller, *this);
    setUpList();
    setUpColumns();
    setUpActions();
    setUpToolBar();
    bindTexts();
    bindRowActions();
    sizeFooter();
    if (!restoreGeometry(controller.savedGeometry()))
        sizeByFont();
}

MainWindow::~MainWindow()
{
    if (isVisible())
        saveLook();
    WindowBinding::unbind(m_controller, *this);
}

// The list

void MainWindow::setUpList()
{
    QTreeView& list = *m_ui->jobsOutlineView;
    // Before sorting is switched on, which sorts at once.
    list.header()->setSortIndicator(-1, Qt::AscendingOrder);
    list.header()->setSortIndicatorClearable(true);
    list.setSortingEnabled(true);
    list.setModel(&m_controller.jobsArrayController());
    setUpDelegates();

    auto* const overlay = new EmptyStateOverlay(&list);
    const auto showText = [this, overlay] { overlay->setText(m_controller.emptyListText()); };
    connect(&m_controller, &MainWindowController::emptyListChanged, overlay, showText);
    showText();

    for (const int key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(key), &list, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated,
                this, &MainWindow::toggleCurrentRow);
}

void MainWindow::setUpDelegates()
{
    QTreeView& list = *m_ui->jobsOutlineView;
    list.setItemDelegate(new RoomyDelegate(&list));
    // Not of this window, but of its controller: cells are also measured while the list is destroyed.
    const auto setUp = [&controller = m_controller](Cell& cell, const QModelIndex& index) {
        if (const auto item = controller.jobsArrayController().mediaObject(index))
            controller.outlineViewWillDisplayCell(cell, static_cast<JobListColumn>(index.column()), *item);
    };
    auto* const names = new ImageTextCellDelegate(&list);
    names->willDisplayCell = setUp;
    list.setItemDelegateForColumn(nameColumn, names);

    auto* const progress = new ProgressCellDelegate(&list);
    progress->willDisplayCell = [setUp](Cell& cell, const QModelIndex& index) {
        setUp(cell, index);
        cell.isEnabled = index.data(JobListModel::ProgressVisibleRole).toBool();
    };
    list.setItemDelegateForColumn(progressColumn, progress);
}

void MainWindow::setUpColumns()
{
    QHeaderView& header = *m_ui->jobsOutlineView->header();
    header.setObjectName(QStringLiteral("jobsHeader"));
    header.setAccessibleName(tr("Columns"));
    header.setContextMenuPolicy(Qt::CustomContextMenu);
    const int character = fontMetrics().averageCharWidth();
    for (int column = 0; column < jobListColumnCount; ++column)
        header.resizeSection(column, firstWidths[static_cast<std::size_t>(column)] * character);
    header.restoreState(m_controller.savedColumns());
    header.setSectionHidden(nameColumn, false);

    for (int column = 0; column < jobListColumnCount; ++column) {
        if (column == nameColumn)
            continue;
        QAction& action = *m_ui->columnsMenu->addAction(header.model()->headerData(column, Qt::Horizontal).toString());
        action.setObjectName(QStringLiteral("showColumn%1Action").arg(column));
        action.setCheckable(true);
        action.setChecked(!header.isSectionHidden(column));
        connect(&action, &QAction::toggled, &header,
                [&header, column](bool isShown) { header.setSectionHidden(column, !isShown); });
    }
    connect(&header, &QWidget::customContextMenuRequested, this,
            [this, &header](const QPoint& place) { m_ui->columnsMenu->popup(header.mapToGlobal(place)); });
}

void MainWindow::toggleCurrentRow()
{
    QTreeView& list = *m_ui->jobsOutlineView;
    const QModelIndex row = list.currentIndex().siblingAtColumn(nameColumn);
    list.setExpanded(row, !list.isExpanded(row));
}

// Actions

void MainWindow::setUpActions()
{
    const auto calls = [this](QAction* action, void (MainWindowController::*operation)()) {
        connect(action, &QAction::triggered, &m_controller, operation);
    };
    calls(m_ui->newJobAction, &MainWindowController::newJob);
    calls(m_ui->refreshAction, &MainWindowController::refresh);
    calls(m_ui->openDeliveryFolderAction, &MainWindowController::openDeliveryFolder);
    calls(m_ui->resetAndReloadAction, &MainWindowController::resetAndReload);
    calls(m_ui->quitAction, &MainWindowController::quit);
    calls(m_ui->preferencesAction, &MainWindowController::showPreferences);
    calls(m_ui->errorsAction, &MainWindowController::showErrors);
    calls(m_ui->logAction, &MainWindowController::showLog);
    calls(m_ui->accountPageAction, &MainWindowController::openAccountPage);
    connect(m_ui->aboutAction, &QAction::triggered, this, &MainWindow::showAbout);
    // Their keys work in the program's other windows as well.
    for (QAction* const action : {m_ui->newJobAction, m_ui->refreshAction, m_ui->openDeliveryFolderAction,
                                  m_ui->preferencesAction, m_ui->errorsAction, m_ui->logAction, m_ui->quitAction})
        action->setShortcutContext(Qt::ApplicationShortcut);
    connect(m_ui->footerButton, &QPushButton::clicked, &m_controller, &MainWindowController::refresh);
}

void MainWindow::bindRowActions()
{
    QTreeView& list = *m_ui->jobsOutlineView;
    const auto showState = [this, &list] {
        m_ui->tryAgainAction->setEnabled(m_controller.canTryAgain(list.currentIndex()));
        m_ui->copyJobNumberAction->setEnabled(!m_controller.jobNumberText(list.currentIndex()).isEmpty());
    };
    connect(list.selectionModel(), &QItemSelectionModel::currentChanged, this, showState);
    connect(&m_controller.jobsArrayController(), &JobListModel::changesAnnounced, this, showState);
    connect(&m_controller, &MainWindowController::stoppedJobsChanged, this, showState);
    showState();
    connect(m_ui->copyJobNumberAction, &QAction::triggered, this,
            [this, &list] { QGuiApplication::clipboard()->setText(m_controller.jobNumberText(list.currentIndex())); });

    connect(m_ui->tryAgainAction, &QAction::triggered, this,
            [this, &list] { m_controller.tryAgain(list.currentIndex()); });

    auto* const rowMenu = new QMenu(&list);
    rowMenu->setObjectName(QStringLiteral("rowMenu"));
    rowMenu->addActions({m_ui->tryAgainAction, m_ui->copyJobNumberAction, rowMenu->addSeparator(), m_ui->newJobAction,
                         m_ui->refreshAction, m_ui->openDeliveryFolderAction, rowMenu->addSeparator(),
                         m_ui->errorsAction, m_ui->logAction, m_ui->preferencesAction, m_ui->accountPageAction,
                         rowMenu->addSeparator(), m_ui->resetAndReloadAction, m_ui->quitAction});
    connect(&list, &QWidget::customContextMenuRequested, rowMenu,
            [&list, rowMenu](const QPoint& place) { rowMenu->popup(list.viewport()->mapToGlobal(place)); });
}

void MainWindow::setUpToolBar()
{
    const auto give = [this](QAction* action, const char* themeName, QStyle::StandardPixmap fallback) {
        action->setIcon(QIcon::fromTheme(QLatin1String(themeName), style()->standardIcon(fallback)));
    };
    give(m_ui->newJobAction, "document-new", QStyle::SP_FileIcon);
    give(m_ui->refreshAction, "view-refresh", QStyle::SP_BrowserReload);
    give(m_ui->openDeliveryFolderAction, "folder-open", QStyle::SP_DirOpenIcon);
    for (auto* const button : m_ui->toolBar->findChildren<QToolButton*>())
        button->setFocusPolicy(Qt::TabFocus);
    if (auto* const extension = m_ui->toolBar->findChild<QToolButton*>(QStringLiteral("qt_toolbar_ext_button")))
        extension->setAccessibleName(tr("More"));
}

void MainWindow::showAbout()
{
    auto* const box = new QMessageBox(QMessageBox::NoIcon, MainWindowController::aboutTitle(),
                                      MainWindowController::aboutText(), QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("aboutBox"));
    box->setTextFormat(Qt::PlainText);
    const int side = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    box->setIconPixmap(QuillpostIcons::application().pixmap(QSize(side, side), devicePixelRatioF()));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

// Texts

void MainWindow::bindTexts()
{
    const auto showTitle = [this] { setWindowTitle(m_controller.windowTitle()); };
    connect(&m_controller, &MainWindowController::windowTitleChanged, this, showTitle);
    showTitle();

    const auto showFooter = [this] { m_ui->footerButton->setText(m_controller.footerText()); };
    connect(&m_controller, &MainWindowController::footerTextChanged, this, showFooter);
    showFooter();

    const auto showRefreshing = [this] {
        m_ui->refreshLabel->setText(m_controller.refreshText());
        m_ui->refreshIndicator->setRunning(m_controller.isRefreshing());
    };
    connect(&m_controller, &MainWindowController::isRefreshingChanged, this, showRefreshing);
    showRefreshing();

    const QIcon warning =
        QIcon::fromTheme(QStringLiteral("dialog-warning"), style()->standardIcon(QStyle::SP_MessageBoxWarning));
    const QSize size = m_ui->toolBar->iconSize() * devicePixelRatio();
    const QIcon quiet(warning.pixmap(size, QIcon::Disabled));
    const auto showErrors = [this, warning, quiet] {
        m_ui->errorsAction->setText(u'&' + m_controller.errorsButtonText());
        m_ui->errorsAction->setIcon(m_controller.unseenErrorCount() > 0 ? warning : quiet);
    };
    connect(&m_controller, &MainWindowController::unseenErrorsChanged, this, showErrors);
    showErrors();
}

// Sizes

void MainWindow::sizeFooter()
{
    m_ui->footerStrip->setFixedHeight(fontMetrics().height() * 2);
}

void MainWindow::sizeByFont()
{
    QTreeView& list = *m_ui->jobsOutlineView;
    const int rows = firstRowCount * RoomyDelegate::rowHeight(fontMetrics());
    resize(list.header()->length() + style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this),
           rows + m_ui->footerStrip->height() + m_ui->toolBar->sizeHint().height());
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        sizeFooter();
}

void MainWindow::hideEvent(QHideEvent* event)
{
    QMainWindow::hideEvent(event);
    saveLook();
}

void MainWindow::saveLook() const
{
    m_controller.saveLook(m_ui->jobsOutlineView->header()->saveState(), saveGeometry());
}

// Dropped files

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    event->setDropAction(DroppedFiles::action(event->mimeData(), event->possibleActions()));
    event->setAccepted(event->dropAction() != Qt::IgnoreAction);
}

void MainWindow::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_controller.filesDropped(event->mimeData()->urls());
}
