#include "CommandsTest.h"

#include "commands/CheckStatusCommand.h"
#include "commands/GetInstructionsCommand.h"
#include "commands/GetRateForProductCodeCommand.h"
#include "commands/GetRates2Command.h"
#include "commands/GetRatesProductsCodesCommand.h"
#include "commands/LogAvailabilityCommand.h"
#include "commands/MiscStuffCommand.h"

using namespace Qt::StringLiterals;

class QueryTest : public CommandsTest
{
protected:
    // Both break a form field apart and hold a character outside ASCII.
    const QString user = u"an na&é"_s;
    const QString password = u"p&w=1/2%"_s;
};

TEST_F(QueryTest, AStatusPollOfAllMachinesHasNoMachineField)
{
    const auto poll = CheckStatusCommand::checkStatusCommandWithUser(hosts, user, password, u"47 11\n"_s, std::nullopt);
    EXPECT_EQ(bodyOf(*poll, "checkstatus.php"), "user=an na&é&pass=p&w=1/2%&contactID=47 11\n");
}

TEST_F(QueryTest, AStatusPollOfOneMachineEndsWithIt)
{
    const auto poll = CheckStatusCommand::checkStatusCommandWithUser(hosts, user, password, u"4711"_s, u"C02 X&Y"_s);
    EXPECT_EQ(bodyOf(*poll, "checkstatus.php"), "user=an na&é&pass=p&w=1/2%&contactID=4711&comp=C02 X&Y");
}

TEST_F(QueryTest, AnUnknownMachineIsSentAsThatWord)
{
    const auto poll = CheckStatusCommand::checkStatusCommandWithUser(hosts, u"u"_s, u"p"_s, u"1"_s, u"unknown"_s);
    EXPECT_EQ(bodyOf(*poll, "checkstatus.php"), "user=u&pass=p&contactID=1&comp=unknown");
}

TEST_F(QueryTest, TheRequestForInstructionsIsTheOnlyOneToEncodeTheAccount)
{
    const auto request = GetInstructionsCommand::getInstructionsCommandWithUser(hosts, user, password);
    EXPECT_EQ(bodyOf(*request, "get_instructions.php"), "user=an%20na&%C3%A9&pass=p&w=1/2%25&app=Quillpost");
}

TEST_F(QueryTest, LogAvailabilityAsksForTheContact)
{
    const auto request = LogAvailabilityCommand::logAvailabilityCommandWithUser(hosts, user, password, u"4711"_s);
    EXPECT_EQ(bodyOf(*request, "is_fti.php"), "user=an na&é&pass=p&w=1/2%&contactID=4711");
}

TEST_F(QueryTest, RatesAskWithTheAccountAlone)
{
    const auto request = GetRates2Command::getRates2CommandWithUser(hosts, user, password);
    EXPECT_EQ(bodyOf(*request, "get_rates2.php"), "user=an na&é&pass=p&w=1/2%");
}

TEST_F(QueryTest, ProductCodesAskWithTheAccountAlone)
{
    const auto request = GetRatesProductsCodesCommand::getRatesProductsCodesCommandWithUser(hosts, user, password);
    EXPECT_EQ(bodyOf(*request, "get_rates.php"), "user=an na&é&pass=p&w=1/2%");
}

TEST_F(QueryTest, TheRateOfAProductAsksForItsCodeAndKeepsIt)
{
    const auto request =
        GetRateForProductCodeCommand::getRateForProductCodeCommandWithUser(hosts, user, password, u"1 0"_s);
    EXPECT_EQ(bodyOf(*request, "get_rates.php"), "user=an na&é&pass=p&w=1/2%&prod=1 0");
    EXPECT_EQ(request->productCode(), u"1 0"_s);
    request->setProductCode(u"11"_s);
    EXPECT_EQ(request->productCode(), u"11"_s);
}

TEST_F(QueryTest, AJobFactIsAskedForByItsPieceOfForm)
{
    const auto request =
        MiscStuffCommand::miscStuffCommandWithUser(hosts, user, password, 883, u"field=deponent2 &x=é"_s);
    EXPECT_EQ(bodyOf(*request, "miscstuff.php"), "user=an na&é&pass=p&w=1/2%&depo=883&field=deponent2 &x=é");
}

TEST_F(QueryTest, AnEmptyPieceOfFormLeavesTheAmpersandAtTheEnd)
{
    const auto request = MiscStuffCommand::miscStuffCommandWithUser(hosts, u"u"_s, u"p"_s, -1, QString());
    EXPECT_EQ(bodyOf(*request, "miscstuff.php"), "user=u&pass=p&depo=-1&");
}

TEST_F(QueryTest, EveryQueryIsOneThatTheServiceUnderstands)
{
    const QString name = u"demo"_s;
    const QString word = u"demo1234"_s;
    const int depo = service.addServerJob("a.txt");
    run(CheckStatusCommand::checkStatusCommandWithUser(hosts, name, word, u"4711"_s, u"here"_s));
    run(GetInstructionsCommand::getInstructionsCommandWithUser(hosts, name, word));
    run(LogAvailabilityCommand::logAvailabilityCommandWithUser(hosts, name, word, u"4711"_s));
    run(GetRates2Command::getRates2CommandWithUser(hosts, name, word));
    run(GetRatesProductsCodesCommand::getRatesProductsCodesCommandWithUser(hosts, name, word));
    run(GetRateForProductCodeCommand::getRateForProductCodeCommandWithUser(hosts, name, word, u"11"_s));
    run(MiscStuffCommand::miscStuffCommandWithUser(hosts, name, word, depo, u"field=delivery_option"_s));
    EXPECT_TRUE(service.refusals().empty());
    EXPECT_EQ(observer.calls(RecordingObserver::Kind::Done).size(), 7U);
    EXPECT_EQ(observer.calls().size(), 7U);
    EXPECT_EQ(service.requests().back().reply, "Deposition");
}
