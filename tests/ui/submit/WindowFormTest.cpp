#include "WindowTest.h"

#include "ui/controls/BusyIndicator.h"

#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QCompleter>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace {

class SubmitWindowForm : public SubmitWindowTest
{
protected:
    int checkedLevel()
    {
        int checked = -1;
        for (QRadioButton* const choice : window.findChildren<QRadioButton*>()) {
            if (!choice->isChecked())
                continue;
            EXPECT_EQ(checked, -1) << "two rows are chosen";
            checked = choice->objectName().last(1).toInt();
        }
        return checked;
    }
    // As the user chooses, with the keyboard: an item that is disabled is passed over.
    void chooseFormat(int format)
    {
        formats().setCurrentIndex(format);
        Q_EMIT formats().activated(format);
    }
};

TEST_F(SubmitWindowForm, TheRowsSetTheLevelAndShowThePrices)
{
    EXPECT_EQ(price(ProcessingLevelMan24), u"—"_s);
    controller.processGetRates2Response(SubmitTexts::rates);
    EXPECT_EQ(price(ProcessingLevelAutoSync), u"30.00 per hour"_s);
    EXPECT_EQ(price(ProcessingLevelUnattended), u"45.00 per hour"_s);
    EXPECT_EQ(level(ProcessingLevelMan24).accessibleDescription(), u"95.00 per hour"_s);
    EXPECT_EQ(find<QLabel>(u"rushMultiplierLabel"_s).text(), u"× 1.5"_s);
    for (const int tag : {1, 2, 3, 4, 0}) {
        QTest::mouseClick(&level(tag), Qt::LeftButton, {}, {8, level(tag).height() / 2});
        EXPECT_EQ(job().processingLevel(), tag);
        EXPECT_EQ(checkedLevel(), tag);
    }
}

TEST_F(SubmitWindowForm, RushAndInterpreterMoveTheRowAsTheJobSays)
{
    controller.processGetRates2Response(SubmitTexts::rates);
    level(ProcessingLevelMan72).click();
    rush().click();
    EXPECT_EQ(checkedLevel(), ProcessingLevelAutoSync);
    EXPECT_EQ(price(ProcessingLevelAutoSync), u"45.00 per hour"_s);
    interpreter().click();
    EXPECT_EQ(checkedLevel(), ProcessingLevelMan24);
    level(ProcessingLevelMan48).click();
    EXPECT_EQ(checkedLevel(), ProcessingLevelMan48) << "the job's rules leave every row to the user";
    rush().click();
    EXPECT_EQ(checkedLevel(), ProcessingLevelMan24);
    EXPECT_FALSE(job().rush());
    EXPECT_TRUE(job().viaInterpreter());
    job().setProcessingLevel(ProcessingLevelMan72);
    job().setRush(true);
    EXPECT_TRUE(rush().isChecked());
    EXPECT_EQ(checkedLevel(), ProcessingLevelMan24);
}

TEST_F(SubmitWindowForm, ARowWithoutAPriceForUnattendedIsGoneAndStaysAway)
{
    controller.processGetRates2Response(SubmitTexts::ratesWithoutUnattended);
    EXPECT_EQ(window.findChild<QRadioButton*>(u"processingLevel4"_s), nullptr);
    EXPECT_EQ(window.findChild<QLabel*>(u"processingLevelValue4"_s), nullptr);
    controller.showWindow();
    controller.processGetRates2Response(SubmitTexts::rates);
    EXPECT_EQ(window.findChild<QRadioButton*>(u"processingLevel4"_s), nullptr);
    EXPECT_EQ(window.findChildren<QRadioButton*>().size(), 4);
    SubmitJobWindow later(controller);
    EXPECT_EQ(later.findChildren<QRadioButton*>().size(), 4) << "also in a window made after the reply";
}

TEST_F(SubmitWindowForm, ALevelWhoseRowIsGoneShowsAsNoChoice)
{
    level(ProcessingLevelUnattended).click();
    controller.processGetRates2Response(SubmitTexts::ratesWithoutUnattended);
    EXPECT_EQ(checkedLevel(), -1);
    EXPECT_EQ(find<QLabel>(u"ratesStatusLabel"_s).text(),
              u"Unattended is not offered to you. Please choose another level."_s);
    level(ProcessingLevelMan24).click();
    EXPECT_EQ(job().processingLevel(), ProcessingLevelMan24);
    EXPECT_EQ(checkedLevel(), ProcessingLevelMan24);
}

TEST_F(SubmitWindowForm, ARingTurnsWhilePricesAreAwaited)
{
    auto& busy = find<BusyIndicator>(u"ratesBusyIndicator"_s);
    EXPECT_TRUE(busy.isRunning());
    EXPECT_EQ(find<QLabel>(u"ratesStatusLabel"_s).text(), u"Asking for your prices…"_s);
    controller.processGetRates2Response(SubmitTexts::rates);
    EXPECT_FALSE(busy.isRunning());
    EXPECT_EQ(find<QLabel>(u"ratesStatusLabel"_s).text(), QString());
}

TEST_F(SubmitWindowForm, TheLogItemCanBeChosenOnlyWhenItIsOffered)
{
    const auto isEnabled = [&] {
        return formats().model()->flags(formats().model()->index(DeliveryFormatLOG, 0)).testFlag(Qt::ItemIsEnabled);
    };
    EXPECT_FALSE(isEnabled());
    chooseFormat(DeliveryFormatLOG);
    EXPECT_EQ(job().deliveryFormat(), DeliveryFormatAll);
    EXPECT_EQ(formats().currentData().toInt(), DeliveryFormatAll);
    controller.processLogAvailabilityResponse(u"yes"_s);
    EXPECT_TRUE(isEnabled());
    chooseFormat(DeliveryFormatLOG);
    EXPECT_EQ(job().deliveryFormat(), DeliveryFormatLOG);
    controller.processLogAvailabilityResponse(u"no"_s);
    EXPECT_EQ(formats().currentData().toInt(), DeliveryFormatAll);
    EXPECT_FALSE(isEnabled());
}

TEST_F(SubmitWindowForm, TheCustomFormatShowsALinkToItsPage)
{
    auto& hint = find<QLabel>(u"customizeFormatTextField"_s);
    EXPECT_FALSE(hint.isVisible());
    enter(formats());
    QTest::keyClick(&formats(), Qt::Key_End);
    EXPECT_EQ(job().deliveryFormat(), DeliveryFormatCustom);
    EXPECT_TRUE(hint.isVisible());
    EXPECT_TRUE(application.opened.isEmpty());
    QTest::mouseClick(&hint, Qt::LeftButton);
    EXPECT_EQ(application.opened, QList<QUrl>{controller.customizeFormatUrl()});
    QTest::keyClick(&formats(), Qt::Key_Home);
    EXPECT_FALSE(hint.isVisible());
}

TEST_F(SubmitWindowForm, TypedNamesAreTheJobs)
{
    QTest::keyClicks(&find(u"deponentFirstNameField"_s), u"Jane"_s);
    QTest::keyClicks(&find(u"deponentLastNameField"_s), u"Doe"_s);
    EXPECT_EQ(job().deponentFirstName(), u"Jane"_s);
    EXPECT_EQ(job().deponentLastName(), u"Doe"_s);
}

TEST_F(SubmitWindowForm, TheDateFollowsTheJobAndIsEmptyWhereThereIsNone)
{
    EXPECT_EQ(date().text(), QLocale().toString(QDate::currentDate(), u"d MMMM yyyy"_s));
    job().setDepositionDate(QDateTime(QDate(2026, 3, 4), QTime(12, 0)));
    EXPECT_EQ(date().text(), u"4 March 2026"_s);
    job().setDepositionDate({});
    EXPECT_EQ(date().text(), QString());
    EXPECT_EQ(date().placeholderText(), u"No date"_s);
    EXPECT_FALSE(job().depositionDate().isValid()) << "showing it sets nothing";
}

TEST_F(SubmitWindowForm, ADateIsTypedHoweverItIsWritten)
{
    for (const QString& text :
         {u"2026-03-05"_s, u"3/5/2026"_s, u"March 5, 2026"_s, u" 5 march 2026"_s, u"Mar 5, 2026"_s}) {
        job().setDepositionDate({});
        enter(date());
        QTest::keyClicks(&date(), text);
        QTest::keyClick(&date(), Qt::Key_Return);
        EXPECT_EQ(job().depositionDate(), QDateTime(QDate(2026, 3, 5), QTime(12, 0))) << text.toStdString();
        EXPECT_EQ(date().text(), u"5 March 2026"_s);
        EXPECT_FALSE(find(u"dateMessageLabel"_s).isVisible());
    }
    date().selectAll();
    QTest::keyClick(&date(), Qt::Key_Delete);
    QTest::keyClick(&date(), Qt::Key_Return);
    EXPECT_FALSE(job().depositionDate().isValid());
}

TEST_F(SubmitWindowForm, ATextThatIsNoDateStaysIsToldAndLeavesTheJobWithoutOne)
{
    auto& message = find<QLabel>(u"dateMessageLabel"_s);
    for (const QString& text : {u"31 February 2026"_s, u"next week"_s}) {
        enter(date());
        date().selectAll();
        QTest::keyClicks(&date(), text);
        enter(find(u"deponentFirstNameField"_s));
        EXPECT_EQ(date().text(), text);
        EXPECT_EQ(message.text(), u"“%1” is no date. Please enter it as in 4 March 2026."_s.arg(text));
        EXPECT_TRUE(message.isVisible());
        EXPECT_FALSE(job().depositionDate().isValid());
    }
    controller.addTranscriptFile(transcript());
    EXPECT_FALSE(message.isVisible()) << "the transcript's date replaces it";
    EXPECT_EQ(date().text(), QLocale().toString(job().depositionDate().date(), u"d MMMM yyyy"_s));
}

TEST_F(SubmitWindowForm, TheDateIsSteppedAndChosenInTheCalendar)
{
    job().setDepositionDate(QDateTime(QDate(2026, 3, 4), QTime(12, 0)));
    enter(date());
    QTest::keyClick(&date(), Qt::Key_Up);
    EXPECT_EQ(controller.depositionDate(), QDate(2026, 3, 5));
    date().openCalendar();
    EXPECT_EQ(date().calendar()->selectedDate(), QDate(2026, 3, 5));
    Q_EMIT date().calendar()->activated(QDate(2026, 3, 9));
    EXPECT_EQ(controller.depositionDate(), QDate(2026, 3, 9));
    job().setDepositionDate({});
    QTest::keyClick(&date(), Qt::Key_Down);
    EXPECT_EQ(controller.depositionDate(), QDate::currentDate()) << "without one, it begins at today";
}

TEST_F(SubmitWindowForm, ACaptionKeepsTheLetterCaseInWhichItIsTyped)
{
    controller.newShortCaptionEntered(u"Smith v. Jones"_s);
    enter(*caption().lineEdit());
    caption().lineEdit()->selectAll();
    QTest::keyClicks(caption().lineEdit(), u"SMITH V. JONES"_s);
    caption().completer()->popup()->hide();
    enter(find(u"deponentFirstNameField"_s));
    EXPECT_EQ(caption().currentText(), u"SMITH V. JONES"_s);
    EXPECT_EQ(job().shortCaption(), u"SMITH V. JONES"_s);
    EXPECT_EQ(controller.shortCaptions(), QStringList({u"Smith v. Jones"_s, u"SMITH V. JONES"_s}));
}

TEST_F(SubmitWindowForm, AWheelOnItsWayOverTheFormChangesNothing)
{
    controller.newShortCaptionEntered(u"Doe v. Roe"_s);
    controller.newShortCaptionEntered(u"Smith v. Jones"_s);
    enter(*caption().lineEdit());
    QTest::keyClicks(caption().lineEdit(), u" and others"_s);
    const auto turn = [](QWidget& over) {
        QWheelEvent event(QPointF(2, 2), over.mapToGlobal(QPointF(2, 2)), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&over, &event);
    };
    turn(caption());
    turn(formats());
    EXPECT_EQ(job().shortCaption(), u"Smith v. Jones and others"_s);
    EXPECT_EQ(job().deliveryFormat(), DeliveryFormatAll);
    enter(formats());
    turn(formats());
    EXPECT_EQ(job().deliveryFormat(), DeliveryFormatASCII) << "with the keyboard it is meant";
}

TEST_F(SubmitWindowForm, CaptionsEnteredBeforeAreOffered)
{
    enter(*caption().lineEdit());
    QTest::keyClicks(caption().lineEdit(), u"Doe v. Roe"_s);
    EXPECT_EQ(job().shortCaption(), u"Doe v. Roe"_s);
    EXPECT_EQ(caption().count(), 0);
    QTest::keyClick(caption().lineEdit(), Qt::Key_Return);
    ASSERT_EQ(caption().count(), 1);
    EXPECT_EQ(caption().currentText(), u"Doe v. Roe"_s);
    caption().lineEdit()->selectAll();
    QTest::keyClicks(caption().lineEdit(), u"doe"_s);
    EXPECT_EQ(caption().currentText(), u"doe"_s) << "nothing is filled in unasked";
    EXPECT_EQ(caption().completer()->completionCount(), 1);
    EXPECT_EQ(caption().completer()->currentCompletion(), u"Doe v. Roe"_s);
    caption().completer()->popup()->hide();
    QTest::keyClick(caption().lineEdit(), Qt::Key_Return);
    EXPECT_EQ(job().shortCaption(), u"doe"_s);
    caption().setCurrentIndex(0);
    Q_EMIT caption().textActivated(caption().currentText());
    EXPECT_EQ(job().shortCaption(), u"Doe v. Roe"_s);
}

} // namespace
