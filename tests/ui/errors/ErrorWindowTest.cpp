#include "ui/errors/ErrorWindow.h"

#include "ui-support/RecordingApplication.h"

#include "support/Waiting.h"
#include "ui/errors/ErrorWindowController.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class ErrorWindowTest : public testing::Test
{
protected:
    ErrorWindowTest() { controller.showWindow(); }

    void add(const QString& text) { application.syncErrorList().addError({ErrorDomain::SyncBase, 0, text}); }
    template <typename Widget>
    [[nodiscard]] Widget& the(const char* name) const
    {
        auto* widget = window.findChild<Widget*>(QString::fromLatin1(name));
        if (widget == nullptr)
            qFatal("no %s", name);
        return *widget;
    }
    void selectRow(int row, QItemSelectionModel::SelectionFlags flags = QItemSelectionModel::ClearAndSelect)
    {
        table.selectionModel()->select(controller.errors().index(row, 0), flags | QItemSelectionModel::Rows);
    }
    [[nodiscard]] bool isRowInSight(int row) const
    {
        return table.viewport()->rect().intersects(table.visualRect(table.model()->index(row, 0)));
    }

    const QDateTime now = QDateTime(QDate(2024, 3, 5), QTime(10, 0, 0));
    RecordingApplication application;
    ErrorWindowController controller{application, [this] { return now; }};
    ErrorWindow window{controller};
    QTreeView& table = the<QTreeView>("errorTable");
    QPlainTextEdit& details = the<QPlainTextEdit>("detailText");
    QLabel& summary = the<QLabel>("summaryLabel");
    QPushButton& copyButton = the<QPushButton>("copyButton");
    QPushButton& clearButton = the<QPushButton>("clearLogButton");
};

} // namespace

TEST_F(ErrorWindowTest, TheNewestErrorIsChosenWhenItOpens)
{
    add(u"first"_s);
    add(u"second"_s);
    window.close();
    controller.showWindow();
    EXPECT_TRUE(the<QPlainTextEdit>("detailText").toPlainText().contains(u"second"_s));
    selectRow(0);
    window.close();
    controller.showWindow();
    EXPECT_TRUE(the<QPlainTextEdit>("detailText").toPlainText().contains(u"first"_s)) << "a choice stays";
}

TEST_F(ErrorWindowTest, WithoutErrorsItSaysSoAndOffersNothing)
{
    const auto& overlay = the<QLabel>("emptyStateOverlay");
    EXPECT_TRUE(overlay.isVisible());
    EXPECT_EQ(overlay.text(), u"No errors in this run."_s);
    EXPECT_FALSE(copyButton.isEnabled());
    EXPECT_FALSE(clearButton.isEnabled());
    EXPECT_FALSE(details.isVisible());
}

TEST_F(ErrorWindowTest, ErrorsAppearAsTheyArrive)
{
    add(u"first"_s);
    add(u"second"_s);
    EXPECT_EQ(table.model()->rowCount(), 2);
    EXPECT_FALSE(the<QLabel>("emptyStateOverlay").isVisible());
    EXPECT_TRUE(Waiting::until([this] { return summary.text() == u"2 errors"_s; }));
    EXPECT_TRUE(clearButton.isEnabled());
    EXPECT_TRUE(details.isVisible());
}

TEST_F(ErrorWindowTest, TheSelectedErrorIsReadInFullBelow)
{
    add(u"<b>The service said:</b>\nno such job"_s);
    selectRow(0);
    EXPECT_EQ(details.toPlainText(), u"<b>The service said:</b>\nno such job"_s);
    EXPECT_TRUE(details.isReadOnly());
    EXPECT_TRUE(copyButton.isEnabled());
}

TEST_F(ErrorWindowTest, SelectedErrorsAreCopiedByButtonAndByKey)
{
    add(u"first"_s);
    add(u"second"_s);
    selectRow(0);
    QTest::mouseClick(&copyButton, Qt::LeftButton);
    EXPECT_EQ(QApplication::clipboard()->text(), u"10:00:00  first"_s);
    selectRow(1, QItemSelectionModel::Select);
    the<QAction>("copyAction").trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), u"10:00:00  first\n10:00:00  second"_s);
    EXPECT_EQ(the<QAction>("copyAction").shortcut(), QKeySequence(QKeySequence::Copy));
}

TEST_F(ErrorWindowTest, TheClearButtonEmptiesTheList)
{
    add(u"first"_s);
    selectRow(0);
    ASSERT_TRUE(Waiting::until([this] { return clearButton.isEnabled(); }));
    QTest::mouseClick(&clearButton, Qt::LeftButton);
    EXPECT_TRUE(application.syncErrorList().errorList().isEmpty());
    EXPECT_EQ(table.model()->rowCount(), 0);
    EXPECT_FALSE(copyButton.isEnabled());
    EXPECT_EQ(details.toPlainText(), QString());
    EXPECT_TRUE(Waiting::until([this] { return !clearButton.isEnabled() && summary.text().isEmpty(); }));
}

TEST_F(ErrorWindowTest, EscapeAndTheCloseButtonCloseIt)
{
    QApplication::setActiveWindow(&window);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    controller.showWindow();
    QTest::mouseClick(&the<QPushButton>("closeButton"), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(ErrorWindowTest, TheNewestErrorComesIntoSight)
{
    for (int i = 0; i < 200; ++i)
        add(QString::number(i));
    EXPECT_TRUE(Waiting::until([this] { return isRowInSight(199); }));
    add(u"newest"_s);
    EXPECT_TRUE(Waiting::until([this] { return isRowInSight(200); }));
}

TEST_F(ErrorWindowTest, AUserWhoScrolledUpStaysThere)
{
    for (int i = 0; i < 200; ++i)
        add(QString::number(i));
    ASSERT_TRUE(Waiting::until([this] { return isRowInSight(199); }));
    table.verticalScrollBar()->setValue(0);
    add(u"newest"_s);
    ASSERT_TRUE(Waiting::until([this] { return summary.text() == u"201 errors"_s; }));
    Waiting::turnMainLoopFor(std::chrono::milliseconds(50));
    EXPECT_TRUE(isRowInSight(0));
}

TEST_F(ErrorWindowTest, ClearingALongListWithEverythingSelectedChangesTheSelectionOnce)
{
    constexpr int number = 50'000;
    for (int i = 0; i < number; ++i)
        add(QString::number(i));
    table.selectAll();
    table.selectionModel()->setCurrentIndex(table.model()->index(number - 1, 0), QItemSelectionModel::NoUpdate);
    QSignalSpy selections(table.selectionModel(), &QItemSelectionModel::selectionChanged);
    QSignalSpy currents(table.selectionModel(), &QItemSelectionModel::currentChanged);
    controller.clearLogButtonPressed();
    EXPECT_EQ(table.model()->rowCount(), 0);
    EXPECT_LE(selections.count(), 1);
    EXPECT_LE(currents.count(), 1);
    EXPECT_FALSE(copyButton.isEnabled());
}

TEST_F(ErrorWindowTest, FiftyThousandErrorsStayInReach)
{
    for (int i = 0; i < 50'000; ++i)
        add(QString::number(i));
    EXPECT_TRUE(Waiting::until([this] { return isRowInSight(49'999); }));
    EXPECT_TRUE(Waiting::until([this] { return summary.text() == controller.summaryText(); }));
    controller.clearLogButtonPressed();
    EXPECT_EQ(table.model()->rowCount(), 0);
    EXPECT_TRUE(Waiting::until([this] { return the<QLabel>("emptyStateOverlay").isVisible(); }));
}
