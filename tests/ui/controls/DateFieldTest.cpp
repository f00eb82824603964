#include "ui/controls/DateField.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QClipboard>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class DateFieldTest : public testing::Test
{
protected:
    DateFieldTest()
    {
        field.setDisplayFormat(u"d MMMM yyyy"_s);
        field.show();
        QApplication::setActiveWindow(&field);
        field.setFocus();
    }
    // The line that the keys of the field go to.
    [[nodiscard]] QLineEdit& line() { return *field.findChild<QLineEdit*>(); }

    DateField field;
    QSignalSpy changed{&field, &DateField::valueChanged};
};

} // namespace

TEST_F(DateFieldTest, WithoutADateItSaysSoAndHasNone)
{
    field.setValue(QDate(2026, 3, 4));
    EXPECT_EQ(field.value(), QDate(2026, 3, 4));
    field.setValue({});
    EXPECT_EQ(field.text(), u"No date"_s);
    EXPECT_FALSE(field.value().isValid());
    EXPECT_EQ(changed.count(), 0) << "what it is given is no news";
}

TEST_F(DateFieldTest, TypingWhereThereIsNoDateBeginsAtToday)
{
    field.setValue({});
    QTest::keyClicks(&field, u"15"_s);
    const QDate today = QDate::currentDate();
    EXPECT_EQ(field.value(), QDate(today.year(), today.month(), 15));
    EXPECT_EQ(changed.last().first().toDate(), field.value());
}

TEST_F(DateFieldTest, SteppingWhereThereIsNoDateBeginsAtToday)
{
    field.setValue({});
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_EQ(field.value(), QDate::currentDate());
}

TEST_F(DateFieldTest, TypingOverTheWholeDateBeginsWithItsFirstPart)
{
    field.setValue(QDate(2026, 3, 4));
    field.selectAll();
    QTest::keyClicks(&field, u"16"_s);
    EXPECT_EQ(field.value(), QDate(2026, 3, 16));
}

TEST_F(DateFieldTest, DeletingTheWholeDateLeavesNone)
{
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace}) {
        field.setValue(QDate(2026, 3, 4));
        field.selectAll();
        QTest::keyClick(&field, key);
        EXPECT_FALSE(field.value().isValid());
        EXPECT_FALSE(changed.last().first().toDate().isValid());
    }
}

TEST_F(DateFieldTest, AWholeDateIsPastedHoweverItIsWritten)
{
    for (const QString& text : {u"2021-03-16"_s, u" 16 March 2021 "_s, u"March 16, 2021"_s, u"Mar 16, 2021"_s,
                                u"3/16/2021"_s, u"16 Mar 2021\n"_s}) {
        field.setValue({});
        QGuiApplication::clipboard()->setText(text);
        QTest::keySequence(&field, QKeySequence::Paste);
        EXPECT_EQ(field.value(), QDate(2021, 3, 16)) << text.toStdString();
    }
    QGuiApplication::clipboard()->setText(u"next week"_s);
    QTest::keySequence(&field, QKeySequence::Paste);
    EXPECT_EQ(field.value(), QDate(2021, 3, 16)) << "no date changes nothing";
}

TEST_F(DateFieldTest, TheCalendarOpensAtTheDateOrAtToday)
{
    field.setValue({});
    field.calendarWidget()->setCurrentPage(1900, 1);
    QShowEvent shows;
    QCoreApplication::sendEvent(field.calendarWidget(), &shows);
    EXPECT_EQ(field.calendarWidget()->yearShown(), QDate::currentDate().year());
}
