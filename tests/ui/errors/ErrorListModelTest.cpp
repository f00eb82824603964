#include "ui/errors/ErrorListModel.h"

#include "ui/errors/SyncErrorList.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using Column = ErrorListModel::Column;

namespace {

Error error(const QString& text, int code = 0)
{
    return {ErrorDomain::SyncBase, code, text};
}

// A clock that moves on by a second with each error.
class ErrorListModelTest : public testing::Test
{
protected:
    void add(const QString& text, int code = 0)
    {
        now = now.addSecs(1);
        list.addError(error(text, code));
    }
    [[nodiscard]] QString text(int row, Column column, int role = Qt::DisplayRole) const
    {
        return model.index(row, static_cast<int>(column)).data(role).toString();
    }
    // Rows as "text times count".
    [[nodiscard]] QStringList rows() const
    {
        QStringList rows;
        for (int row = 0; row < model.rowCount(); ++row)
            rows << text(row, Column::Text) + u'*' + text(row, Column::Count);
        return rows;
    }

    QDateTime now = QDateTime(QDate(2024, 3, 5), QTime(10, 0, 0));
    SyncErrorList list;
    ErrorListModel model{list, [this] { return now; }};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
    QSignalSpy removed{&model, &QAbstractItemModel::rowsRemoved};
    QSignalSpy changed{&model, &QAbstractItemModel::dataChanged};
    QSignalSpy reset{&model, &QAbstractItemModel::modelReset};
};

} // namespace

TEST_F(ErrorListModelTest, ErrorsAreRowsOldestFirstWithTheTimeOfTheirArrival)
{
    add(u"first"_s);
    add(u"second"_s);
    EXPECT_EQ(rows(), (QStringList{u"first*1"_s, u"second*1"_s}));
    EXPECT_EQ(text(0, Column::Time), u"10:00:01"_s);
    EXPECT_EQ(text(1, Column::Time), u"10:00:02"_s);
    EXPECT_EQ(inserted.count(), 2);
    EXPECT_EQ(reset.count(), 0);
}

TEST_F(ErrorListModelTest, EqualErrorsThatFollowOneAnotherAreOneRowWithACountAndTheFirstAndLastTime)
{
    add(u"lost"_s);
    add(u"lost"_s);
    add(u"lost"_s);
    EXPECT_EQ(rows(), QStringList{u"lost*3"_s});
    EXPECT_EQ(text(0, Column::Time), u"10:00:01 – 10:00:03"_s);
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(list.errorList().size(), 3) << "the list itself keeps every error";
}

TEST_F(ErrorListModelTest, EqualErrorsWithAnotherBetweenThemAreRowsOfTheirOwn)
{
    add(u"lost"_s);
    add(u"other"_s);
    add(u"lost"_s);
    EXPECT_EQ(rows(), (QStringList{u"lost*1"_s, u"other*1"_s, u"lost*1"_s}));
}

TEST_F(ErrorListModelTest, ErrorsOfAnotherCodeAreNotEqual)
{
    add(u"lost"_s, 0);
    add(u"lost"_s, 1);
    EXPECT_EQ(model.rowCount(), 2);
}

TEST_F(ErrorListModelTest, ClearingTakesTheErrorsAwayOneByOneFromTheLast)
{
    add(u"first"_s);
    add(u"lost"_s);
    add(u"lost"_s);
    changed.clear();
    list.clear();
    EXPECT_EQ(model.rowCount(), 0);
    ASSERT_EQ(removed.count(), 2);
    EXPECT_EQ(removed.value(0).value(1).toInt(), 1);
    EXPECT_EQ(removed.value(1).value(1).toInt(), 0);
    EXPECT_EQ(changed.count(), 1) << "the folded row loses one error before it goes";
    EXPECT_EQ(reset.count(), 0);
}

TEST_F(ErrorListModelTest, ARowThatLosesItsLastErrorTakesBackItsTime)
{
    add(u"lost"_s);
    add(u"lost"_s);
    list.removeObjectFromErrorListAtIndex(1);
    EXPECT_EQ(rows(), QStringList{u"lost*1"_s});
    EXPECT_EQ(text(0, Column::Time), u"10:00:01"_s);
    add(u"lost"_s);
    EXPECT_EQ(text(0, Column::Time), u"10:00:01 – 10:00:03"_s);
}

TEST_F(ErrorListModelTest, ErrorsInTheMiddleSplitAndJoinRows)
{
    add(u"lost"_s);
    add(u"lost"_s);
    list.insertObject(error(u"other"_s), 1);
    EXPECT_EQ(rows(), (QStringList{u"lost*1"_s, u"other*1"_s, u"lost*1"_s}));
    EXPECT_EQ(text(2, Column::Time), u"10:00:02"_s);
    list.removeObjectFromErrorListAtIndex(1);
    EXPECT_EQ(rows(), QStringList{u"lost*2"_s});
    EXPECT_EQ(text(0, Column::Time), u"10:00:01 – 10:00:02"_s);
}

TEST_F(ErrorListModelTest, ErrorsFromBeforeTheModelWasMadeAreInIt)
{
    add(u"first"_s);
    add(u"lost"_s);
    add(u"lost"_s);
    const ErrorListModel late(list, [this] { return now; });
    EXPECT_EQ(late.rowCount(), 2);
    EXPECT_EQ(late.index(1, static_cast<int>(Column::Count)).data().toInt(), 2);
}

TEST_F(ErrorListModelTest, ErrorsOfYesterdayAreToldFromTodays)
{
    add(u"first"_s);
    now = now.addDays(1);
    EXPECT_EQ(text(0, Column::Time), u"2024-03-05 10:00:01"_s);
}

TEST_F(ErrorListModelTest, ATextOfSeveralLinesIsOneLineInTheTableAndWholeForCopying)
{
    const QString words = u"The service said:\n\tno such job\n"_s;
    add(words);
    EXPECT_EQ(text(0, Column::Text), u"The service said: no such job"_s);
    EXPECT_EQ(text(0, Column::Text, ErrorListModel::textRole), words);
    EXPECT_EQ(model.textOfRow(0), u"10:00:01  "_s + words);
}

TEST_F(ErrorListModelTest, AVeryLongTextIsShortenedInTheTableAlone)
{
    const QString words = QString(300'000, u'x');
    add(words);
    EXPECT_LT(text(0, Column::Text).size(), 1000);
    EXPECT_TRUE(text(0, Column::Text).endsWith(QChar(0x2026)));
    EXPECT_EQ(text(0, Column::Text, ErrorListModel::textRole), words);
    EXPECT_LT(text(0, Column::Text, Qt::ToolTipRole).size(), 2000);
}

TEST_F(ErrorListModelTest, MarkupInATextIsShownAsItStands)
{
    add(u"<b>500</b> Internal"_s);
    EXPECT_EQ(text(0, Column::Text), u"<b>500</b> Internal"_s);
    EXPECT_TRUE(text(0, Column::Text, Qt::ToolTipRole).contains(u"&lt;b&gt;500"_s));
}

TEST_F(ErrorListModelTest, ARowsTextSaysHowOften)
{
    add(u"lost"_s);
    add(u"lost"_s);
    EXPECT_EQ(model.textOfRow(0), u"10:00:01 – 10:00:02  lost  (2 times)"_s);
    EXPECT_EQ(model.textOfRow(1), QString());
    EXPECT_EQ(model.textOfRow(-1), QString());
}

TEST_F(ErrorListModelTest, TheColumnsAreNamed)
{
    QStringList names;
    for (int column = 0; column < model.columnCount(); ++column)
        names << model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    EXPECT_EQ(names, (QStringList{u"Time"_s, u"Error"_s, u"Count"_s}));
}

TEST(ErrorListModelSizeTest, FiftyThousandErrorsArriveAndAreClearedOneByOneInLinearTime)
{
    constexpr int number = 50'000;
    SyncErrorList list;
    const ErrorListModel model(list);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    for (int i = 0; i < number; ++i)
        list.addError(error(QString::number(i)));
    EXPECT_EQ(model.rowCount(), number);
    EXPECT_EQ(inserted.count(), number);
    list.clear();
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(removed.count(), number);
    EXPECT_EQ(reset.count(), 0);
}
