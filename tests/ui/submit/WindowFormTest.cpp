#include "WindowTest.h"

#include "demo-service/Service.h"
#include "ui/controls/BusyIndicator.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

using namespace Qt::StringLiterals;

namespace {

class SubmitWindowForm : public SubmitWindowTest
{
protected:
    QRadioButton& level(int tag) { return find<QRadioButton>(u"processingLevel%1"_s.arg(tag)); }
    QString price(int tag) { return find<QLabel>(u"processingLevelValue%1"_s.arg(tag)).text(); }
    QCheckBox& rush() { return find<QCheckBox>(u"rushCheckBox"_s); }
    QCheckBox& interpreter() { return find<QCheckBox>(u"viaInterpreterCheckBox"_s); }
    QComboBox& formats() { return find<QComboBox>(u"deliveryFormatComboBox"_s); }
    QComboBox& caption() { return find<QComboBox>(u"shortCaptionField"_s); }
    QDateEdit& date() { return find<QDateEdit>(u"depositionDateEdit"_s); }
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

TEST_F(SubmitWindowForm, TheDateFollowsTheJobAndSaysWhenThereIsNone)
{
    EXPECT_EQ(date().date(), QDate::currentDate());
    date().setDate(QDate(2026, 3, 4));
    EXPECT_EQ(job().depositionDate(), QDateTime(QDate(2026, 3, 4), QTime(12, 0)));
    EXPECT_EQ(date().text(), QLocale().toString(QDate(2026, 3, 4), u"d MMMM yyyy"_s));
    job().setDepositionDate({});
    EXPECT_EQ(date().text(), u"No date"_s);
    EXPECT_FALSE(job().depositionDate().isValid()) << "showing it sets nothing";
    date().setDate(date().minimumDate().addDays(1));
    date().setDate(date().minimumDate());
    EXPECT_FALSE(job().depositionDate().isValid());
}

TEST_F(SubmitWindowForm, WithoutADateTheCalendarOpensAtToday)
{
    job().setDepositionDate({});
    QCalendarWidget* const calendar = date().calendarWidget();
    calendar->setCurrentPage(1900, 1);
    QShowEvent shows;
    QCoreApplication::sendEvent(calendar, &shows);
    EXPECT_EQ(calendar->yearShown(), QDate::currentDate().year());
    EXPECT_EQ(calendar->monthShown(), QDate::currentDate().month());
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
    caption().setCurrentIndex(0);
    Q_EMIT caption().textActivated(caption().currentText());
    EXPECT_EQ(job().shortCaption(), u"Doe v. Roe"_s);
}

class SubmitWindowSubmitting : public SubmitWindowForm
{};

TEST_F(SubmitWindowSubmitting, TheButtonsWaitForATranscriptAndARecording)
{
    auto& submit = find<QAbstractButton>(u"submitButton"_s);
    auto& andNew = find<QAbstractButton>(u"submitAndNewButton"_s);
    auto& missing = find<QLabel>(u"missingLabel"_s);
    EXPECT_FALSE(submit.isEnabled() || andNew.isEnabled());
    EXPECT_EQ(missing.text(), u"To submit, choose a transcript and add a recording."_s);
    controller.addTranscriptFile(transcript());
    EXPECT_FALSE(submit.isEnabled() || andNew.isEnabled());
    EXPECT_EQ(missing.text(), u"To submit, add a recording."_s);
    fill();
    EXPECT_TRUE(submit.isEnabled() && andNew.isEnabled());
    EXPECT_EQ(missing.text(), QString());
    QTest::mouseClick(&submit, Qt::LeftButton);
    QTest::mouseClick(&andNew, Qt::LeftButton);
    ASSERT_EQ(application.submitted.size(), 2);
    EXPECT_FALSE(application.submitted.first().andNew);
    EXPECT_TRUE(application.submitted.last().andNew);
}

TEST_F(SubmitWindowSubmitting, ReturnAloneNeverSubmitsAndControlReturnDoes)
{
    fill();
    for (const QString& name : {u"trascriptTextField"_s, u"deponentFirstNameField"_s, u"deponentLastNameField"_s,
                                u"depositionDateEdit"_s, u"shortCaptionField"_s, u"deliveryFormatComboBox"_s,
                                u"mediaFilesTable"_s, u"processingLevel0"_s, u"rushCheckBox"_s}) {
        enter(find(name));
        QTest::keyClick(&find(name), Qt::Key_Return);
        EXPECT_TRUE(application.submitted.isEmpty()) << name.toStdString();
    }
    qsizetype submissions = 0;
    for (const QString& name : {u"trascriptTextField"_s, u"shortCaptionField"_s, u"mediaFilesTable"_s}) {
        enter(find(name));
        QTest::keyClick(&find(name), Qt::Key_Return, Qt::ControlModifier);
        EXPECT_EQ(application.submitted.size(), ++submissions) << name.toStdString();
    }
}

TEST_F(SubmitWindowSubmitting, ControlReturnDoesNothingWhileSomethingIsMissing)
{
    enter(find(u"deponentFirstNameField"_s));
    QTest::keyClick(&find(u"deponentFirstNameField"_s), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(application.submitted.isEmpty());
}

TEST_F(SubmitWindowSubmitting, ACaptionThatIsStillBeingTypedIsSubmittedAndRemembered)
{
    fill();
    enter(*caption().lineEdit());
    QTest::keyClicks(caption().lineEdit(), u"Doe v. Roe"_s);
    QTest::keyClick(caption().lineEdit(), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(application.submitted.size(), 1);
    EXPECT_EQ(application.submitted.first().job->shortCaption(), u"Doe v. Roe"_s);
    EXPECT_EQ(controller.shortCaptions(), QStringList{u"Doe v. Roe"_s});
}

TEST_F(SubmitWindowSubmitting, EscapeAndCancelCloseAndWhatWasEnteredIsThereAgain)
{
    fill();
    QTest::keyClicks(&find(u"deponentFirstNameField"_s), u" X."_s);
    QTest::keyClick(&find(u"deponentFirstNameField"_s), Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    controller.showWindow();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(find<QLineEdit>(u"deponentFirstNameField"_s).text(), u"Jane Q. X."_s);
    EXPECT_EQ(find<QLineEdit>(u"trascriptTextField"_s).text(), path(u"Doe.txt"_s));
    EXPECT_TRUE(find<QAbstractButton>(u"submitButton"_s).isEnabled());
    QTest::mouseClick(&find(u"cancelButton"_s), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(application.submitted.isEmpty());
}

TEST_F(SubmitWindowSubmitting, ASubmissionThatIsRefusedKeepsTheForm)
{
    fill();
    QTest::mouseClick(&find(u"submitButton"_s), Qt::LeftButton); // the application leaves the window open
    EXPECT_EQ(find<QLineEdit>(u"deponentLastNameField"_s).text(), u"Doe"_s);
    EXPECT_EQ(namesOfRecordings(), QStringList{u"a.mov"_s});
}

TEST_F(SubmitWindowSubmitting, TheNextJobsFormIsEmptyButForTheCaption)
{
    fill();
    controller.newShortCaptionEntered(u"Doe v. Roe"_s);
    rush().click();
    const auto next = Job::job();
    next->setShortCaption(controller.shortCaption());
    controller.setJob(next);
    controller.showWindow();
    EXPECT_EQ(find<QLineEdit>(u"trascriptTextField"_s).text(), QString());
    EXPECT_EQ(find<QLineEdit>(u"deponentLastNameField"_s).text(), QString());
    EXPECT_EQ(caption().currentText(), u"Doe v. Roe"_s);
    EXPECT_FALSE(rush().isChecked());
    EXPECT_EQ(find<QLabel>(u"totalLabel"_s).text(), u"—"_s);
    EXPECT_FALSE(find<QAbstractButton>(u"submitButton"_s).isEnabled());
    EXPECT_EQ(next->mediaFiles().size(), 0);
}

TEST_F(SubmitWindowSubmitting, AFailedRequestForPricesKeepsWhatIsTyped)
{
    QTest::keyClicks(&find(u"deponentFirstNameField"_s), u"Jane"_s);
    application.startCommands(); // nobody answers there
    ASSERT_TRUE(Waiting::until([&] { return application.presented.size() == 2; }));
    EXPECT_EQ(find<QLineEdit>(u"deponentFirstNameField"_s).text(), u"Jane"_s);
    EXPECT_FALSE(find<BusyIndicator>(u"ratesBusyIndicator"_s).isRunning());
    EXPECT_EQ(price(ProcessingLevelMan24), u"—"_s);
    EXPECT_NE(window.findChild<QRadioButton*>(u"processingLevel4"_s), nullptr);
    EXPECT_TRUE(window.isVisible());
}

TEST_F(SubmitWindowSubmitting, EveryControlHasANameForThoseWhoDoNotSeeIt)
{
    for (const QWidget* const widget : window.findChildren<QWidget*>()) {
        if (widget->focusPolicy() == Qt::NoFocus || widget->objectName().startsWith(u"qt_") ||
            widget->window() != &window)
            continue;
        const auto* const button = qobject_cast<const QAbstractButton*>(widget);
        EXPECT_FALSE(widget->accessibleName().isEmpty() && (button == nullptr || button->text().isEmpty()) &&
                     widget->parentWidget()->accessibleName().isEmpty())
            << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    }
}

TEST_F(SubmitWindowSubmitting, TheTabKeyGoesThroughTheFormFromTopToBottom)
{
    fill();
    controller.setDeliveryFormat(DeliveryFormatCustom);
    const QStringList expected{u"trascriptTextField"_s,     u"browseTransciptButton"_s,
                               u"mediaFilesTable"_s,        u"addMediaFilesButton"_s,
                               u"deponentFirstNameField"_s, u"deponentLastNameField"_s,
                               u"depositionDateEdit"_s,     u"shortCaptionField"_s,
                               u"deliveryFormatComboBox"_s, u"customizeFormatTextField"_s,
                               u"processingLevel0"_s,       u"rushCheckBox"_s,
                               u"viaInterpreterCheckBox"_s, u"submitButton"_s,
                               u"submitAndNewButton"_s,     u"cancelButton"_s};
    enter(find(expected.first()));
    QStringList visited{expected.first()};
    for (int key = 0; key < 40 && visited.last() != expected.last(); ++key) {
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        // The date's day, month and year are stops within one control.
        if (const QString name = window.focusWidget()->objectName(); name != visited.last())
            visited << name;
    }
    EXPECT_EQ(visited.join(u'\n').toStdString(), expected.join(u'\n').toStdString());
}

TEST_F(SubmitWindowSubmitting, TheWindowFitsASmallScreen)
{
    fill();
    controller.setDeliveryFormat(DeliveryFormatCustom);
    controller.addMediaFiles({path(u"gone.mov"_s)});
    EXPECT_LE(window.minimumSizeHint().height(), 660);
    EXPECT_LE(window.minimumSizeHint().width(), 1200);
}

// Against the stand-in service.

struct ServiceHolder
{
    DemoService::Service service;

    [[nodiscard]] ServiceHosts hosts() const
    {
        return std::get<ServiceHosts>(ServiceHosts::fromTexts(QString::fromStdString(service.secureHost()),
                                                              QString::fromStdString(service.fileHost())));
    }
};

class SubmitWindowWithService : protected ServiceHolder, public SubmitWindowTest
{
protected:
    SubmitWindowWithService() : SubmitWindowTest(ServiceHolder::hosts()) {}
};

TEST_F(SubmitWindowWithService, ShowsTheServicesPricesAndFormats)
{
    application.startCommands();
    ASSERT_TRUE(Waiting::until(
        [&] { return !controller.isGettingRatesInProgress() && controller.isLOGDeliveryFormatAvailable(); }));
    EXPECT_EQ(find<QLabel>(u"processingLevelValue1"_s).text(), u"95.00 per hour"_s);
    EXPECT_TRUE(service.refusals().empty());
    controller.showWindow();
    ASSERT_TRUE(
        Waiting::until([&] { return service.count("get_rates2.php") == 2 && service.count("is_fti.php") == 2; }));
    EXPECT_TRUE(Waiting::until([&] { return !controller.isGettingRatesInProgress(); }));
}

TEST_F(SubmitWindowWithService, AReplyThatIsNoJsonLeavesDashesAndIsNotReported)
{
    service.addOverride("get_rates2.php", {.reply = "<html>busy</html>"});
    application.startCommands();
    ASSERT_TRUE(Waiting::until([&] { return !controller.isGettingRatesInProgress(); }));
    EXPECT_EQ(find<QLabel>(u"processingLevelValue1"_s).text(), u"—"_s);
    EXPECT_TRUE(application.presented.isEmpty());
    EXPECT_EQ(window.findChild<QRadioButton*>(u"processingLevel4"_s), nullptr);
}

TEST_F(SubmitWindowWithService, AnswersThatComeLateFindTheNextJob)
{
    service.addOverride("get_rates2.php", {.hang = true, .times = 1});
    application.startCommands();
    ASSERT_TRUE(Waiting::until([&] { return service.hanging() == 1; }));
    const auto first = controller.job();
    controller.setJob(Job::job());
    service.releaseHangs();
    ASSERT_TRUE(Waiting::until([&] { return !controller.isGettingRatesInProgress(); }));
    EXPECT_EQ(job().man24ProdID(), QVariant(24));
    EXPECT_FALSE(first->man24ProdID().isValid());
}

} // namespace
