#include "ui/main/MainWindow.h"

#include "JobListFixture.h"

#include "support/Waiting.h"
#include "ui/controls/ElidedLabel.h"
#include "ui/main/MainWindowController.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace {

class MainWindowTest : public JobListFixture
{
protected:
    MainWindowTest() : controller(application) { open(); }

    void open()
    {
        window.reset();
        window = std::make_unique<MainWindow>(controller);
        controller.showWindow();
        // Shortcuts work in the active window alone.
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    template <typename Widget>
    Widget& find(const QString& name)
    {
        auto* const found = window->findChild<Widget*>(name);
        if (found == nullptr)
            throw std::runtime_error("no " + name.toStdString());
        return *found;
    }
    QTreeView& outline() { return find<QTreeView>(u"jobsOutlineView"_s); }
    QHeaderView& header() { return *outline().header(); }
    QModelIndex row(int number) { return outline().model()->index(number, 0); }
    void announce() { controller.jobsArrayController().announceChanges(); }
    void trigger(const QString& action) { find<QAction>(action).trigger(); }
    QToolButton* toolButton(const QString& action)
    {
        return qobject_cast<QToolButton*>(find<QToolBar>(u"toolBar"_s).widgetForAction(&find<QAction>(action)));
    }
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

    MainWindowController controller;
    std::unique_ptr<MainWindow> window;
};

QMimeData* files(QMimeData& data, const QList<QUrl>& urls)
{
    data.setUrls(urls);
    return &data;
}

} // namespace

TEST_F(MainWindowTest, ItIsShownAndClosedByItsController)
{
    EXPECT_TRUE(window->isVisible());
    controller.close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(application.actions, QStringList()) << "closing asks nothing";
}

TEST_F(MainWindowTest, EachMenuActionReachesTheApplication)
{
    const QList<QPair<QString, QString>> expected{
        {u"newJobAction"_s, u"showSubmitJobWindow"_s},
        {u"refreshAction"_s, u"refreshJobsStatus"_s},
        {u"openDeliveryFolderAction"_s, u"openDeliveryFolder"_s},
        {u"errorsAction"_s, u"showErrorWindow"_s},
        {u"logAction"_s, u"showCustomLogWindow"_s},
        {u"preferencesAction"_s, u"showPreferencesWindow"_s},
        {u"accountPageAction"_s, u"openAccountSettings"_s},
        {u"quitAction"_s, u"quit"_s},
    };
    for (const auto& [action, called] : expected) {
        application.actions.clear();
        trigger(action);
        EXPECT_EQ(application.actions, QStringList{called}) << qPrintable(action);
    }
}

TEST_F(MainWindowTest, ActionsHaveTheirShortcuts)
{
    const QList<QPair<QString, QString>> expected{
        {u"newJobAction"_s, u"Ctrl+N"_s},
        {u"refreshAction"_s, u"F5"_s},
        {u"openDeliveryFolderAction"_s, u"Ctrl+O"_s},
        {u"quitAction"_s, u"Ctrl+Q"_s},
        {u"errorsAction"_s, u"Ctrl+E"_s},
        {u"logAction"_s, u"Ctrl+L"_s},
        {u"preferencesAction"_s, u"Ctrl+,"_s},
        {u"copyJobNumberAction"_s, u"Ctrl+C"_s},
    };
    for (const auto& [action, keys] : expected)
        EXPECT_EQ(find<QAction>(action).shortcut().toString(), keys) << qPrintable(action);
}

TEST_F(MainWindowTest, AShortcutWorksFromTheList)
{
    QTest::keyClick(&outline(), Qt::Key_F5);
    EXPECT_EQ(application.actions, QStringList{u"refreshJobsStatus"_s});
}

TEST_F(MainWindowTest, ResettingAsksInTheWindowToo)
{
    application.scriptedDialogs.answers = {false, true};
    trigger(u"resetAndReloadAction"_s);
    EXPECT_EQ(application.actions, QStringList());
    trigger(u"resetAndReloadAction"_s);
    EXPECT_EQ(application.actions, QStringList{u"resetAndReloadFromServer"_s});
    EXPECT_EQ(application.scriptedDialogs.questions.size(), 2);
}

TEST_F(MainWindowTest, AboutIsShownWithoutHoldingUpTheProgram)
{
    trigger(u"aboutAction"_s);
    auto& box = find<QMessageBox>(u"aboutBox"_s);
    EXPECT_TRUE(box.isVisible());
    EXPECT_EQ(box.text(), MainWindowController::aboutText());
    box.close();
    EXPECT_TRUE(Waiting::until([&] { return window->findChild<QMessageBox*>(u"aboutBox"_s) == nullptr; }));
}

// Footer, errors, title

TEST_F(MainWindowTest, TheFooterShowsTheLineAndRefreshesByMouseAndKeyboard)
{
    auto& footer = find<QPushButton>(u"footerButton"_s);
    EXPECT_EQ(footer.text(), controller.footerText());
    addJob(u"Smith"_s, JobStatusUploading);
    announce();
    EXPECT_EQ(footer.text(), controller.footerText());
    EXPECT_TRUE(footer.text().startsWith(u"Please do not close"_s));
    QTest::mouseClick(&footer, Qt::LeftButton);
    QTest::keyClick(&footer, Qt::Key_Space);
    EXPECT_EQ(application.actions, (QStringList{u"refreshJobsStatus"_s, u"refreshJobsStatus"_s}));
    EXPECT_TRUE(footer.focusPolicy() & Qt::TabFocus);
}

TEST_F(MainWindowTest, RefreshingIsSeenBesideTheFooter)
{
    auto& label = find<ElidedLabel>(u"refreshLabel"_s);
    engine().setIsCheckingJobStatus(true);
    EXPECT_EQ(label.text(), controller.refreshText());
    EXPECT_FALSE(label.text().isEmpty());
    engine().setIsCheckingJobStatus(false);
    EXPECT_EQ(label.text(), QString());
}

TEST_F(MainWindowTest, TheErrorsButtonCountsWhatWasNotSeen)
{
    QToolButton* const button = toolButton(u"errorsAction"_s);
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), u"Errors"_s);
    for (int i = 0; i < 3; ++i)
        application.syncErrorList().addError({ErrorDomain::SyncBase, 0, u"No"_s});
    EXPECT_EQ(button->text(), u"Errors (3)"_s);
    button->click();
    EXPECT_EQ(application.actions, QStringList{u"showErrorWindow"_s});
    EXPECT_EQ(button->text(), u"Errors"_s);
}

TEST_F(MainWindowTest, TheTitleFollowsTheLogin)
{
    application.name = u"ann"_s;
    controller.setUserContactID(u"17"_s);
    EXPECT_EQ(window->windowTitle(), u"Quillpost - ann"_s);
}

// The list

TEST_F(MainWindowTest, AnEmptyListShowsWhatToDoUntilAJobComes)
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

TEST_F(MainWindowTest, ReturnAndDoubleClickExpandAndCollapseARow)
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

TEST_F(MainWindowTest, ExpandedRowsStaySoOverChangesSortingAndRefresh)
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

TEST_F(MainWindowTest, AClickOnAHeaderSortsTheOtherWayAndThenNotAtAll)
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

TEST_F(MainWindowTest, NamesAndProgressAreDrawnByTheirCells)
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

TEST_F(MainWindowTest, LongTextsAreElidedAndToldByATooltip)
{
    const auto job = addJob(u"a very long name of a deposition "_s.repeated(20));
    announce();
    EXPECT_EQ(outline().textElideMode(), Qt::ElideMiddle);
    EXPECT_TRUE(row(0).data(Qt::ToolTipRole).toString().contains(job->name()));
    EXPECT_LT(outline().visualRect(row(0)).width(), header().length());
}

// Columns

TEST_F(MainWindowTest, ColumnsAreHiddenThroughTheHeadersMenuButNotTheName)
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

TEST_F(MainWindowTest, ColumnsAndPlaceAreRememberedByTheNextWindow)
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

TEST_F(MainWindowTest, TheRememberedSortingIsAppliedToTheRows)
{
    header().setSortIndicator(0, Qt::AscendingOrder);
    open();
    addJob(u"B"_s);
    addJob(u"A"_s);
    announce();
    EXPECT_EQ(row(0).data().toString(), u"A"_s);
}

TEST_F(MainWindowTest, ALookThatCannotBeReadIsNotTaken)
{
    window.reset();
    controller.saveLook("no header's", "no window's");
    open();
    EXPECT_EQ(header().count(), jobListColumnCount);
    EXPECT_FALSE(header().isSectionHidden(0));
    EXPECT_GT(window->width(), 100);
}

// Row menu

TEST_F(MainWindowTest, TheJobNumberOfTheRowIsCopied)
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

TEST_F(MainWindowTest, TheRowMenuHasTheSameActions)
{
    auto& menu = find<QMenu>(u"rowMenu"_s);
    Q_EMIT outline().customContextMenuRequested({5, 5});
    EXPECT_TRUE(menu.isVisible());
    for (const auto& action : {u"copyJobNumberAction"_s, u"newJobAction"_s, u"refreshAction"_s})
        EXPECT_TRUE(menu.actions().contains(&find<QAction>(action))) << qPrintable(action);
    menu.close();
}

// Dropped files

TEST_F(MainWindowTest, FilesDroppedOnTheListOpenTheSubmitWindow)
{
    addJobs(1, 0);
    announce();
    QMimeData data;
    EXPECT_TRUE(drop(*outline().viewport(),
                     *files(data, {QUrl::fromLocalFile(u"/a/x.txt"_s), QUrl::fromLocalFile(u"/a/x.mov"_s)})));
    EXPECT_EQ(application.actions, QStringList{u"showSubmitJobWindowWithFiles"_s});
    EXPECT_EQ(application.droppedFiles, (QStringList{u"/a/x.txt"_s, u"/a/x.mov"_s}));
}

TEST_F(MainWindowTest, FilesDroppedOnTheEmptyListDoSoToo)
{
    QMimeData data;
    EXPECT_TRUE(drop(find<QLabel>(u"emptyStateOverlay"_s), *files(data, {QUrl::fromLocalFile(u"/a/x.txt"_s)})));
    EXPECT_EQ(application.droppedFiles, QStringList{u"/a/x.txt"_s});
}

TEST_F(MainWindowTest, ADragWithoutFilesIsRefused)
{
    QMimeData text;
    text.setText(u"/a/x.txt"_s);
    EXPECT_FALSE(drop(*outline().viewport(), text));
    QMimeData page;
    EXPECT_FALSE(drop(*outline().viewport(), *files(page, {QUrl(u"https://example.com"_s)})));
    EXPECT_EQ(application.actions, QStringList());
}

// Access

TEST_F(MainWindowTest, EveryControlHasAName)
{
    for (const QWidget* const widget : window->findChildren<QWidget*>()) {
        if (!(widget->focusPolicy() & Qt::TabFocus))
            continue;
        QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
        ASSERT_NE(access, nullptr);
        EXPECT_FALSE(access->text(QAccessible::Name).isEmpty())
            << widget->metaObject()->className() << " " << qPrintable(widget->objectName());
    }
}

TEST_F(MainWindowTest, EveryMenuAndActionHasAMnemonicOfItsOwn)
{
    QStringList seen;
    for (const QAction* const menu : find<QMenuBar>(u"menuBar"_s).actions()) {
        const qsizetype place = menu->text().indexOf(u'&');
        ASSERT_GE(place, 0) << qPrintable(menu->text());
        seen.append(menu->text().mid(place + 1, 1).toLower());
    }
    EXPECT_EQ(seen.removeDuplicates(), 0);
}

TEST_F(MainWindowTest, ChangesWhileHiddenAreThereWhenItIsShown)
{
    controller.close();
    addJobs(3, 1);
    announce();
    controller.showWindow();
    EXPECT_EQ(outline().model()->rowCount(), 3);
    EXPECT_TRUE(outline().visualRect(row(2)).isValid());
}
