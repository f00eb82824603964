// The requests that no job depends on, under each fault: the log-in, the change of the password, the prices.

#include "FaultTable.h"
#include "ui-support/RecordingApplication.h"

#include "commands/CUrlCommand.h"
#include "commands/GetRateForProductCodeCommand.h"
#include "commands/GetRatesProductsCodesCommand.h"
#include "demo-service/Service.h"
#include "support/RecordedLog.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"
#include "ui/login/LoginWindowController.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QElapsedTimer>

#include <functional>
#include <ostream>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 30s;
constexpr qint64 longestEndInMilliseconds = 5000;

ServiceHosts hostsOf(const DemoService::Service& service)
{
    return std::get<ServiceHosts>(ServiceHosts::fromTexts(QString::fromStdString(service.secureHost()),
                                                          QString::fromStdString(service.fileHost())));
}

// A program with one window, and the service that it asks.
struct Program
{
    Program()
    {
        application.name = u"demo"_s;
        application.password = u"demo1234"_s;
        application.contactID = u"4711"_s;
        application.startCommands();
    }
    [[nodiscard]] QStringList presented() const
    {
        QStringList texts;
        for (const Error& error : application.presented)
            texts.append(error.localizedDescription);
        return texts;
    }
    [[nodiscard]] bool waitUntil(const std::function<bool()>& condition) const
    {
        return Waiting::until(condition, patience);
    }

    DemoService::Service service;
    RecordedLog log;
    RecordingApplication application{hostsOf(service)};
};

// One way to ask something of the service, tried and tried again.
class Asking
{
public:
    virtual ~Asking() = default;
    // Until the request's end is told, or, where it hangs, until it hangs.
    [[nodiscard]] virtual bool ask() = 0;
    [[nodiscard]] virtual QStringList told() const = 0;
    // The request came to what it is for.
    [[nodiscard]] virtual bool isServed() const = 0;
};

class LogIn : public Asking
{
public:
    explicit LogIn(Program& program) : m_program(program)
    {
        m_controller.setUsername(u"demo"_s);
        m_controller.setPassword(u"demo1234"_s);
    }
    bool ask() override
    {
        m_controller.performLogin();
        return m_program.waitUntil(
            [this] { return !m_controller.waitingForResponse() || m_program.service.hanging() > 0; });
    }
    QStringList told() const override
    {
        const QString message = m_controller.messageText();
        return message.isEmpty() || isServed() ? QStringList() : QStringList{message};
    }
    bool isServed() const override
    {
        const auto& logins = m_program.application.logins;
        return !logins.isEmpty() && logins.constLast().contactID == u"4711";
    }

private:
    Program& m_program;
    LoginWindowController m_controller{m_program.application};
};

class ChangeOfPassword : public Asking
{
public:
    explicit ChangeOfPassword(Program& program) : m_program(program)
    {
        program.service.setDemandPasswordChange(true);
        m_controller.setUsername(u"demo"_s);
        m_controller.setPassword(u"demo1234"_s);
        m_controller.performLogin();
        EXPECT_TRUE(program.waitUntil([this] { return !m_controller.waitingForResponse(); }));
        m_controller.setTheNewPassword(u"Sesame12"_s);
        m_controller.setTheNewPasswordConfirm(u"Sesame12"_s);
    }
    bool ask() override
    {
        m_controller.changePassword();
        return waitForEnd();
    }
    QStringList told() const override { return LogInMessage(); }
    bool isServed() const override
    {
        const auto& logins = m_program.application.logins;
        return !logins.isEmpty() && logins.constLast().password == u"Sesame12";
    }
    // The service may have taken the new password though its reply was lost; then it is the one to log in with.
    bool logInWithTheNewOne()
    {
        m_controller.setPassword(u"Sesame12"_s);
        m_controller.performLogin();
        return waitForEnd();
    }

private:
    [[nodiscard]] bool waitForEnd() const
    {
        return m_program.waitUntil(
            [this] { return !m_controller.waitingForResponse() || m_program.service.hanging() > 0; });
    }
    [[nodiscard]] QStringList LogInMessage() const
    {
        const QString message = m_controller.messageText();
        return message.isEmpty() || isServed() ? QStringList() : QStringList{message};
    }

    Program& m_program;
    LoginWindowController m_controller{m_program.application};
};

class Prices : public Asking
{
public:
    explicit Prices(Program& program) : m_program(program) {}
    bool ask() override
    {
        m_program.application.presented.clear();
        m_controller.showWindow();
        return m_program.waitUntil([this] {
            return m_program.service.hanging() > 0 ||
                   (!m_controller.isGettingRatesInProgress() &&
                    m_program.application.curlCommandProcessor().currentNumOfCommandThreads() == 0);
        });
    }
    QStringList told() const override
    {
        QStringList texts = m_program.presented();
        if (const QString status = m_controller.ratesStatusText(); !status.isEmpty())
            texts.append(status);
        return texts;
    }
    bool isServed() const override
    {
        return m_controller.job() && m_controller.job()->man24Rate().toDouble() > 0 &&
               m_controller.isLOGDeliveryFormatAvailable();
    }

private:
    Program& m_program;
    SubmitJobWindowController m_controller{m_program.application};
};

// A command that has no window of its own.
class BareCommand : public Asking, public CUrlCommandResultObserver
{
public:
    using Maker = std::function<std::shared_ptr<CUrlCommand>(const ServiceHosts&)>;
    BareCommand(Program& program, Maker maker) : m_program(program), m_maker(std::move(maker)) {}
    ~BareCommand() override
    {
        if (m_command)
            m_command->setObserver(nullptr);
    }
    bool ask() override
    {
        m_hasEnded = false;
        m_command = m_maker(m_program.application.serviceHosts());
        m_command->setObserver(this);
        m_program.application.curlCommandProcessor().postCommand(m_command);
        return m_program.waitUntil([this] { return m_hasEnded || m_program.service.hanging() > 0; });
    }
    QStringList told() const override
    {
        return m_hasEnded && m_command->result() != 0 ? QStringList{m_command->error().localizedDescription}
                                                      : QStringList();
    }
    bool isServed() const override { return m_hasEnded && m_command->result() == 0; }
    void curlCommandDone(CUrlCommand& /*command*/) override { m_hasEnded = true; }
    void curlCommandFailed(CUrlCommand& /*command*/) override { m_hasEnded = true; }
    void curlCommandProgress(CUrlCommand&, double, double, double, double) override {}

private:
    Program& m_program;
    const Maker m_maker;
    std::shared_ptr<CUrlCommand> m_command;
    bool m_hasEnded = false;
};

struct AccountRequest
{
    const char* name;
    const char* title;
    Request request;
    std::function<std::unique_ptr<Asking>(Program&)> makeAsking;
    bool takesAnyWords = false;
};

// In a list of tests.
void PrintTo(const AccountRequest& request, std::ostream* stream)
{
    *stream << request.title;
}

class AccountRequestFaultsTest : public TemporaryHome, public testing::WithParamInterface<AccountRequest>
{
protected:
    [[nodiscard]] static Outcome meet(FaultKind kind, Faults::Often often)
    {
        QElapsedTimer ending;
        Outcome outcome;
        {
            Program program;
            const auto asking = GetParam().makeAsking(program);
            Faults::install(program.service, GetParam().request, kind, often);
            outcome.hasHung = !asking->ask();
            outcome.told = asking->told();
            if (asking->isServed())
                outcome.then = u"goes on"_s;
            else
                outcome.then = goOn(program, *asking, outcome);
            ending.start();
        }
        outcome.hasHung = outcome.hasHung || ending.elapsed() > longestEndInMilliseconds;
        return outcome;
    }

    // The user tries again, the fault for good being over then; a service that is silent first ends the program.
    [[nodiscard]] static QString goOn(Program& program, Asking& asking, Outcome& outcome)
    {
        const bool isWaiting = program.service.hanging() > 0;
        program.service.clearOverrides();
        if (isWaiting) {
            outcome.isLost = !program.waitUntil([&] { return asking.isServed(); });
            return u"waits; goes on when the service speaks"_s;
        }
        outcome.hasHung = outcome.hasHung || !asking.ask();
        if (asking.isServed())
            return u"goes on when tried again"_s;
        if (auto* const change = dynamic_cast<ChangeOfPassword*>(&asking)) {
            outcome.isLost = !change->logInWithTheNewOne() || !asking.isServed();
            return u"the new password is in force"_s;
        }
        outcome.isLost = true;
        return u"does not go on"_s;
    }
};

TEST_P(AccountRequestFaultsTest, TellTheUserAndCanBeTriedAgain)
{
    const QString title = QString::fromUtf8(GetParam().title);
    FaultTable table(title);
    for (const FaultKind kind : Faults::triedFor(title)) {
        SCOPED_TRACE(Faults::nameOf(kind).toStdString());
        const Outcome once = meet(kind, Faults::Often::Once);
        table.add(kind, once, meet(kind, Faults::Often::ForGood));
    }
    table.compareWithDocument();
}

template <typename Kind>
std::unique_ptr<Asking> make(Program& program)
{
    return std::make_unique<Kind>(program);
}

std::unique_ptr<Asking> makeProductCodes(Program& program)
{
    return std::make_unique<BareCommand>(program, [](const ServiceHosts& hosts) {
        return GetRatesProductsCodesCommand::getRatesProductsCodesCommandWithUser(hosts, u"demo"_s, u"demo1234"_s);
    });
}

std::unique_ptr<Asking> makeRateOfProduct(Program& program)
{
    return std::make_unique<BareCommand>(program, [](const ServiceHosts& hosts) {
        return GetRateForProductCodeCommand::getRateForProductCodeCommandWithUser(hosts, u"demo"_s, u"demo1234"_s,
                                                                                  u"24"_s);
    });
}

INSTANTIATE_TEST_SUITE_P(
    Requests, AccountRequestFaultsTest,
    testing::Values(AccountRequest{"LogIn", "Log-in", {"cauthorize2.php"}, &make<LogIn>},
                    AccountRequest{
                        "ChangeOfPassword", "Change of the password", {"CUpdate.php"}, &make<ChangeOfPassword>},
                    AccountRequest{"LogFormat", "Availability of the LOG format", {"is_fti.php"}, &make<Prices>},
                    AccountRequest{"Rates", "Prices", {"get_rates2.php"}, &make<Prices>},
                    AccountRequest{"ProductCodes", "Product codes", {"get_rates.php"}, &makeProductCodes},
                    AccountRequest{"RateOfProduct", "Price of a product", {"get_rates.php"}, &makeRateOfProduct}),
    [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
