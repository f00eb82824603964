#include "ui/controls/DateField.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class DateFieldTest : public testing::Test
{
protected:
    DateFieldTest()
    {
        auto* const layout = new QVBoxLayout(&window);
        layout->addWidget(field);
        layout->addWidget(other);
        window.show();
        QApplication::setActiveWindow(&window);
        field->setFocus();
    }

    QWidget window;
    DateField* const field = new DateField; // the window's
    QLineEdit* const other = new QLineEdit; // the window's
    QSignalSpy typed{field, &DateField::dateTyped};
    QSignalSpy chosen{field, &DateField::dateChosen};
    QSignalSpy stepped{field, &DateField::stepped};
};

} // namespace

TEST_F(DateFieldTest, WhatIsTypedIsTakenWholeAtTheEndOfTheEdit)
{
    QTest::keyClicks(field, u"31 February 2026"_s);
    EXPECT_EQ(field->text(), u"31 February 2026"_s);
    EXPECT_EQ(typed.count(), 0);
    QTest::keyClick(field, Qt::Key_Return);
    ASSERT_EQ(typed.count(), 1);
    EXPECT_EQ(typed.first().first().toString(), u"31 February 2026"_s);
    other->setFocus();
    EXPECT_EQ(typed.count(), 1) << "leaving it ends no edit once more";
}

TEST_F(DateFieldTest, LeavingTheFieldEndsTheEdit)
{
    QTest::keyClicks(field, u"3/5/2026"_s);
    other->setFocus();
    EXPECT_EQ(typed.count(), 1);
}

TEST_F(DateFieldTest, TheArrowKeysStepUnlessATextIsBeingTyped)
{
    QTest::keyClick(field, Qt::Key_Up);
    QTest::keyClick(field, Qt::Key_Down);
    ASSERT_EQ(stepped.count(), 2);
    EXPECT_EQ(stepped[0].first().toInt(), 1);
    EXPECT_EQ(stepped[1].first().toInt(), -1);
    QTest::keyClicks(field, u"3"_s);
    QTest::keyClick(field, Qt::Key_Up);
    EXPECT_EQ(stepped.count(), 2);
}

TEST_F(DateFieldTest, TheCalendarOpensAtTheDateOrAtTodayAndTellsWhatIsChosen)
{
    field->setCalendarDate(QDate(2021, 3, 16));
    QTest::keyClick(field, Qt::Key_Down, Qt::AltModifier);
    ASSERT_NE(field->calendar(), nullptr);
    EXPECT_TRUE(field->calendar()->isVisible());
    EXPECT_EQ(field->calendar()->selectedDate(), QDate(2021, 3, 16));
    Q_EMIT field->calendar()->activated(QDate(2021, 3, 17));
    EXPECT_FALSE(field->calendar()->isVisible());
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen.first().first().toDate(), QDate(2021, 3, 17));
    field->setCalendarDate({});
    field->openCalendar();
    EXPECT_EQ(field->calendar()->monthShown(), QDate::currentDate().month());
    EXPECT_EQ(field->calendar()->yearShown(), QDate::currentDate().year());
}
