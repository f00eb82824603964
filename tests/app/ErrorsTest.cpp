#include "AppTest.h"

#include "engine/JobModel.h"
#include "support/Waiting.h"
#include "ui/errors/SyncErrorList.h"

using testing::HasSubstr;

namespace {

class PresentedErrors : public AppTest
{
protected:
    const Error serviceError{ErrorDomain::SyncBase, 0, QStringLiteral("The service said no")};
};

} // namespace

TEST_F(PresentedErrors, ofTheServiceAreListedOnceAndSentWithTheLogAndShowNoAlert)
{
    makeLoggedIn().presentError(serviceError);
    ASSERT_EQ(app().syncErrorList().errorList().size(), 1);
    EXPECT_EQ(app().syncErrorList().errorList().first(), serviceError);
    EXPECT_TRUE(dialogs.warnings.isEmpty());
    EXPECT_THAT(logText().toStdString(), HasSubstr("Will show user error: The service said no"));
    ASSERT_TRUE(Waiting::until([&] { return !service.logs().empty(); }));
    EXPECT_EQ(service.logs().size(), 1U);
    EXPECT_EQ(app().syncErrorList().errorList().size(), 1);
}

TEST_F(PresentedErrors, ofTheServiceTurnIntoACancelledOne)
{
    makeLoggedIn();
    const Error shown = app().applicationWillPresentError(serviceError);
    EXPECT_NE(shown.domain, ErrorDomain::SyncBase);
    EXPECT_EQ(shown.code, 3072);
    EXPECT_TRUE(shown.localizedDescription.isEmpty());
}

TEST_F(PresentedErrors, ofThePlatformAreShownAndNotListed)
{
    const Error platformError{ErrorDomain::Platform, 13, QStringLiteral("No permission")};
    makeLoggedIn();
    EXPECT_EQ(app().applicationWillPresentError(platformError), platformError);
    app().presentError(platformError);
    ASSERT_EQ(dialogs.warnings.size(), 1);
    EXPECT_EQ(dialogs.warnings.first().second, QStringLiteral("No permission"));
    EXPECT_TRUE(app().syncErrorList().errorList().isEmpty());
}

TEST_F(PresentedErrors, aJobThatStopsWithoutAnErrorIsListedAndOneThatHadOneIsNotListedTwice)
{
    makeLoggedIn();
    const auto job = addUnfinishedJob();
    Q_EMIT app().jobModel().jobStopped(job, QStringLiteral("No audio could be made of a.wav"));
    const auto& list = app().syncErrorList();
    ASSERT_EQ(list.errorList().size(), 1);
    EXPECT_EQ(list.errorList().last().localizedDescription,
              QStringLiteral("a.txt cannot go on: No audio could be made of a.wav"));
    app().presentError({ErrorDomain::SyncBase, 0, QStringLiteral("refused")});
    Q_EMIT app().jobModel().jobStopped(job, QStringLiteral("refused"));
    EXPECT_EQ(list.errorList().size(), 2);
}

TEST_F(PresentedErrors, whatADeliveryLacksIsListedAsOneError)
{
    makeLoggedIn();
    const auto job = addUnfinishedJob();
    Q_EMIT app().jobModel().deliveryHadProblems(job, {QStringLiteral("a.cms came empty"), QStringLiteral("no list")});
    const auto& list = app().syncErrorList();
    ASSERT_EQ(list.errorList().size(), 1);
    EXPECT_EQ(list.errorList().last().domain, ErrorDomain::SyncBase);
    EXPECT_EQ(list.errorList().last().localizedDescription,
              QStringLiteral("a.txt was delivered, but: a.cms came empty; no list"));
}
