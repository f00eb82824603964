#include "ui/errors/ErrorWindowController.h"

#include "ui-support/RecordingApplication.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class ErrorWindowControllerTest : public testing::Test
{
protected:
    void add(const QString& text) { application.syncErrorList().addError({ErrorDomain::SyncBase, 0, text}); }

    const QDateTime now = QDateTime(QDate(2024, 3, 5), QTime(10, 0, 0));
    RecordingApplication application;
    ErrorWindowController controller{application, [this] { return now; }};
    QSignalSpy summaries{&controller, &ErrorWindowController::summaryChanged};
};

} // namespace

TEST_F(ErrorWindowControllerTest, WithoutErrorsItSaysSo)
{
    EXPECT_FALSE(controller.hasErrors());
    EXPECT_EQ(controller.emptyText(), u"No errors in this run."_s);
    EXPECT_EQ(controller.summaryText(), QString());
}

TEST_F(ErrorWindowControllerTest, TheSummaryCountsErrorsNotRows)
{
    add(u"lost"_s);
    EXPECT_TRUE(controller.hasErrors());
    EXPECT_EQ(controller.summaryText(), u"1 error"_s);
    add(u"lost"_s);
    add(u"other"_s);
    EXPECT_EQ(controller.errors().rowCount(), 2);
    EXPECT_EQ(controller.summaryText(), u"3 errors"_s);
    EXPECT_EQ(summaries.count(), 3);
}

TEST_F(ErrorWindowControllerTest, WhoeverIsToldOfAnErrorFindsItsRow)
{
    int rows = -1;
    QObject::connect(&controller, &ErrorWindowController::summaryChanged, &controller,
                     [&] { rows = controller.errors().rowCount(); });
    add(u"lost"_s);
    EXPECT_EQ(rows, 1);
}

TEST_F(ErrorWindowControllerTest, TheClearButtonEmptiesTheApplicationsErrorList)
{
    add(u"first"_s);
    add(u"second"_s);
    controller.clearLogButtonPressed();
    EXPECT_TRUE(application.syncErrorList().errorList().isEmpty());
    EXPECT_EQ(controller.errors().rowCount(), 0);
    EXPECT_FALSE(controller.hasErrors());
}

TEST_F(ErrorWindowControllerTest, TheDetailsAreTheWholeTextOfTheOneSelectedRow)
{
    add(u"line one\nline two"_s);
    add(u"other"_s);
    EXPECT_EQ(controller.detailsOfRows({}), QString());
    EXPECT_EQ(controller.detailsOfRows({0}), u"line one\nline two"_s);
    EXPECT_EQ(controller.detailsOfRows({0, 1}), u"2 rows are selected."_s);
}

TEST_F(ErrorWindowControllerTest, SelectedRowsAreCopiedInTheListsOrderWithTheirTimes)
{
    add(u"first"_s);
    add(u"second"_s);
    add(u"second"_s);
    EXPECT_EQ(controller.copiedText({1, 0}), u"10:00:00  first\n10:00:00  second  (2 times)"_s);
    EXPECT_EQ(controller.copiedText({}), QString());
}
