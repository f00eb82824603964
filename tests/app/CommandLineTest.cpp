#include "app/DesktopCommandLine.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

std::variant<DesktopCommandLine, int> read(std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "quillpost");
    return DesktopCommandLine::read(static_cast<int>(arguments.size()), arguments.data());
}

std::optional<int> codeOf(const std::vector<const char*>& arguments)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const auto result = read(arguments);
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
    const int* const code = std::get_if<int>(&result);
    return code ? std::optional(*code) : std::nullopt;
}

} // namespace

TEST(DesktopCommandLineTest, needsNothing)
{
    const auto result = read({});
    ASSERT_TRUE(std::holds_alternative<DesktopCommandLine>(result));
    const auto& line = std::get<DesktopCommandLine>(result);
    EXPECT_FALSE(line.demo);
    EXPECT_FALSE(line.secureHost);
    EXPECT_FALSE(line.fileHost);
    EXPECT_EQ(line.pollInterval, 60.0);
}

TEST(DesktopCommandLineTest, takesAddressesAndTheInterval)
{
    const auto result = read({"--secure-host", "https://a", "--file-host", "http://b", "--poll-interval", "2.5"});
    const auto& line = std::get<DesktopCommandLine>(result);
    EXPECT_EQ(line.secureHost, QStringLiteral("https://a"));
    EXPECT_EQ(line.fileHost, QStringLiteral("http://b"));
    EXPECT_EQ(line.pollInterval, 2.5);
}

TEST(DesktopCommandLineTest, pollsADemoMoreOften)
{
    EXPECT_EQ(std::get<DesktopCommandLine>(read({"--demo"})).pollInterval, 3.0);
    EXPECT_EQ(std::get<DesktopCommandLine>(read({"--demo", "--poll-interval", "9"})).pollInterval, 9.0);
}

TEST(DesktopCommandLineTest, endsWithACodeForWordsAndWrongUse)
{
    EXPECT_EQ(codeOf({"--help"}), 0);
    EXPECT_EQ(codeOf({"--version"}), 0);
    EXPECT_EQ(codeOf({"--nonsense"}), 1);
    EXPECT_EQ(codeOf({"file.txt"}), 1);
    EXPECT_EQ(codeOf({"--poll-interval", "0"}), 1);
    EXPECT_EQ(codeOf({"--demo", "--secure-host", "https://a"}), 1) << "A demo has a service of its own.";
}
