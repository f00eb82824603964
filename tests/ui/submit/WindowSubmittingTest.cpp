#include "WindowTest.h"

#include "demo-service/Service.h"
#include "ui/controls/BusyIndicator.h"

using namespace Qt::StringLiterals;

namespace {

class SubmitWindowSubmitting : public SubmitWindowTest
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

TEST_F(SubmitWindowSubmitting, ThePathThatIsBeingTypedIsEnteredBeforeTheSubmissionAndNotAfterIt)
{
    fill();
    auto& field = find<QLineEdit>(u"trascriptTextField"_s);
    const QString path = transcript(u"notes.doc"_s);
    enter(field);
    field.selectAll();
    QTest::keyClicks(&field, path);
    EXPECT_EQ(dialogs().warnings.size(), 1);
    QTest::keyClick(&field, Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(application.submitted.size(), 1);
    EXPECT_EQ(application.submitted.first().job->transcriptFile(), path);
    EXPECT_EQ(dialogs().warnings.size(), 2);
    EXPECT_EQ(window.focusWidget(), &field) << "a submission that is refused goes on where it was";
    window.close();
    EXPECT_EQ(dialogs().warnings.size(), 2);
}

TEST_F(SubmitWindowSubmitting, ANewJobBeginsWithItsTranscript)
{
    enter(find(u"deponentFirstNameField"_s));
    controller.setJob(Job::job());
    EXPECT_EQ(window.focusWidget(), &find(u"trascriptTextField"_s));
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
                               u"viaInterpreterCheckBox"_s, u"cancelButton"_s,
                               u"submitAndNewButton"_s,     u"submitButton"_s};
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
