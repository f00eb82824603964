#include "ui/errors/ErrorWindow.h"

#include "ui_ErrorWindow.h"

#include "ui/controls/EmptyStateOverlay.h"
#include "ui/controls/QuillpostIcons.h"
#include "ui/controls/WindowBinding.h"
#include "ui/errors/ErrorWindowController.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QShortcut>

#include <chrono>

using namespace Qt::StringLiterals;

namespace {

constexpr auto gatheringTime = std::chrono::milliseconds(50);

int widthOf(const QWidget& widget, const QString& text)
{
    constexpr int marginLetters = 3;
    return widget.fontMetrics().horizontalAdvance(text) + marginLetters * widget.fontMetrics().averageCharWidth();
}

} // namespace

ErrorWindow::ErrorWindow(ErrorWindowController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller), m_ui(std::make_unique<Ui::ErrorWindow>())
{
    m_ui->setupUi(this);
    setWindowIcon(QuillpostIcons::application());
    resize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 26);
    setUpActions();
    setUpTable();

    // A burst of errors is shown once, not error by error.
    m_gathered.setSingleShot(true);
    m_gathered.setInterval(gatheringTime);
    connect(&m_gathered, &QTimer::timeout, this, &ErrorWindow::showSummary);
    connect(&m_controller, &ErrorWindowController::summaryChanged, &m_gathered, [this] {
        if (!m_gathered.isActive())
            m_gathered.start();
    });
    showSummary();
    showSelection();
    WindowBinding::bind(m_controller, *this);
}

ErrorWindow::~ErrorWindow()
{
    WindowBinding::unbind(m_controller, *this);
}

void ErrorWindow::setUpTable()
{
    QTreeView& table = *m_ui->errorTable;
    // Ahead of the view's own connections. Errors go one by one but all of them; a selection that moved from row to row
    // meanwhile would lay the table out anew each time.
    connect(&m_controller.errors(), &QAbstractItemModel::rowsAboutToBeRemoved, this, [&table] {
        if (table.currentIndex().isValid() || table.selectionModel()->hasSelection())
            table.selectionModel()->clear();
    });
    table.setModel(&m_controller.errors());
    QHeaderView& header = *table.header();
    header.setSectionsMovable(false);
    header.setStretchLastSection(false);
    header.setSectionResizeMode(static_cast<int>(ErrorListModel::Column::Text), QHeaderView::Stretch);
    header.resizeSection(static_cast<int>(ErrorListModel::Column::Time), widthOf(table, u"00:00:00 – 00:00:00"_s));
    header.resizeSection(static_cast<int>(ErrorListModel::Column::Count), widthOf(table, u"000,000"_s));
    new EmptyStateOverlay(&table, m_controller.emptyText());
    connect(table.selectionModel(), &QItemSelectionModel::selectionChanged, this, &ErrorWindow::showSelection);
    // Newest errors come into sight, unless the user has scrolled up to older ones.
    QScrollBar& bar = *table.verticalScrollBar();
    connect(&bar, &QScrollBar::valueChanged, this, [this, &bar] { m_showsNewest = bar.value() == bar.maximum(); });
    connect(&bar, &QScrollBar::rangeChanged, this, [this, &bar](int, int maximum) {
        if (m_showsNewest)
            bar.setValue(maximum);
    });
    m_ui->splitter->setStretchFactor(0, 3);
    m_ui->splitter->setStretchFactor(1, 1);
}

void ErrorWindow::setUpActions()
{
    m_copyAction = new QAction(tr("&Copy"), this);
    m_copyAction->setObjectName(u"copyAction"_s);
    m_copyAction->setShortcut(QKeySequence::Copy);
    m_copyAction->setShortcutContext(Qt::WidgetShortcut);
    m_ui->errorTable->addAction(m_copyAction);
    connect(m_copyAction, &QAction::triggered, this, &ErrorWindow::copySelection);
    connect(m_ui->copyButton, &QPushButton::clicked, this, &ErrorWindow::copySelection);
    connect(m_ui->clearLogButton, &QPushButton::clicked, &m_controller, &ErrorWindowController::clearLogButtonPressed);
    connect(m_ui->closeButton, &QPushButton::clicked, this, &QWidget::close);
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, &QWidget::close);
}

void ErrorWindow::showSummary()
{
    m_ui->summaryLabel->setText(m_controller.summaryText());
    m_ui->clearLogButton->setEnabled(m_controller.hasErrors());
    m_ui->detailText->setVisible(m_controller.hasErrors());
}

void ErrorWindow::showSelection()
{
    const QList<int> rows = selectedRows();
    m_ui->copyButton->setEnabled(!rows.isEmpty());
    m_copyAction->setEnabled(!rows.isEmpty());
    m_ui->detailText->setPlainText(m_controller.detailsOfRows(rows));
}

QList<int> ErrorWindow::selectedRows() const
{
    QList<int> rows;
    for (const QItemSelectionRange& range : m_ui->errorTable->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows << row;
    }
    return rows;
}

void ErrorWindow::copySelection()
{
    QGuiApplication::clipboard()->setText(m_controller.copiedText(selectedRows()));
}

void ErrorWindow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    // The newest is what the user has come to read.
    QTreeView& table = *m_ui->errorTable;
    const int count = table.model()->rowCount();
    if (count > 0 && !table.selectionModel()->hasSelection())
        table.setCurrentIndex(table.model()->index(count - 1, 0));
}
