// Fills a tree of jobs and their files, sorts it by each column both ways, and scrolls it from top to bottom a page at
// a time, each page painted: all with the jobs closed and with them open. "ours" is the program's own list in its main
// window; "bare" is a plain tree over Qt's own models with the same texts, columns and row height, in a window of the
// same size. Usage: quillpost-bench-joblist ours|bare JOBS
#include "harness/Report.h"
#include "works/ManyJobs.h"

#include "ui/main/JobListModel.h"

#include <QApplication>
#include <QHeaderView>
#include <QJsonObject>
#include <QMainWindow>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTreeView>
#include <QWindow>

#include <cstdio>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double secondsOf(const std::function<void()>& work)
{
    const auto begin = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

// What is not exposed is not painted.
void waitUntilExposed(const QWidget& window)
{
    DesktopRun::turnUntil("the window", [&] { return window.windowHandle()->isExposed(); });
}

// How often a list is painted, to be told beside the figures: a list that is not painted would be fast.
class Paintings : public QObject
{
public:
    explicit Paintings(const QTreeView& list) { list.viewport()->installEventFilter(this); }
    [[nodiscard]] int count() const { return m_count; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++m_count;
        return QObject::eventFilter(watched, event);
    }

private:
    int m_count = 0;
};

void paint(QTreeView& list)
{
    list.viewport()->repaint();
}

void sortByEachColumn(QTreeView& list)
{
    for (int column = 0; column < list.model()->columnCount(); ++column) {
        for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
            list.sortByColumn(column, order);
            paint(list);
        }
    }
}

void scrollThrough(QTreeView& list)
{
    QScrollBar& bar = *list.verticalScrollBar();
    for (int value = 0; value < bar.maximum(); value += bar.pageStep()) {
        bar.setValue(value);
        paint(list);
    }
    bar.setValue(0);
    paint(list);
}

QJsonObject measure(QTreeView& list)
{
    paint(list);
    const Paintings paintings(list);
    QJsonObject figures;
    const auto add = [&](const char* name, const std::function<void()>& work) {
        figures.insert(QLatin1String(name), secondsOf(work));
    };
    add("sortClosed", [&] { sortByEachColumn(list); });
    add("scrollClosed", [&] { scrollThrough(list); });
    add("expand", [&] {
        list.expandAll();
        paint(list);
    });
    add("sortOpen", [&] { sortByEachColumn(list); });
    add("scrollOpen", [&] { scrollThrough(list); });
    add("collapse", [&] {
        list.collapseAll();
        paint(list);
    });
    figures.insert(QStringLiteral("paintings"), paintings.count());
    return figures;
}

struct Texts
{
    std::vector<QVariant> values; // row by row, each job before its files
    std::vector<int> fileCounts;
};

// What the program's list displays, for the bare one to display the same.
Texts textsOf(const QAbstractItemModel& model)
{
    Texts texts;
    const auto addRow = [&](int row, const QModelIndex& parent) {
        for (int column = 0; column < model.columnCount(); ++column)
            texts.values.push_back(model.index(row, column, parent).data());
    };
    for (int row = 0; row < model.rowCount(); ++row) {
        addRow(row, {});
        const QModelIndex job = model.index(row, 0);
        texts.fileCounts.push_back(model.rowCount(job));
        for (int file = 0; file < model.rowCount(job); ++file)
            addRow(file, job);
    }
    return texts;
}

void fill(QStandardItemModel& model, const Texts& texts)
{
    std::size_t next = 0;
    const auto row = [&] {
        QList<QStandardItem*> items;
        for (int column = 0; column < model.columnCount(); ++column) {
            items.append(new QStandardItem);
            items.back()->setData(texts.values[next++], Qt::DisplayRole);
        }
        return items;
    };
    for (const int files : texts.fileCounts) {
        const QList<QStandardItem*> job = row();
        for (int file = 0; file < files; ++file)
            job.front()->appendRow(row());
        model.appendRow(job);
    }
}

QJsonObject measureBare(const QTreeView& ours, const Texts& texts)
{
    QMainWindow window;
    auto* const list = new QTreeView;
    window.setCentralWidget(list);
    list->setUniformRowHeights(ours.uniformRowHeights());
    list->setAlternatingRowColors(ours.alternatingRowColors());
    list->setSortingEnabled(true);
    QStandardItemModel model(0, ours.model()->columnCount());
    QSortFilterProxyModel proxy;
    const double filling = secondsOf([&] {
        fill(model, texts);
        proxy.setSourceModel(&model);
        list->setModel(&proxy);
    });
    const int rowHeight = ours.visualRect(ours.model()->index(0, 0)).height();
    for (int row = 0; row < model.rowCount(); ++row)
        model.item(row)->setSizeHint({0, rowHeight});
    window.resize(ours.window()->size());
    list->setFixedSize(ours.size());
    for (int column = 0; column < model.columnCount(); ++column)
        list->header()->resizeSection(column, ours.header()->sectionSize(column));
    window.show();
    waitUntilExposed(window);
    QJsonObject figures = measure(*list);
    figures.insert(QStringLiteral("fill"), filling);
    return figures;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QCoreApplication::arguments();
    const QString which = arguments.value(1);
    const int count = arguments.value(2).toInt();
    if (count < 1 || (which != QStringLiteral("ours") && which != QStringLiteral("bare"))) {
        std::fputs("usage: quillpost-bench-joblist ours|bare JOBS\n", stderr);
        return EXIT_FAILURE;
    }
    Bench::ManyJobs jobs(count, Bench::ManyJobs::Kind::Local);
    QTreeView& list = Bench::ManyJobs::list();
    QJsonObject figures;
    if (which == QStringLiteral("ours")) {
        waitUntilExposed(*list.window());
        figures = measure(list);
    } else {
        const Texts texts = textsOf(*list.model());
        figures = measureBare(list, texts);
    }
    Bench::printReport(figures);
    std::_Exit(EXIT_SUCCESS); // The end of thousands of jobs is none of what is measured.
}
