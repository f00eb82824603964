#include "foundation/Secrets.h"

#include "foundation/Assertion.h"
#include "foundation/Log.h"
#include "support/RecordedLog.h"

#include <QFile>
#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

using testing::HasSubstr;
using testing::Not;
using namespace Qt::StringLiterals;

namespace {

// What the system shows of this process: memory that the environment came in at its start is in the file, later
// settings are not.
QByteArray shownEnvironment()
{
    QFile file(u"/proc/self/environ"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

constexpr const char* theSecret = "pä s/\"w&=<1>";

std::string maskedOf(const std::string& text)
{
    Secrets::add(QString::fromUtf8(theSecret));
    return Secrets::masked(text);
}

} // namespace

// The log's thread may still write while the program exits.
TEST(SecretsDeathTest, AreMaskedToTheVeryEnd)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // In a process that has masked nothing yet.
    EXPECT_EXIT(
        {
            // What is registered first comes last.
            std::atexit([] { std::fputs(Secrets::masked(std::string_view("is lastpass")).c_str(), stderr); });
            Secrets::add(u"lastpass"_s);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^is \\*\\*\\*$");
}

TEST(Secrets, ATextWithoutAnyStaysAsItIs)
{
    EXPECT_EQ(maskedOf("5120 883"), "5120 883");
    EXPECT_EQ(Secrets::masked(u"naïve text"_s), u"naïve text"_s);
    EXPECT_EQ(maskedOf(""), "");
}

TEST(Secrets, AreMaskedAsTheyStandEachTime)
{
    EXPECT_EQ(maskedOf("user=demo&pass=pä s/\"w&=<1>&x=pä s/\"w&=<1>."), "user=demo&pass=***&x=***.");
    EXPECT_EQ(Secrets::masked(u"»pä s/\"w&=<1>«"_s), u"»***«"_s);
}

TEST(Secrets, AreMaskedAsAQueryHasThem)
{
    EXPECT_EQ(maskedOf("pass=p%C3%A4%20s/%22w&=%3C1%3E&x"), "pass=***&x");
}

TEST(Secrets, AreMaskedFullyPercentEncodedInEitherCase)
{
    EXPECT_EQ(maskedOf("[p%C3%A4%20s%2F%22w%26%3D%3C1%3E]"), "[***]");
    EXPECT_EQ(maskedOf("[p%c3%a4%20s%2f%22w%26%3d%3c1%3e]"), "[***]");
}

TEST(Secrets, AreMaskedAsAFormHasThem)
{
    EXPECT_EQ(maskedOf("[p%C3%A4+s%2F%22w%26%3D%3C1%3E]"), "[***]");
}

TEST(Secrets, AreMaskedInBase64)
{
    EXPECT_EQ(maskedOf(QByteArray(theSecret).toBase64(QByteArray::OmitTrailingEquals).toStdString()), "***");
    EXPECT_THAT(maskedOf(QByteArray(theSecret).toBase64(QByteArray::Base64UrlEncoding).toStdString()),
                testing::StartsWith("***"));
}

TEST(Secrets, AreMaskedAsJsonHasThem)
{
    EXPECT_EQ(maskedOf(R"({"pass":"pä s/\"w&=<1>"})"), R"({"pass":"***"})");
    EXPECT_EQ(maskedOf(R"({"pass":"p\u00e4 s\/\"w&=<1>"})"), R"({"pass":"***"})");
}

TEST(Secrets, AreMaskedAsHtmlHasThem)
{
    EXPECT_EQ(maskedOf("<b>pä s/&quot;w&amp;=&lt;1&gt;</b>"), "<b>***</b>");
    Secrets::add(u"it's me"_s);
    EXPECT_EQ(Secrets::masked(std::string("<b>it&#039;s me</b><b>it&#39;s me</b>")), "<b>***</b><b>***</b>");
}

TEST(Secrets, OneThatBeginsWithAnotherIsMaskedWhole)
{
    Secrets::add(u"beginning"_s);
    Secrets::add(u"beginning and end"_s);
    EXPECT_EQ(Secrets::masked(std::string("beginning and end, beginning")), "***, ***");
}

TEST(Secrets, AShortWordIsMaskedInFieldsAloneSinceAMaskElsewhereWouldTellIt)
{
    Secrets::add(u"curl"_s);
    EXPECT_EQ(Secrets::masked(std::string("curl version: user=curl&pass=curl&npass=curl")),
              "curl version: user=curl&pass=***&npass=***");
}

TEST(Secrets, AShortOneWithASignIsNoWord)
{
    Secrets::add(u"a-1b"_s);
    EXPECT_EQ(Secrets::masked(std::string("refused: a-1b")), "refused: ***");
}

TEST(Secrets, AnEmptyOneIsNone)
{
    Secrets::add(QString());
    EXPECT_EQ(Secrets::masked(std::string("some text")), "some text");
}

TEST(Secrets, AreMaskedInEveryLineOfTheLog)
{
    RecordedLog log;
    Secrets::add(QString::fromUtf8(theSecret));
    Log::info("response = {}", theSecret);
    Log::error("response = {}", theSecret);
    Log::system("{}", theSecret);
    const std::string lines = log.text().toStdString();
    EXPECT_THAT(lines, HasSubstr("response = ***"));
    EXPECT_THAT(lines, Not(HasSubstr(theSecret)));
}

TEST(Secrets, AnErrorBeforeTheLogIsSetUpIsMaskedToo)
{
    Secrets::add(QString::fromUtf8(theSecret));
    testing::internal::CaptureStderr();
    Log::error("early: {}", theSecret);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "early: ***\n");
}

TEST(SecretsOfTheEnvironment, AreTakenOutOfIt)
{
    ::setenv("QUILLPOST_TEST_SECRET", "taken & gone", 1);
    EXPECT_EQ(Secrets::takeFromEnvironment("QUILLPOST_TEST_SECRET"), u"taken & gone"_s);
    EXPECT_EQ(std::getenv("QUILLPOST_TEST_SECRET"), nullptr);
    EXPECT_EQ(Secrets::takeFromEnvironment("QUILLPOST_TEST_SECRET"), std::nullopt);
}

TEST(SecretsOfTheEnvironment, AnEmptyOneIsNone)
{
    ::setenv("QUILLPOST_TEST_SECRET", "", 1);
    EXPECT_EQ(Secrets::takeFromEnvironment("QUILLPOST_TEST_SECRET"), std::nullopt);
    EXPECT_EQ(std::getenv("QUILLPOST_TEST_SECRET"), nullptr);
}

TEST(SecretsOfTheEnvironment, AreNoLongerInWhatTheSystemShows)
{
    // Any variable that this process was started with will do.
    ASSERT_TRUE(shownEnvironment().contains("PATH="));
    const QByteArray path = qgetenv("PATH");
    ASSERT_TRUE(shownEnvironment().contains(path));
    EXPECT_EXIT(
        {
            static_cast<void>(Secrets::takeFromEnvironment("PATH"));
            ::_exit(shownEnvironment().contains(path) ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(SecretsInMemory, AreInNoCoreFileButOfADevelopersBuild)
{
    EXPECT_EXIT(
        {
            Secrets::keepMemoryPrivate();
            rlimit limit{};
            ::getrlimit(RLIMIT_CORE, &limit);
            const bool isPrivate = ::prctl(PR_GET_DUMPABLE) == 0 && limit.rlim_cur == 0;
            ::_exit(isPrivate == !Assertion::stopsTheProgram ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
