#include "SubmitTest.h"

#include "support/RecordedLog.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

class SubmitReplies : public SubmitTest
{
protected:
    [[nodiscard]] QList<int> tags() const
    {
        QList<int> found;
        for (const auto& row : controller.levelRows())
            found << row.tag;
        return found;
    }
    [[nodiscard]] qsizetype logLines(const QString& level, const QString& line) const
    {
        qsizetype count = 0;
        for (const QString& logged : log.text().split(u'\n')) {
            if (logged.endsWith(line) && logged.contains(level))
                ++count;
        }
        return count;
    }

    RecordedLog log;
};

TEST_F(SubmitReplies, EachOpeningAsksForBothAgain)
{
    controller.showWindow();
    EXPECT_EQ(takeCommands(), QStringList({u"is_fti.php"_s, u"get_rates2.php"_s}));
    controller.showWindow();
    EXPECT_EQ(takeCommands(), QStringList({u"is_fti.php"_s, u"get_rates2.php"_s}));
}

TEST_F(SubmitReplies, OpeningMakesAJobWhereThereIsNoneAndShowsTheWindow)
{
    QSignalSpy shown(&controller, &WindowController::showRequested);
    EXPECT_EQ(controller.job(), nullptr);
    controller.showWindow();
    ASSERT_NE(controller.job(), nullptr);
    EXPECT_EQ(shown.count(), 1);
    const auto first = controller.job();
    controller.showWindow();
    EXPECT_EQ(controller.job(), first);
    EXPECT_EQ(shown.count(), 2);
}

TEST_F(SubmitReplies, OpeningHidesTheCustomFormatsHintAndRefreshes)
{
    controller.showWindow();
    controller.setDeliveryFormat(DeliveryFormatCustom);
    EXPECT_TRUE(controller.isCustomFormatSelected());
    job().setTranscriptFile(transcript());
    job().addMediaFilesObject(MediaFile::mediaFileWithPath(recording(u"a.mov"_s)));
    EXPECT_FALSE(controller.isJobCouldBeSubmitted());
    controller.showWindow();
    EXPECT_FALSE(controller.isCustomFormatSelected());
    EXPECT_EQ(controller.deliveryFormat(), DeliveryFormatCustom);
    EXPECT_TRUE(controller.isJobCouldBeSubmitted());
}

TEST_F(SubmitReplies, PricesAreAwaitedFromTheOpeningToTheReply)
{
    EXPECT_FALSE(controller.isGettingRatesInProgress());
    controller.showWindow();
    EXPECT_TRUE(controller.isGettingRatesInProgress());
    EXPECT_EQ(controller.ratesStatusText(), u"Asking for your prices…"_s);
    controller.processLogAvailabilityResponse(u"yes"_s);
    EXPECT_TRUE(controller.isGettingRatesInProgress());
    controller.processGetRates2Response(SubmitTexts::rates);
    EXPECT_FALSE(controller.isGettingRatesInProgress());
    EXPECT_EQ(controller.ratesStatusText(), QString());
    EXPECT_EQ(
        logLines(u"info"_s, u"GetRatesProductsCodes command response = "_s + SubmitTexts::rates.section(u'\n', 0, 0)),
        1);
}

TEST_F(SubmitReplies, TheRatesReplySetsPricesAndProducts)
{
    controller.showWindow();
    controller.processGetRates2Response(SubmitTexts::rates);
    EXPECT_EQ(job().man24ProdID(), QVariant(24));
    EXPECT_EQ(job().man72Rate(), QVariant(u"60.00"_s));
    EXPECT_EQ(levelValue(ProcessingLevelAutoSync), u"30.00 per hour"_s);
    EXPECT_EQ(levelValue(ProcessingLevelMan24), u"95.00 per hour"_s);
    EXPECT_EQ(levelValue(ProcessingLevelMan48), u"75.50 per hour"_s);
    EXPECT_EQ(levelValue(ProcessingLevelMan72), u"60.00 per hour"_s);
    EXPECT_EQ(levelValue(ProcessingLevelUnattended), u"45.00 per hour"_s);
    EXPECT_EQ(controller.rushMultiplierText(), u"× 1.5"_s);
}

TEST_F(SubmitReplies, AReplyThatIsNoJsonObjectSetsNothingAndIsNotReported)
{
    for (const QString& reply : {u"Error <b>"_s, u"[1]"_s, u""_s, u"\"text\""_s}) {
        controller.setJob(nullptr);
        controller.showWindow();
        job().setMan24Rate(1);
        job().setUnattendedRate(5);
        controller.processGetRates2Response(reply);
        EXPECT_EQ(job().man24Rate(), QVariant(1));
        EXPECT_FALSE(controller.isGettingRatesInProgress());
        EXPECT_EQ(tags(), QList<int>({0, 1, 2, 3, 4}));
    }
    EXPECT_TRUE(application.presented.isEmpty());
    EXPECT_EQ(controller.ratesStatusText(), QString());
}

TEST_F(SubmitReplies, AReplyThatIsNoJsonStillTakesUnattendedFromAJobWithoutAPriceForIt)
{
    controller.showWindow();
    controller.processGetRates2Response(u"no prices today"_s);
    EXPECT_EQ(tags(), QList<int>({0, 1, 2, 3}));
}

TEST_F(SubmitReplies, UnattendedWithoutAPriceLosesItsRowForTheWindowsLife)
{
    controller.showWindow();
    EXPECT_EQ(tags(), QList<int>({0, 1, 2, 3, 4}));
    QSignalSpy removed(&controller, &SubmitJobWindowController::levelRowsChanged);
    controller.processGetRates2Response(SubmitTexts::ratesWithoutUnattended);
    EXPECT_EQ(tags(), QList<int>({0, 1, 2, 3}));
    EXPECT_EQ(removed.count(), 1);
    controller.showWindow();
    controller.processGetRates2Response(SubmitTexts::ratesWithoutUnattended);
    EXPECT_EQ(removed.count(), 1) << "no row is there to remove";
    controller.setJob(nullptr);
    controller.showWindow();
    controller.processGetRates2Response(SubmitTexts::rates);
    EXPECT_EQ(tags(), QList<int>({0, 1, 2, 3})) << "it does not come back";
}

TEST_F(SubmitReplies, ANegativePriceOrAMissingOneTakesUnattendedAwayToo)
{
    for (const QString& unattended : {u"{\"Rate\":-1}"_s, u"{\"Rate\":null}"_s, u"{}"_s, u"{\"Rate\":\"none\"}"_s}) {
        SubmitJobWindowController other(application);
        other.showWindow();
        other.processGetRates2Response(u"{\"Unattended\":%1}"_s.arg(unattended));
        EXPECT_EQ(other.levelRows().size(), 4) << unattended.toStdString();
    }
    SubmitJobWindowController other(application);
    other.showWindow();
    other.processGetRates2Response(u"{\"Unattended\":{\"Rate\":\"0.5\"}}"_s);
    EXPECT_EQ(other.levelRows().size(), 5);
}

TEST_F(SubmitReplies, AJobThatHasTheLevelThatWasTakenAwayKeepsItAndTheUserIsAskedToChooseAnother)
{
    controller.showWindow();
    controller.setSelectedLevelTag(ProcessingLevelUnattended);
    controller.processGetRates2Response(SubmitTexts::ratesWithoutUnattended);
    EXPECT_EQ(job().processingLevel(), ProcessingLevelUnattended);
    EXPECT_EQ(controller.ratesStatusText(), u"Unattended is not offered to you. Please choose another level."_s);
    controller.setSelectedLevelTag(ProcessingLevelMan48);
    EXPECT_EQ(controller.ratesStatusText(), QString());
}

TEST_F(SubmitReplies, TheLogFormatMayBeChosenOnceTheServiceSaysYes)
{
    controller.showWindow();
    EXPECT_FALSE(controller.isLOGDeliveryFormatAvailable());
    EXPECT_FALSE(controller.deliveryFormats().at(DeliveryFormatLOG).isSelectable);
    controller.setDeliveryFormat(DeliveryFormatLOG);
    EXPECT_EQ(controller.deliveryFormat(), DeliveryFormatAll);
    controller.processLogAvailabilityResponse(u"oh yes\n"_s);
    EXPECT_EQ(logLines(u"info"_s, u"Log Availability command response = oh yes"_s), 1);
    EXPECT_TRUE(controller.isLOGDeliveryFormatAvailable());
    EXPECT_TRUE(controller.deliveryFormats().at(DeliveryFormatLOG).isSelectable);
    controller.setDeliveryFormat(DeliveryFormatLOG);
    EXPECT_EQ(controller.deliveryFormat(), DeliveryFormatLOG);
}

TEST_F(SubmitReplies, AJobWithTheLogFormatFallsBackToAllWhenTheServiceSaysNo)
{
    controller.showWindow();
    controller.processLogAvailabilityResponse(u"yes"_s);
    controller.setDeliveryFormat(DeliveryFormatLOG);
    controller.processLogAvailabilityResponse(u"YES"_s);
    EXPECT_FALSE(controller.isLOGDeliveryFormatAvailable());
    EXPECT_EQ(job().deliveryFormat(), DeliveryFormatAll);
    controller.setDeliveryFormat(DeliveryFormatMDB);
    controller.processLogAvailabilityResponse(u"no"_s);
    EXPECT_EQ(job().deliveryFormat(), DeliveryFormatMDB);
}

TEST_F(SubmitReplies, AFailedRatesRequestIsPresentedAndKeepsWhatWasTyped)
{
    controller.showWindow();
    controller.setDeponentLastName(u"Doe"_s);
    controller.setShortCaption(u"Doe v. Roe"_s);
    application.startCommands(); // nobody answers there
    ASSERT_TRUE(Waiting::until([&] { return application.presented.size() == 2; }));
    EXPECT_FALSE(controller.isGettingRatesInProgress());
    EXPECT_EQ(controller.ratesStatusText(),
              u"Your prices could not be asked for. Close this window and open it again to try once more."_s);
    for (const Error& error : application.presented) {
        EXPECT_EQ(error.domain, ErrorDomain::SyncBase);
        EXPECT_EQ(error.code, 1);
        EXPECT_TRUE(error.localizedDescription.startsWith(u"Submit job window: "_s));
    }
    EXPECT_EQ(tags(), QList<int>({0, 1, 2, 3, 4})) << "a failure takes no row away";
    EXPECT_EQ(controller.deponentLastName(), u"Doe"_s);
    EXPECT_EQ(controller.shortCaption(), u"Doe v. Roe"_s);
    EXPECT_EQ(log.count(u"curlCommandFailed, error = "_s), 2);
    EXPECT_TRUE(log.contains(u", data = "_s));
}

TEST_F(SubmitReplies, AFailedLogRequestLeavesThePricesAwaited)
{
    controller.showWindow();
    LogAvailabilityCommand command(application.serviceHosts(), u"demo"_s, u"x"_s, u"1"_s);
    controller.curlCommandFailed(command);
    EXPECT_TRUE(controller.isGettingRatesInProgress());
    EXPECT_EQ(application.presented.size(), 1);
    GetRates2Command rates(application.serviceHosts(), u"demo"_s, u"x"_s);
    controller.curlCommandFailed(rates);
    EXPECT_FALSE(controller.isGettingRatesInProgress());
}

TEST_F(SubmitReplies, AReplyIsHandledByTheCommandThatBringsIt)
{
    controller.showWindow();
    GetRates2Command rates(application.serviceHosts(), u"demo"_s, u"x"_s);
    rates.setData(SubmitTexts::rates.toUtf8());
    controller.curlCommandDone(rates);
    EXPECT_EQ(job().man24Rate(), QVariant(95));
    EXPECT_FALSE(controller.isLOGDeliveryFormatAvailable());
    LogAvailabilityCommand availability(application.serviceHosts(), u"demo"_s, u"x"_s, u"1"_s);
    availability.setData("yes");
    controller.curlCommandDone(availability);
    EXPECT_TRUE(controller.isLOGDeliveryFormatAvailable());
}

TEST_F(SubmitReplies, OnlyTheSystemsOwnErrorsAreNamedAfterTheWindow)
{
    EXPECT_EQ(controller.willPresentError({ErrorDomain::SyncBase, 7, u"100%@ lost"_s}),
              (Error{ErrorDomain::SyncBase, 7, u"Submit job window: 100%@ lost"_s}));
    const Error other{ErrorDomain::Platform, 2, u"No room"_s};
    EXPECT_EQ(controller.willPresentError(other), other);
}

TEST_F(SubmitReplies, RepliesThatComeWithoutAJobOrAfterTheWindowsEndDoNoHarm)
{
    controller.processGetRates2Response(SubmitTexts::ratesWithoutUnattended);
    controller.processLogAvailabilityResponse(u"no"_s);
    EXPECT_EQ(controller.job(), nullptr);
    EXPECT_EQ(tags().size(), 5);

    auto brief = std::make_unique<SubmitJobWindowController>(application);
    brief->showWindow();
    brief.reset();
    int commands = 0;
    while (const auto command = application.curlCommandProcessor().getCommandFromQueue()) {
        ++commands;
        EXPECT_EQ(command->observer(), nullptr);
    }
    EXPECT_EQ(commands, 2);
}

} // namespace
