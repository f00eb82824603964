#include "SubmitTest.h"

#include "settings/SettingsKey.h"
#include "settings/ShortCaptionCache.h"
#include "ui/submit/ChangeRelay.h"
#include "ui/submit/RateTexts.h"
#include "ui/transformers/ValueTransformers.h"

#include <QSignalSpy>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

class SubmitSubmission : public SubmitTest
{
protected:
    SubmitSubmission() { controller.showWindow(); }

    [[nodiscard]] QStringList cachedCaptions()
    {
        return ShortCaptionCache::unarchived(defaults().value(SettingsKey::ShortCaptionCache));
    }
};

TEST_F(SubmitSubmission, AJobNeedsATranscriptAndARecordingAndNothingElse)
{
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
    EXPECT_EQ(controller.missingText(), u"To submit, choose a transcript and add a recording."_s);
    controller.addMediaFiles({recording(u"a.mov"_s)});
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
    EXPECT_EQ(controller.missingText(), u"To submit, choose a transcript."_s);
    controller.submitButton();
    controller.submitAndNewButton();
    EXPECT_TRUE(application.submitted.isEmpty());
    job().setTranscriptFile(u"/gone/Doe.ptx"_s);
    job().setDepositionDate({});
    controller.refreshCanSubmitJob();
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
    EXPECT_EQ(controller.missingText(), QString());
}

TEST_F(SubmitSubmission, SubmittingRefreshesFirst)
{
    job().setTranscriptFile(transcript());
    job().addMediaFilesObject(MediaFile::mediaFileWithPath(recording(u"a.mov"_s)));
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
    controller.submitButton();
    EXPECT_EQ(application.submitted.size(), 1);
    job().setMediaFiles({});
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
    controller.submitButton();
    EXPECT_EQ(application.submitted.size(), 1);
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
}

TEST_F(SubmitSubmission, RecordingsAreSubmittedInTheOrderOfTheirNamesWhateverTheirLetterCase)
{
    controller.addTranscriptFile(transcript());
    controller.addMediaFiles({recording(u"a.mov"_s), recording(u"C.mov"_s), recording(u"B.mov"_s),
                              recording(u"first/b.mov"_s), recording(u"d.mov"_s)});
    EXPECT_EQ(namesOfRecordings(), QStringList({u"d.mov"_s, u"b.mov"_s, u"B.mov"_s, u"C.mov"_s, u"a.mov"_s}));
    controller.submitButton();
    EXPECT_EQ(namesOfRecordings(), QStringList({u"a.mov"_s, u"b.mov"_s, u"B.mov"_s, u"C.mov"_s, u"d.mov"_s}))
        << "equal names stay in the order that they had";
    ASSERT_EQ(application.submitted.size(), 1);
    EXPECT_EQ(application.submitted.first().job, controller.job());
    EXPECT_FALSE(application.submitted.first().andNew);
    controller.submitAndNewButton();
    ASSERT_EQ(application.submitted.size(), 2);
    EXPECT_TRUE(application.submitted.last().andNew);
}

TEST_F(SubmitSubmission, CancellingClosesTheWindowAndKeepsTheJob)
{
    QSignalSpy closed(&controller, &WindowController::closeRequested);
    controller.setDeponentFirstName(u"Jane"_s);
    const auto before = controller.job();
    controller.cancelButton();
    EXPECT_EQ(closed.count(), 1);
    controller.showWindow();
    EXPECT_EQ(controller.job(), before);
    EXPECT_EQ(controller.deponentFirstName(), u"Jane"_s);
}

TEST_F(SubmitSubmission, ACaptionIsRememberedOnce)
{
    defaults().setValue(SettingsKey::ShortCaptionCache, ShortCaptionCache::archived({u"Old v. New"_s}));
    QSignalSpy changed(&controller, &SubmitJobWindowController::shortCaptionsChanged);
    controller.newShortCaptionEntered(u"Doe v. Roe"_s);
    EXPECT_EQ(cachedCaptions(), QStringList({u"Old v. New"_s, u"Doe v. Roe"_s}));
    EXPECT_EQ(controller.shortCaptions(), cachedCaptions());
    EXPECT_EQ(job().shortCaption(), u"Doe v. Roe"_s);
    controller.newShortCaptionEntered(u"Doe v. Roe"_s);
    controller.newShortCaptionEntered(u"Old v. New"_s);
    EXPECT_EQ(cachedCaptions().size(), 2);
    EXPECT_EQ(changed.count(), 1);
    controller.newShortCaptionEntered(u"doe v. roe"_s);
    EXPECT_EQ(cachedCaptions().size(), 3) << "letter case matters";
}

TEST_F(SubmitSubmission, AnEmptyCaptionIsSetButNotRemembered)
{
    controller.newShortCaptionEntered(u"Doe v. Roe"_s);
    controller.newShortCaptionEntered({});
    EXPECT_EQ(job().shortCaption(), QString());
    EXPECT_EQ(cachedCaptions(), QStringList{u"Doe v. Roe"_s});
}

TEST_F(SubmitSubmission, ACaptionThatIsBeingTypedIsTheJobsButNotRemembered)
{
    controller.setShortCaption(u"Do"_s);
    EXPECT_EQ(job().shortCaption(), u"Do"_s);
    EXPECT_EQ(cachedCaptions(), QStringList());
}

TEST_F(SubmitSubmission, EnteringACaptionRefreshes)
{
    job().setTranscriptFile(transcript());
    job().addMediaFilesObject(MediaFile::mediaFileWithPath(recording(u"a.mov"_s)));
    controller.newShortCaptionEntered(u"Doe v. Roe"_s);
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
}

TEST_F(SubmitSubmission, TheCustomFormatShowsItsHintWhichOpensTheServicesPage)
{
    controller.setDeliveryFormat(DeliveryFormatCustom);
    EXPECT_TRUE(controller.isCustomFormatSelected());
    controller.openCustomizeFormatPage();
    EXPECT_EQ(application.opened, QList<QUrl>{QUrl(u"https://127.0.0.1:1/saltine/setup_custom_options.php"_s)});
    controller.setDeliveryFormat(DeliveryFormatASCII);
    EXPECT_FALSE(controller.isCustomFormatSelected());
    job().setDeliveryFormat(DeliveryFormatCustom);
    EXPECT_FALSE(controller.isCustomFormatSelected()) << "until the choice is told";
    controller.deliveryFormatChanged();
    EXPECT_TRUE(controller.isCustomFormatSelected());
}

TEST_F(SubmitSubmission, EveryFormatIsOfferedInTheOrderOfItsNumber)
{
    QStringList titles;
    for (const auto& item : controller.deliveryFormats()) {
        EXPECT_EQ(item.deliveryFormat, titles.size());
        EXPECT_EQ(item.isSelectable, item.deliveryFormat != DeliveryFormatLOG);
        titles << item.title;
    }
    EXPECT_EQ(titles, QStringList({u"All formats"_s, u"ASCII"_s, u"Ostrova XML"_s, u"RealLegal XML"_s, u"PTF/VID"_s,
                                   u"MDB"_s, u"CMS"_s, u"DepoSmart XML"_s, u"Flash CS3 Caption XML"_s,
                                   u"LOG (not offered to you)"_s, u"Custom"_s}));
    controller.processLogAvailabilityResponse(u"yes"_s);
    EXPECT_EQ(controller.deliveryFormats().at(DeliveryFormatLOG).title, u"LOG"_s);
}

TEST_F(SubmitSubmission, TheLevelFollowsTheJobWhenRushOrTheInterpreterMovesIt)
{
    controller.setSelectedLevelTag(ProcessingLevelMan72);
    EXPECT_EQ(job().processingLevel(), ProcessingLevelMan72);
    QSignalSpy changed(&controller, &SubmitJobWindowController::jobValuesChanged);
    controller.setRush(true);
    EXPECT_GT(changed.count(), 0);
    EXPECT_EQ(controller.selectedLevelTag(), ProcessingLevelAutoSync);
    controller.setViaInterpreter(true);
    EXPECT_EQ(controller.selectedLevelTag(), ProcessingLevelMan24);
    controller.setSelectedLevelTag(ProcessingLevelMan48);
    EXPECT_EQ(controller.selectedLevelTag(), ProcessingLevelMan48) << "a row that rush has not may still be chosen";
    EXPECT_TRUE(controller.rush());
    controller.setRush(true);
    EXPECT_EQ(controller.selectedLevelTag(), ProcessingLevelMan48) << "nothing was switched";
    controller.setViaInterpreter(false);
    job().setProcessingLevel(ProcessingLevelUnattended);
    EXPECT_EQ(controller.selectedLevelTag(), ProcessingLevelUnattended);
}

TEST_F(SubmitSubmission, RushPricesStandBesideTheLevelsThatHaveThem)
{
    controller.processGetRates2Response(SubmitTexts::rates);
    controller.setRush(true);
    EXPECT_EQ(levelValue(ProcessingLevelAutoSync), u"45.00 per hour"_s);
    EXPECT_EQ(levelValue(ProcessingLevelMan24), u"142.50 per hour"_s);
    EXPECT_EQ(levelValue(ProcessingLevelMan48), u"75.50 per hour"_s);
}

TEST_F(SubmitSubmission, TheTotalSaysWhatIsNotKnown)
{
    EXPECT_EQ(controller.totalText(), u"—"_s);
    const auto file = MediaFile::mediaFileWithPath(recording(u"a.mov"_s));
    job().addMediaFilesObject(file);
    EXPECT_EQ(controller.totalText(), u"— (price not known)"_s);
    job().setAutoSyncRate(30);
    EXPECT_EQ(controller.totalText(), u"— (length of the recordings not known)"_s);
    file->setSourceDuration(7200.0F);
    EXPECT_EQ(controller.totalText(), u"60.00 for 2:00:00 of recordings"_s);
    controller.setSelectedLevelTag(ProcessingLevelMan48);
    EXPECT_EQ(controller.totalText(), u"— (price not known)"_s);
}

TEST_F(SubmitSubmission, TextsFollowAJobThatChangesOnAnotherThread)
{
    QSignalSpy changed(&controller, &SubmitJobWindowController::jobValuesChanged);
    std::thread([&] { job().setDeponentLastName(u"Roe"_s); }).join();
    ASSERT_TRUE(Waiting::until([&] { return changed.count() > 0; }));
    EXPECT_EQ(controller.deponentLastName(), u"Roe"_s);
}

TEST_F(SubmitSubmission, ADateIsNoonOfItsDayAndMayBeNone)
{
    EXPECT_EQ(controller.depositionDate(), QDate::currentDate());
    controller.setDepositionDate(QDate(2025, 2, 3));
    EXPECT_EQ(job().depositionDate(), QDateTime(QDate(2025, 2, 3), QTime(12, 0)));
    job().setDepositionDate(QDateTime(QDate(2025, 2, 3), QTime(9, 30)));
    controller.setDepositionDate(QDate(2025, 2, 3));
    EXPECT_EQ(job().depositionDate().time(), QTime(9, 30)) << "the same day is no change";
    controller.setDepositionDate({});
    EXPECT_FALSE(job().depositionDate().isValid());
    EXPECT_FALSE(controller.depositionDate().isValid());
}

TEST_F(SubmitSubmission, WithoutAJobEverythingIsEmptyAndNothingIsSet)
{
    controller.setJob(nullptr);
    controller.refreshCanSubmitJob();
    controller.setDeponentFirstName(u"Jane"_s);
    controller.setDeponentLastName(u"Doe"_s);
    controller.setShortCaption(u"Doe"_s);
    controller.setDepositionDate(QDate(2025, 2, 3));
    controller.setDeliveryFormat(DeliveryFormatMDB);
    controller.setSelectedLevelTag(ProcessingLevelMan24);
    controller.setRush(true);
    controller.setViaInterpreter(true);
    controller.addTranscriptFile(transcript());
    controller.removeMediaFiles({});
    controller.submitButton();
    EXPECT_EQ(controller.job(), nullptr);
    EXPECT_EQ(controller.deponentFirstName() + controller.deponentLastName() + controller.shortCaption(), QString());
    EXPECT_EQ(controller.deliveryFormat(), DeliveryFormatAll);
    EXPECT_EQ(controller.selectedLevelTag(), ProcessingLevelAutoSync);
    EXPECT_FALSE(controller.rush() || controller.viaInterpreter());
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
    EXPECT_TRUE(application.submitted.isEmpty());
    controller.addMediaFiles({recording(u"a.mov"_s)});
    EXPECT_EQ(namesOfRecordings(), QStringList{u"a.mov"_s}) << "files dropped before the window opened have a job";
}

TEST_F(SubmitSubmission, TheTransformersOfItsBindingsAreRegistered)
{
    EXPECT_NE(ValueTransformers::named(u"ProcessingLevelToTagTransformer"_s), nullptr);
    EXPECT_NE(ValueTransformers::named(u"SecondsNumberToHHMMSSStringTransformer"_s), nullptr);
}

TEST_F(SubmitSubmission, PricesThatAreNotKnownAreADash)
{
    EXPECT_EQ(RateTexts::hourly(QVariant()), u"—"_s);
    EXPECT_EQ(RateTexts::hourly(0), u"—"_s);
    EXPECT_EQ(RateTexts::hourly(u"none"_s), u"—"_s);
    EXPECT_EQ(RateTexts::hourly(u"12.345 dollars"_s), u"12.35 per hour"_s);
    EXPECT_EQ(RateTexts::multiplier(QVariant()), QString());
    EXPECT_EQ(RateTexts::multiplier(2), u"× 2"_s);
    EXPECT_EQ(RateTexts::multiplier(u"1.25"_s), u"× 1.25"_s);
    EXPECT_EQ(RateTexts::duration(std::nullopt), u"—"_s);
    EXPECT_FALSE(RateTexts::rateInEffect(job(), 9).isValid());
}

TEST_F(SubmitSubmission, ManyChangesOnAnotherThreadAreToldOfTogetherAndNoneAfterTheRelaysEnd)
{
    const auto other = Job::job();
    int calls = 0;
    auto relay = std::make_unique<ChangeRelay>([&] { ++calls; });
    relay->follow<MediaObject>(*other, &MediaObject::rowChanged);
    other->setName(u"a"_s);
    EXPECT_EQ(calls, 1) << "on the main thread inside the change";
    std::thread([&] {
        for (int i = 0; i < 100; ++i)
            other->setName(u"b"_s);
    }).join();
    ASSERT_TRUE(Waiting::until([&] { return calls == 2; }));
    std::thread([&] { other->setName(u"c"_s); }).join();
    relay.reset();
    other->setName(u"d"_s);
    Waiting::turnMainLoopFor(std::chrono::milliseconds(20));
    EXPECT_EQ(calls, 2);
}

} // namespace
