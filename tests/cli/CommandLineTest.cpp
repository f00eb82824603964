#include "cli/CommandLine.h"

#include "CapturedOutput.h"

#include "foundation/Version.h"
#include "model/DeliveryFormat.h"
#include "model/ProcessingLevel.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::HasSubstr;
using testing::IsEmpty;
using Command = CommandLine::Command;

namespace {

class CommandLineTest : public testing::Test
{
protected:
    CommandLineTest() { qunsetenv("QUILLPOST_USER"); }

    std::variant<CommandLine, ExitCode> read(const std::vector<std::string>& arguments)
    {
        std::vector<const char*> pointers{"quillpost-cli"};
        for (const std::string& argument : arguments)
            pointers.push_back(argument.c_str());
        std::variant<CommandLine, ExitCode> result = ExitCode::Usage;
        const CapturedOutput output(
            [&] { result = CommandLine::read(static_cast<int>(pointers.size()), pointers.data()); });
        out = output.out.toStdString();
        err = output.err.toStdString();
        return result;
    }
    CommandLine line(const std::vector<std::string>& arguments)
    {
        auto result = read(arguments);
        EXPECT_TRUE(std::holds_alternative<CommandLine>(result)) << err;
        return std::holds_alternative<CommandLine>(result) ? std::get<CommandLine>(result) : CommandLine();
    }
    CommandLine submit(const std::vector<std::string>& options)
    {
        std::vector<std::string> arguments{"submit", "--transcript", "t.txt", "--media", "m.wav"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return line(arguments);
    }
    // Wrong use says so on standard error, and nothing on standard output.
    void expectWrongUse(const std::vector<std::string>& arguments, const std::string& words)
    {
        const auto result = read(arguments);
        const std::string shown = testing::PrintToString(arguments);
        ASSERT_TRUE(std::holds_alternative<ExitCode>(result)) << shown;
        EXPECT_EQ(std::get<ExitCode>(result), ExitCode::Usage) << shown;
        EXPECT_THAT(err, HasSubstr(words)) << shown;
        EXPECT_THAT(out, IsEmpty()) << shown;
    }
    void expectWrongOrder(const std::vector<std::string>& options, const std::string& words)
    {
        std::vector<std::string> arguments{"submit", "--transcript", "t.txt", "--media", "m.wav"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        expectWrongUse(arguments, words);
    }

    std::string out;
    std::string err;
};

} // namespace

TEST_F(CommandLineTest, knowsItsCommands)
{
    EXPECT_EQ(line({"login"}).command, Command::Login);
    EXPECT_EQ(submit({}).command, Command::Submit);
    EXPECT_EQ(line({"resume"}).command, Command::Resume);
    EXPECT_EQ(line({"jobs"}).command, Command::Jobs);
    EXPECT_EQ(line({"change-password"}).command, Command::ChangePassword);
    EXPECT_EQ(line({"inspect", "a"}).command, Command::Inspect);
}

TEST_F(CommandLineTest, hasDefaults)
{
    const CommandLine defaults = line({"login"});
    EXPECT_FALSE(defaults.secureHost);
    EXPECT_FALSE(defaults.fileHost);
    EXPECT_TRUE(defaults.user.isEmpty());
    EXPECT_EQ(defaults.pollInterval, 60.0);
    EXPECT_FALSE(defaults.deliveryFolder);
    EXPECT_FALSE(defaults.tempFolder);
    EXPECT_FALSE(defaults.maxFfmpeg);
    EXPECT_FALSE(defaults.maxUploads);
    EXPECT_FALSE(defaults.json);
    EXPECT_FALSE(defaults.verbose);
}

TEST_F(CommandLineTest, takesGlobalOptionsBeforeAndBehindTheCommand)
{
    const std::vector<std::string> global{
        "--secure-host", "https://a", "--file-host",       "http://b", "--user",       "jo", "--poll-interval", "0.5",
        "--temp-folder", "t m p",     "--delivery-folder", "d",        "--max-ffmpeg", "3",  "--max-uploads",   "4",
        "--json",        "--verbose"};
    for (const bool isBefore : {true, false}) {
        std::vector<std::string> arguments = global;
        arguments.insert(isBefore ? arguments.begin() + static_cast<std::ptrdiff_t>(global.size()) : arguments.begin(),
                         "resume");
        const CommandLine all = line(arguments);
        EXPECT_EQ(all.command, Command::Resume);
        EXPECT_EQ(all.secureHost, QStringLiteral("https://a"));
        EXPECT_EQ(all.fileHost, QStringLiteral("http://b"));
        EXPECT_EQ(all.user, QStringLiteral("jo"));
        EXPECT_EQ(all.pollInterval, 0.5);
        EXPECT_EQ(all.tempFolder, QStringLiteral("t m p"));
        EXPECT_EQ(all.deliveryFolder, QStringLiteral("d"));
        EXPECT_EQ(all.maxFfmpeg, 3);
        EXPECT_EQ(all.maxUploads, 4);
        EXPECT_TRUE(all.json);
        EXPECT_TRUE(all.verbose);
    }
}

TEST_F(CommandLineTest, takesTheUserFromTheEnvironmentUnlessOneIsGiven)
{
    qputenv("QUILLPOST_USER", "zoë");
    EXPECT_EQ(line({"login"}).user, QStringLiteral("zoë"));
    EXPECT_EQ(line({"login", "--user", "jo"}).user, QStringLiteral("jo"));
    qunsetenv("QUILLPOST_USER");
}

TEST_F(CommandLineTest, takesAnOrder)
{
    const SubmitOptions order =
        line({"submit",   "--transcript",  "t é.txt", "--media", "b.wav",  "a.wav",        "--media",   "-c.wav",
              "--first",  "J.R.",          "--last",  "",        "--date", "2026-02-28",   "--caption", "Doe v. Rail",
              "--format", "RealLegal XML", "--level", "Man24",   "--rush", "--interpreter"})
            .submit;
    EXPECT_EQ(order.transcript, QStringLiteral("t é.txt"));
    EXPECT_EQ(order.media, (QStringList{QStringLiteral("b.wav"), QStringLiteral("a.wav"), QStringLiteral("-c.wav")}));
    EXPECT_EQ(order.firstName, QStringLiteral("J.R."));
    ASSERT_TRUE(order.lastName) << "Given, if empty: nothing is prefilled.";
    EXPECT_EQ(*order.lastName, QString());
    EXPECT_EQ(order.date, QDate(2026, 2, 28));
    EXPECT_EQ(order.caption, QStringLiteral("Doe v. Rail"));
    EXPECT_EQ(order.deliveryFormat, DeliveryFormatRealLegalXML);
    EXPECT_EQ(order.processingLevel, ProcessingLevelMan24);
    EXPECT_TRUE(order.rush);
    EXPECT_TRUE(order.viaInterpreter);
}

TEST_F(CommandLineTest, leavesOpenWhatAnOrderDoesNotSay)
{
    const SubmitOptions order = submit({}).submit;
    EXPECT_FALSE(order.firstName);
    EXPECT_FALSE(order.lastName);
    EXPECT_FALSE(order.date);
    EXPECT_TRUE(order.caption.isEmpty());
    EXPECT_EQ(order.deliveryFormat, DeliveryFormatAll);
    EXPECT_FALSE(order.processingLevel);
    EXPECT_FALSE(order.rush);
    EXPECT_FALSE(order.viaInterpreter);
}

TEST_F(CommandLineTest, knowsEveryFormatAndLevelByItsNameInAnyLetterCase)
{
    int number = 0;
    for (const QString& name : deliveryFormatNames()) {
        EXPECT_EQ(submit({"--format", name.toUpper().toStdString()}).submit.deliveryFormat, number);
        ++number;
    }
    number = 0;
    for (const QString& name : processingLevelNames()) {
        EXPECT_EQ(submit({"--level", name.toLower().toStdString()}).submit.processingLevel, number);
        ++number;
    }
}

TEST_F(CommandLineTest, listsTheKnownFormatsAndLevelsForAnUnknownOne)
{
    expectWrongOrder({"--format", "PDF"},
                     "unknown delivery format \"PDF\"; the known ones are: all, ASCII, Ostrova XML, "
                     "RealLegal XML, PTF/VID, MDB, CMS, DepoSmart XML, Flash CS3 Caption XML, LOG, "
                     "custom");
    expectWrongOrder({"--level", "Man96"},
                     "unknown service level \"Man96\"; the known ones are: AutoSync, Man24, Man48, Man72, Unattended");
}

TEST_F(CommandLineTest, refusesWhatIsNoDate)
{
    for (const char* date : {"2026-02-30", "2026-2-3", "03/04/2026", "", "2026-03-04x", "20260304", "2026-13-01"})
        expectWrongOrder({"--date", date}, "is not a date of the form YYYY-MM-DD");
}

TEST_F(CommandLineTest, refusesLimitsThatStopTheWork)
{
    for (const char* option : {"--max-ffmpeg", "--max-uploads"}) {
        for (const char* number : {"0", "-1", "1025", "x", "1.5"})
            expectWrongUse({option, number, "resume"}, option);
        EXPECT_EQ(line({option, "1024", "resume"}).maxFfmpeg.value_or(1024), 1024);
    }
    for (const char* seconds : {"0", "-1", "0.01", "nan", "inf", "soon", "86401"})
        expectWrongUse({"--poll-interval", seconds, "resume"}, "--poll-interval");
}

TEST_F(CommandLineTest, asksForWhatIsMissing)
{
    expectWrongUse({}, "command");
    expectWrongUse({"submit"}, "--transcript is required");
    expectWrongUse({"submit", "--transcript", "t.txt"}, "--media is required");
    expectWrongUse({"submit", "--transcript", "--media", "m.wav"}, "is required");
    expectWrongUse({"submit", "--media", "m.wav", "--transcript"}, "--transcript");
    expectWrongUse({"submit", "--transcript", "t.txt", "--media"}, "--media");
    expectWrongUse({"inspect"}, "files is required");
    expectWrongUse({"login", "--user"}, "--user");
}

TEST_F(CommandLineTest, refusesWhatItDoesNotKnow)
{
    expectWrongUse({"subnit"}, "subnit");
    expectWrongUse({"login", "--password", "x"}, "--password");
    expectWrongUse({"--frobnicate", "login"}, "--frobnicate");
    expectWrongUse({"login", "extra"}, "extra");
    expectWrongUse({"login", "resume"}, "resume");
}

TEST_F(CommandLineTest, takesFilesWithALeadingDashBehindADoubleOne)
{
    EXPECT_EQ(line({"inspect", "--", "-x.wav", "b"}).inspectFiles,
              (QStringList{QStringLiteral("-x.wav"), QStringLiteral("b")}));
    EXPECT_EQ(line({"inspect", "./-x.wav"}).inspectFiles, QStringList(QStringLiteral("./-x.wav")));
}

TEST_F(CommandLineTest, tellsHelpAndVersionOnStandardOutput)
{
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"-h"}, {"submit", "--help"}, {"inspect", "-h"}}) {
        const auto result = read(arguments);
        ASSERT_TRUE(std::holds_alternative<ExitCode>(result));
        EXPECT_EQ(std::get<ExitCode>(result), ExitCode::Done);
        EXPECT_THAT(out, HasSubstr("QUILLPOST_PASSWORD"));
        EXPECT_THAT(out, HasSubstr("Exit codes:"));
        EXPECT_THAT(err, IsEmpty());
    }
    const auto result = read({"--version"});
    ASSERT_TRUE(std::holds_alternative<ExitCode>(result));
    EXPECT_EQ(std::get<ExitCode>(result), ExitCode::Done);
    EXPECT_EQ(out, "quillpost-cli " + applicationVersion().toStdString() + "\n");
}

TEST_F(CommandLineTest, helpNamesEveryCommandAndGlobalOption)
{
    [[maybe_unused]] const auto result = read({"--help"});
    for (const char* word :
         {"login", "submit", "resume", "jobs", "change-password", "inspect", "--secure-host URL", "--file-host URL",
          "--user NAME", "--poll-interval SECONDS", "--delivery-folder DIR", "--temp-folder DIR", "--max-ffmpeg N",
          "--max-uploads N", "--json", "--verbose", "QUILLPOST_USER", "QUILLPOST_SECURE_HOST"})
        EXPECT_THAT(out, HasSubstr(word));
}
