#include "MainWindowFixture.h"

#include "support/Waiting.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>

using namespace Qt::StringLiterals;

namespace {

class MainWindowListTest : public MainWindowFixture
{
protected:
    bool drop(QWidget& on, const QMimeData& data)
    {
        const QPointF place = on.rect().center();
        QDragEnterEvent enter(place.toPoint(), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&on, &enter);
        if (!enter.isAccepted())
            return false;
        EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
        QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&on, &event);
        return event.isAccepted();
    }
};

QMimeData* files(QMimeData& data, const QList<QUrl>& urls)
{
    data.setUrls(urls);
    return &data;
}

} // namespace

TEST_F(MainWindowListTest, AnEmptyListShowsWhatToDoUntilAJobComes)
{
    auto& overlay = find<QLabel>(u"emptyStateOverlay"_s);
    EXPECT_TRUE(overlay.isVisible());
    EXPECT_EQ(overlay.text(), controller.emptyListText());
    engine().setIsCheckingJobStatus(true);
    EXPECT_EQ(overlay.text(), controller.emptyListText());
    const auto job = addJob(u"Smith"_s);
    announce();
    EXPECT_FALSE(overlay.isVisible());
    engine().removeJobsObject(job);
    announce();
    EXPECT_TRUE(overlay.isVisible());
}

TEST_F(MainWindowListTest, ReturnAndDoubleClickExpandAndCollapseARow)
{
    addJobs(2, 2);
    announce();
    outline().setCurrentIndex(row(1));
    QTest::keyClick(&outline(), Qt::Key_Return);
    EXPECT_TRUE(outline().isExpanded(row(1)));
    QTest::keyClick(&outline(), Qt::Key_Return);
    EXPECT_FALSE(outline().isExpanded(row(1)));

    const QPoint place = outline().visualRect(row(1)).center();
    QTest::mouseClick(outline().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(outline().viewport(), Qt::LeftButton, {}, place);
    EXPECT_TRUE(outline().isExpanded(row(1)));
}

TEST_F(MainWindowListTest, ExpandedRowsStaySoOverChangesSortingAndRefresh)
{
    addJobs(30, 2);
    announce();
    outline().expand(row(3));
    outline().setCurrentIndex(row(3));
    const QPersistentModelIndex expanded = row(3);
    const auto expectExpanded = [&] {
        EXPECT_TRUE(outline().isExpanded(expanded));
        EXPECT_EQ(outline().currentIndex(), QModelIndex(expanded));
        EXPECT_EQ(expanded.data().toString(), u"Job 4"_s);
    };
    engine().jobs()[3]->setScoreValue(50);
    announce();
    expectExpanded();

    header().setSortIndicator(0, Qt::DescendingOrder);
    EXPECT_EQ(row(0).data().toString(), u"Job 30"_s);
    EXPECT_EQ(expanded.row(), 26);
    expectExpanded();

    engine().processCheckJobsStatusOnServerResponse(JobModel::simulatedCheckStatusResponseNumOfDepos(40, 2));
    announce();
    expectExpanded();

    engine().removeJobsObject(engine().jobs()[0]);
    announce();
    expectExpanded();
}

TEST_F(MainWindowListTest, AChangedFileIsDrawnAgainOnlyWhereItsJobIsExpanded)
{
    addJobs(2, 1);
    announce();
    outline().expand(row(0));
    struct Paints : QObject
    {
        int count = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            count += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
    } paints;
    Waiting::turnMainLoopFor(std::chrono::milliseconds(100)); // What is still to be drawn of showing and expanding.
    outline().viewport()->installEventFilter(&paints);
    const auto change = [&](std::size_t job) {
        engine().jobs()[job]->mediaFiles().first()->setScoreValue(50);
        announce();
    };
    change(1);
    Waiting::turnMainLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(paints.count, 0);
    change(0);
    EXPECT_TRUE(Waiting::until([&] { return paints.count > 0; }));
}

TEST_F(MainWindowListTest, AClickOnAHeaderSortsTheOtherWayAndThenNotAtAll)
{
    addJob(u"B"_s);
    addJob(u"C"_s);
    addJob(u"A"_s);
    announce();
    const auto first = [&] { return row(0).data().toString(); };
    const QPoint place(header().sectionViewportPosition(0) + header().sectionSize(0) / 2, header().height() / 2);
    const auto click = [&] { QTest::mouseClick(header().viewport(), Qt::LeftButton, {}, place); };
    EXPECT_EQ(first(), u"B"_s) << "the engine's order";
    click();
    EXPECT_EQ(first(), u"A"_s);
    click();
    EXPECT_EQ(first(), u"C"_s);
    click();
    EXPECT_EQ(first(), u"B"_s);
}

TEST_F(MainWindowListTest, NamesAndProgressAreDrawnByTheirCells)
{
    const auto job = addJob(u"Smith"_s, JobStatusUploading);
    job->setTotalValue(4);
    job->setProcessedValue(3);
    announce();
    const auto picture = [&](JobListColumn column) {
        const QRect place = outline().visualRect(row(0).siblingAtColumn(static_cast<int>(column)));
        return outline().viewport()->grab(place).toImage();
    };
    const QImage whileRunning = picture(JobListColumn::Progress);
    job->setStatus(JobStatusUploaded);
    announce();
    EXPECT_NE(picture(JobListColumn::Progress), whileRunning) << "nothing runs, nothing is drawn";

    const QImage plain = picture(JobListColumn::Name);
    job->setRush(true);
    announce();
    EXPECT_NE(picture(JobListColumn::Name), plain);
}

TEST_F(MainWindowListTest, LongTextsAreElidedAndToldByATooltip)
{
    const auto job = addJob(u"a very long name of a deposition "_s.repeated(20));
    announce();
    EXPECT_EQ(outline().textElideMode(), Qt::ElideMiddle);
    EXPECT_TRUE(row(0).data(Qt::ToolTipRole).toString().contains(job->name()));
    EXPECT_LT(outline().visualRect(row(0)).width(), header().length());
}

// Columns

TEST_F(MainWindowListTest, ColumnsAreHiddenThroughTheHeadersMenuButNotTheName)
{
    QMenu& menu = find<QMenu>(u"columnsMenu"_s);
    EXPECT_EQ(menu.actions().size(), jobListColumnCount - 1);
    auto& durationShown = find<QAction>(u"showColumn5Action"_s);
    EXPECT_EQ(durationShown.text(), u"Duration"_s);
    EXPECT_TRUE(durationShown.isChecked());
    durationShown.trigger();
    EXPECT_TRUE(header().isSectionHidden(5));
    durationShown.trigger();
    EXPECT_FALSE(header().isSectionHidden(5));
    EXPECT_EQ(window->findChild<QAction*>(u"showColumn0Action"_s), nullptr);

    Q_EMIT header().customContextMenuRequested({1, 1});
    EXPECT_TRUE(menu.isVisible());
    menu.close();
}

TEST_F(MainWindowListTest, ColumnsAndPlaceAreRememberedByTheNextWindow)
{
    header().resizeSection(1, 333);
    header().moveSection(header().visualIndex(4), 1);
    header().setSortIndicator(3, Qt::DescendingOrder);
    find<QAction>(u"showColumn5Action"_s).trigger();
    window->resize(777, 555);
    controller.close();
    open();
    EXPECT_EQ(header().sectionSize(1), 333);
    EXPECT_EQ(header().visualIndex(4), 1);
    EXPECT_TRUE(header().isSectionHidden(5));
    EXPECT_FALSE(find<QAction>(u"showColumn5Action"_s).isChecked());
    EXPECT_EQ(header().sortIndicatorSection(), 3);
    EXPECT_EQ(window->size(), QSize(777, 555));
    EXPECT_TRUE(header().sectionsMovable());
}

TEST_F(MainWindowListTest, TheRememberedSortingIsAppliedToTheRows)
{
    header().setSortIndicator(0, Qt::AscendingOrder);
    open();
    addJob(u"B"_s);
    addJob(u"A"_s);
    announce();
    EXPECT_EQ(row(0).data().toString(), u"A"_s);
}

TEST_F(MainWindowListTest, ALookThatCannotBeReadIsNotTaken)
{
    window.reset();
    controller.saveLook("no header's", "no window's");
    open();
    EXPECT_EQ(header().count(), jobListColumnCount);
    EXPECT_FALSE(header().isSectionHidden(0));
    EXPECT_GT(window->width(), 100);
}

// Row menu

TEST_F(MainWindowListTest, TheJobNumberOfTheRowIsCopied)
{
    const auto job = addJob(u"Smith"_s);
    announce();
    auto& copy = find<QAction>(u"copyJobNumberAction"_s);
    EXPECT_FALSE(copy.isEnabled());
    outline().setCurrentIndex(row(0));
    EXPECT_FALSE(copy.isEnabled()) << "it has none yet";
    job->setDepoNum(4711);
    announce();
    EXPECT_TRUE(copy.isEnabled());
    copy.trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), u"4711"_s);
}

TEST_F(MainWindowListTest, AJobThatStoppedIsTriedAgainFromItsRow)
{
    const auto job = addJob(u"Smith"_s);
    const auto file = addFile(*job, u"Segment 1"_s);
    file->setStatus(JobStatusSubmittingDetails);
    announce();
    outline().setCurrentIndex(row(0));
    auto& tryAgain = find<QAction>(u"tryAgainAction"_s);
    EXPECT_FALSE(tryAgain.isEnabled()) << "it is under way";
    application.jobModel().processJobSubmitJobDetailsResponse(job, u"Account on hold"_s);
    EXPECT_TRUE(tryAgain.isEnabled());
    outline().expandAll();
    outline().setCurrentIndex(outline().model()->index(0, 0, row(0)));
    EXPECT_TRUE(tryAgain.isEnabled()) << "the row of its recording";
    tryAgain.trigger();
    EXPECT_EQ(file->status(), JobStatusIdle);
    EXPECT_FALSE(tryAgain.isEnabled());
}

TEST_F(MainWindowListTest, TheRowMenuHasEveryAction)
{
    auto& menu = find<QMenu>(u"rowMenu"_s);
    Q_EMIT outline().customContextMenuRequested({5, 5});
    EXPECT_TRUE(menu.isVisible());
    for (const auto& action : {u"tryAgainAction"_s, u"copyJobNumberAction"_s, u"newJobAction"_s, u"refreshAction"_s,
                               u"openDeliveryFolderAction"_s, u"errorsAction"_s, u"logAction"_s, u"preferencesAction"_s,
                               u"accountPageAction"_s, u"resetAndReloadAction"_s, u"quitAction"_s})
        EXPECT_TRUE(menu.actions().contains(&find<QAction>(action))) << qPrintable(action);
    menu.close();
}

// Dropped files

TEST_F(MainWindowListTest, FilesDroppedOnTheListOpenTheSubmitWindow)
{
    addJobs(1, 0);
    announce();
    QMimeData data;
    EXPECT_TRUE(drop(*outline().viewport(),
                     *files(data, {QUrl::fromLocalFile(u"/a/x.txt"_s), QUrl::fromLocalFile(u"/a/x.mov"_s)})));
    EXPECT_EQ(application.actions, QStringList{u"showSubmitJobWindowWithFiles"_s});
    EXPECT_EQ(application.droppedFiles, (QStringList{u"/a/x.txt"_s, u"/a/x.mov"_s}));
}

TEST_F(MainWindowListTest, FilesDroppedOnTheEmptyListDoSoToo)
{
    QMimeData data;
    EXPECT_TRUE(drop(find<QLabel>(u"emptyStateOverlay"_s), *files(data, {QUrl::fromLocalFile(u"/a/x.txt"_s)})));
    EXPECT_EQ(application.droppedFiles, QStringList{u"/a/x.txt"_s});
}

TEST_F(MainWindowListTest, ADragWithoutFilesIsRefused)
{
    QMimeData text;
    text.setText(u"/a/x.txt"_s);
    EXPECT_FALSE(drop(*outline().viewport(), text));
    QMimeData page;
    EXPECT_FALSE(drop(*outline().viewport(), *files(page, {QUrl(u"https://example.com"_s)})));
    EXPECT_EQ(application.actions, QStringList());
}
