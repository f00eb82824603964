#include "MainWindowFixture.h"

#include "support/Waiting.h"
#include "ui/controls/ElidedLabel.h"

#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

class MainWindowTest : public MainWindowFixture
{};

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
        {u"tryAgainAction"_s, u"Ctrl+T"_s},
        {u"resetAndReloadAction"_s, u"Ctrl+Shift+R"_s},
        {u"accountPageAction"_s, u"Ctrl+Shift+A"_s},
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
    application.scriptedDialogs.answers = {true, false};
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

// Access

TEST_F(MainWindowTest, EveryMenuAndActionHasAMnemonicOfItsOwn)
{
    const auto check = [](const QList<QAction*>& actions) {
        QStringList seen;
        for (const QAction* const action : actions) {
            if (action->isSeparator())
                continue;
            const qsizetype place = action->text().indexOf(u'&');
            ASSERT_GE(place, 0) << qPrintable(action->text());
            seen.append(action->text().mid(place + 1, 1).toLower());
        }
        EXPECT_EQ(seen.removeDuplicates(), 0);
    };
    const QList<QAction*> menus = find<QMenuBar>(u"menuBar"_s).actions();
    check(menus);
    for (const QString& menu : {u"jobMenu"_s, u"editMenu"_s, u"viewMenu"_s, u"accountMenu"_s, u"helpMenu"_s})
        check(find<QMenu>(menu).actions());
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
