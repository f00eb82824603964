#include "DemoClient.h"

#include "support/Waiting.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <thread>

using namespace DemoService;
using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

const std::string endpoint = "cauthorize2.php";

class OverridesTest : public testing::Test
{
protected:
    std::future<std::string> postBehind(const std::string& name = endpoint)
    {
        return std::async(std::launch::async, [this, name] { return client.post(name, account); });
    }

    static bool isReady(std::future<std::string>& reply)
    {
        return Waiting::until([&reply] { return reply.wait_for(0s) == std::future_status::ready; });
    }

    Service service;
    DemoClient client{service};
};

} // namespace

TEST_F(OverridesTest, answerInTheirOrderAndAsOftenAsTheySay)
{
    service.addOverride(endpoint, {.reply = "one", .times = 2});
    service.addOverride(endpoint, {.reply = "two", .times = 1});
    service.addOverride(endpoint, {.reply = "never", .times = 0});
    EXPECT_EQ(client.post(endpoint, account), "one");
    EXPECT_EQ(client.post("get_rates.php", account + "&prod=11"), "30.00");
    EXPECT_EQ(client.post(endpoint, account), "one");
    EXPECT_EQ(client.post(endpoint, account), "two");
    EXPECT_EQ(client.post(endpoint, account), "OK: 4711");
}

TEST_F(OverridesTest, lastForEverWithoutACount)
{
    service.addOverride(endpoint, {.reply = std::string("a\0\xff\n", 4)});
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(client.post(endpoint, account), std::string("a\0\xff\n", 4));
    service.clearOverrides();
    EXPECT_EQ(client.post(endpoint, account), "OK: 4711");
}

TEST_F(OverridesTest, giveAStatus)
{
    service.addOverride(endpoint, {.status = 503, .reply = "busy"});
    const auto result = client.tryPost(endpoint, account);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 503);
    EXPECT_EQ(result->body, "busy");
}

TEST_F(OverridesTest, aReplacedAnswerChangesNothing)
{
    service.addOverride("jobdetails.php", {.reply = "0 0", .times = 1});
    EXPECT_EQ(client.post("jobdetails.php", registration()), "0 0");
    EXPECT_TRUE(service.jobs().empty());
    EXPECT_EQ(service.count("jobdetails.php"), 1);
    EXPECT_EQ(client.post("jobdetails.php", registration()), "5120 883");
}

TEST_F(OverridesTest, redirect)
{
    service.addOverride(endpoint, {.location = service.secureHost() + "/login"});
    const auto result = client.tryPost(endpoint, account);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 302);
    EXPECT_EQ(result->get_header_value("Location"), service.secureHost() + "/login");
}

TEST_F(OverridesTest, delayTheAnswer)
{
    service.addOverride(endpoint, {.delay = 150ms});
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(client.post(endpoint, account), "OK: 4711");
    EXPECT_GE(std::chrono::steady_clock::now() - before, 150ms);
}

TEST_F(OverridesTest, cutTheReply)
{
    service.addOverride(endpoint, {.cutAt = 3});
    httplib::SSLClient cutClient("127.0.0.1", service.securePort());
    cutClient.enable_server_certificate_verification(false);
    std::string received;
    std::string length;
    httplib::Request request;
    request.method = "POST";
    request.path = "/saltine/" + endpoint;
    request.headers = {{"Content-Type", "application/x-www-form-urlencoded"}};
    request.body = account;
    request.response_handler = [&length](const httplib::Response& response) {
        length = response.get_header_value("Content-Length");
        return true;
    };
    request.content_receiver = [&received](const char* bytes, std::size_t size, std::uint64_t, std::uint64_t) {
        received.append(bytes, size);
        return true;
    };
    EXPECT_FALSE(cutClient.send(request));
    EXPECT_EQ(length, "8");
    EXPECT_EQ(received, "OK:");
}

TEST_F(OverridesTest, cutARequestThatWasServed)
{
    service.addOverride("jobdetails.php", {.cutAt = 100, .times = 1});
    EXPECT_EQ(client.post("jobdetails.php", registration()), "(no reply)");
    EXPECT_EQ(service.jobs().size(), 1U);
}

TEST_F(OverridesTest, resetTheConnection)
{
    service.addOverride(endpoint, {.reset = true, .times = 1});
    EXPECT_EQ(client.post(endpoint, account), "(no reply)");
    EXPECT_EQ(service.count(endpoint), 1);
    EXPECT_EQ(client.post(endpoint, account), "OK: 4711");
}

TEST_F(OverridesTest, resetBeforeAByteOfTheReply)
{
    service.addOverride("autorun.inf", {.reset = true});
    httplib::Client files("127.0.0.1", service.filePort());
    const auto result = files.Get("/DemoDisc/autorun.inf");
    EXPECT_FALSE(result);
    EXPECT_EQ(result.error(), httplib::Error::Read);
}

TEST_F(OverridesTest, sendInPieces)
{
    service.addOverride("autorun.inf", {.pieces = {"one", "", "two", "three"}, .pause = 100ms});
    httplib::Client files("127.0.0.1", service.filePort());
    std::vector<std::string> pieces;
    const auto result = files.Get("/DemoDisc/autorun.inf", [&pieces](const char* bytes, std::size_t size) {
        pieces.emplace_back(bytes, size);
        return true;
    });
    ASSERT_TRUE(result);
    EXPECT_EQ(result->get_header_value("Content-Length"), "11");
    EXPECT_THAT(pieces, testing::ElementsAre("one", "two", "three"));
    EXPECT_EQ(service.requests("autorun.inf").front().reply, "onetwothree");
}

TEST_F(OverridesTest, sendTheServicesOwnAnswerInPieces)
{
    service.addOverride("autorun.inf", {.pieceSize = 7, .pause = 1ms, .times = 1});
    httplib::Client files("127.0.0.1", service.filePort());
    const auto inPieces = files.Get("/DemoDisc/autorun.inf");
    const auto atOnce = files.Get("/DemoDisc/autorun.inf");
    ASSERT_TRUE(inPieces);
    ASSERT_TRUE(atOnce);
    EXPECT_GT(atOnce->body.size(), 7U);
    EXPECT_EQ(inPieces->body, atOnce->body);
}

TEST_F(OverridesTest, meetOnlyRequestsWithAText)
{
    service.addOverride("get_rates.php", {.where = "prod=11", .reply = "eleven"});
    service.addOverride("get_rates.php", {.where = "prod=24", .reply = "twenty-four", .times = 1});
    EXPECT_EQ(client.post("get_rates.php", account + "&prod=24"), "twenty-four");
    EXPECT_EQ(client.post("get_rates.php", account + "&prod=24"), "95.00");
    EXPECT_EQ(client.post("get_rates.php", account + "&prod=11"), "eleven");
    EXPECT_EQ(client.post("get_rates.php", account + "&prod=10"), "45.00");
}

TEST_F(OverridesTest, meetOnlyUploadsUnderAName)
{
    client.sendWholeJob(1);
    service.addOverride("test_custupload2.php", {.where = ".mp3[", .reply = "no sound, please"});
    EXPECT_EQ(client.upload("5120_883_1.mp3[clip1.mov,10000]", "sound"), "no sound, please");
    EXPECT_EQ(client.upload("5120_883.txt[Smith.txt,-1]", "text"), "UPLOAD COMPLETE");
}

TEST_F(OverridesTest, resetInsideTheReply)
{
    service.addOverride("autorun.inf", {.resetAt = 5});
    httplib::Client files("127.0.0.1", service.filePort());
    std::string received;
    const auto result = files.Get("/DemoDisc/autorun.inf", [&received](const char* bytes, std::size_t size) {
        received.append(bytes, size);
        return true;
    });
    EXPECT_FALSE(result);
    EXPECT_EQ(received.size(), 5U);
}

TEST_F(OverridesTest, resetBehindTheReply)
{
    service.addOverride("jobdetails.php", {.resetAt = 1'000'000});
    EXPECT_EQ(client.post("jobdetails.php", registration()), "5120 883");
    EXPECT_EQ(service.jobs().size(), 1U);
}

TEST_F(OverridesTest, resetInsideTheRequest)
{
    client.sendWholeJob(1);
    const std::string large(4'000'000, 'x');
    service.addOverride("test_custupload2.php", {.resetRequestAt = 1'000'000, .times = 1});
    EXPECT_EQ(client.upload("5120_883_1.mp3[clip1.mov,10000]", large), "(no reply)");
    const auto requests = service.requests("test_custupload2.php");
    EXPECT_EQ(requests.back().status, 0);
    EXPECT_LT(requests.back().parts.back().content.size(), large.size());
    EXPECT_NE(service.job(883)->segments.front().audio, large);
    EXPECT_EQ(client.upload("5120_883_1.mp3[clip1.mov,10000]", large), "UPLOAD COMPLETE");
    EXPECT_EQ(service.job(883)->segments.front().audio, large);
}

TEST_F(OverridesTest, resetBeforeTheReplyToARequestThatIsShort)
{
    service.addOverride("jobdetails.php", {.resetRequestAt = 1'000'000, .times = 1});
    EXPECT_EQ(client.post("jobdetails.php", registration()), "(no reply)");
    EXPECT_TRUE(service.jobs().empty());
    EXPECT_EQ(client.post("jobdetails.php", registration()), "5120 883");
}

TEST_F(OverridesTest, hangUntilReleased)
{
    service.addOverride(endpoint, {.hang = true});
    auto first = postBehind();
    ASSERT_TRUE(Waiting::until([this] { return service.hanging() == 1; }));
    // Others are not kept waiting.
    EXPECT_EQ(client.post("get_rates.php", account + "&prod=11"), "30.00");
    service.releaseHangs();
    ASSERT_TRUE(isReady(first));
    EXPECT_EQ(first.get(), "OK: 4711");
    auto second = postBehind();
    ASSERT_TRUE(Waiting::until([this] { return service.hanging() == 1; }));
    service.clearOverrides();
    ASSERT_TRUE(isReady(second));
    EXPECT_EQ(client.post(endpoint, account), "OK: 4711");
}

TEST_F(OverridesTest, manyMayHang)
{
    constexpr int many = 70;
    service.addOverride(endpoint, {.hang = true});
    std::vector<std::future<std::string>> replies;
    for (int index = 0; index < many; ++index)
        replies.push_back(postBehind());
    ASSERT_TRUE(Waiting::until([this] { return service.hanging() == many; }));
    EXPECT_EQ(client.post("get_rates.php", account + "&prod=11"), "30.00");
    service.clearOverrides();
    for (auto& reply : replies)
        EXPECT_EQ(reply.get(), "OK: 4711");
}

TEST_F(OverridesTest, stopEndsWhatHangsOrWaits)
{
    service.addOverride(endpoint, {.hang = true});
    service.addOverride("get_rates2.php", {.delay = 1h});
    service.addOverride("get_rates.php", {.pieces = {"a", "b"}, .pause = 1h});
    auto hangs = postBehind();
    auto waits = postBehind("get_rates2.php");
    auto pauses = postBehind("get_rates.php");
    // Connected, and never says a word.
    httplib::Client idle("127.0.0.1", service.filePort());
    idle.set_keep_alive(true);
    EXPECT_TRUE(idle.Get("/DemoDisc/autorun.inf"));
    ASSERT_TRUE(Waiting::until([this] {
        return service.hanging() == 1 && service.count("get_rates2.php") == 1 && service.count("get_rates.php") == 1;
    }));
    const auto before = std::chrono::steady_clock::now();
    service.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - before, 3s);
    EXPECT_EQ(hangs.get(), "(no reply)");
    EXPECT_EQ(waits.get(), "(no reply)");
    EXPECT_EQ(pauses.get(), "(no reply)");
    EXPECT_EQ(service.count(endpoint), 1);
    service.stop();
}

TEST(ServiceEnds, areCalledFromSeveralThreads)
{
    Service service;
    const DemoClient client(service);
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index)
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round)
                (void)client.post(endpoint, account);
            service.stop();
        });
    for (int round = 0; round < 20; ++round) {
        (void)service.requests();
        (void)service.jobs();
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(client.post(endpoint, account), "(no reply)");
}

TEST(ServicePorts, areNotShared)
{
    const Service first;
    Options options;
    options.securePort = first.securePort();
    EXPECT_THROW(Service{options}, std::runtime_error);
    options = {};
    options.filePort = first.filePort();
    EXPECT_THROW(Service{options}, std::runtime_error);
}

TEST(ServicePorts, canBeTakenAgainAtOnce)
{
    Options options;
    {
        const Service first;
        EXPECT_EQ(DemoClient(first).post(endpoint, account), "OK: 4711");
        options.securePort = first.securePort();
        options.filePort = first.filePort();
    }
    const Service second(options);
    EXPECT_EQ(second.secureHost(), fmt::format("https://127.0.0.1:{}", options.securePort));
    EXPECT_EQ(second.fileHost(), fmt::format("http://127.0.0.1:{}", options.filePort));
    EXPECT_EQ(DemoClient(second).post(endpoint, account), "OK: 4711");
}
