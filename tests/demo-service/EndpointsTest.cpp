#include "DemoClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace DemoService;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class EndpointsTest : public testing::Test
{
protected:
    // The request is refused with these words, and the refusal is kept.
    void expectRefusal(const std::string& endpoint, const std::string& body, const std::string& fault)
    {
        service.clearRequests();
        EXPECT_EQ(client.post(endpoint, body), "Bad request: " + fault) << body;
        EXPECT_THAT(service.refusals(), ElementsAre(endpoint + ": Bad request: " + fault));
    }

    Service service;
    DemoClient client{service};
};

const std::string segmentBody =
    account + "&depo=883&segment=2&src_name=a & b=c.mov&duration=12345&prod=11&size=99&mod=2025-12-30 23:59:58";

} // namespace

TEST_F(EndpointsTest, logsIn)
{
    EXPECT_EQ(client.post("cauthorize2.php", account), "OK: 4711");
    EXPECT_EQ(client.post("cauthorize2.php", "user=demo&pass=wrong"), "Invalid user name or password");
    EXPECT_EQ(client.post("cauthorize2.php", "user=other&pass=demo1234"), "Invalid user name or password");
    EXPECT_THAT(service.refusals(), ElementsAre());
}

TEST_F(EndpointsTest, refusesABrokenLogin)
{
    expectRefusal("cauthorize2.php", "user=demo", "field pass is missing");
    expectRefusal("cauthorize2.php", "pass=demo1234&user=demo", "field user is out of order");
    expectRefusal("cauthorize2.php", "user=demo&passwd=demo1234", "field pass is missing");
    expectRefusal("cauthorize2.php", account + "&more=1", "something unknown follows field pass");
    expectRefusal("cauthorize2.php", "user=demo&more=1&pass=demo1234", "something unknown follows field user");
}

TEST_F(EndpointsTest, takesARawPasswordWithSeparatorsInIt)
{
    service.setPassword("a&pass=b=%20c");
    EXPECT_EQ(client.post("cauthorize2.php", "user=demo&pass=a&pass=b=%20c"), "OK: 4711");
    EXPECT_EQ(client.post("get_instructions.php", "user=demo&pass=a&pass=b=%2520c&app=Quillpost"), "OK");
}

TEST_F(EndpointsTest, demandsAPasswordChange)
{
    service.setDemandPasswordChange(true);
    EXPECT_EQ(client.post("cauthorize2.php", "user=demo&pass=wrong"), "Invalid user name or password");
    EXPECT_EQ(client.post("cauthorize2.php", account), "Change");
    EXPECT_EQ(client.post("CUpdate.php", "user=demo&pass=wrong&npass=new"), "Invalid user name or password");
    EXPECT_EQ(client.post("CUpdate.php", account + "&npass="), "Invalid new password");
    EXPECT_EQ(client.post("CUpdate.php", account + "&npass=demo1234"), "Invalid new password");
    EXPECT_EQ(client.post("cauthorize2.php", account), "Change");
    EXPECT_EQ(client.post("CUpdate.php", account + "&npass=n&w"), "CP");
    EXPECT_EQ(service.password(), "n&w");
    EXPECT_EQ(client.post("cauthorize2.php", account), "Invalid user name or password");
    EXPECT_EQ(client.post("cauthorize2.php", "user=demo&pass=n&w"), "OK: 4711");
    expectRefusal("CUpdate.php", "user=demo&pass=n&w", "field npass is missing");
    expectRefusal("CUpdate.php", "user=demo&npass=x&pass=n&w", "field npass is out of order");
}

TEST_F(EndpointsTest, everyEndpointAsksForTheAccount)
{
    const std::string wrong = "user=demo&pass=nope";
    const std::string error = "Invalid user name or password";
    EXPECT_EQ(client.post("jobdetails.php", changed(registration(), account, wrong)), error);
    EXPECT_EQ(client.post("add_segment.php", changed(segmentBody, account, wrong)), error);
    EXPECT_EQ(client.post("set_media_format.php", wrong + "&depo=883&segment=1&format=x"), error);
    EXPECT_EQ(client.post("checkstatus.php", wrong + "&contactID=4711"), error);
    EXPECT_EQ(client.post("get_instructions.php", wrong + "&app=Quillpost"), error);
    EXPECT_EQ(client.post("is_fti.php", wrong + "&contactID=4711"), error);
    EXPECT_EQ(client.post("get_rates2.php", wrong), error);
    EXPECT_EQ(client.post("get_rates.php", wrong), error);
    EXPECT_EQ(client.post("miscstuff.php", wrong + "&depo=883&"), error);
    EXPECT_EQ(client.post("test_downloadjob2.php", wrong + "&depo=883&file_num=0&just_get_name=1"), error);
    EXPECT_TRUE(service.jobs().empty());
}

TEST_F(EndpointsTest, registersJobs)
{
    EXPECT_EQ(client.post("jobdetails.php", registration()), "5120 883");
    EXPECT_EQ(client.post("jobdetails.php", registration(1)), "5121 884");
    const auto job = service.job(883);
    ASSERT_TRUE(job);
    EXPECT_EQ(job->orderNumber, 5120);
    EXPECT_EQ(job->segments.size(), 2U);
    EXPECT_EQ(job->transcriptName, "Smith.txt");
    EXPECT_EQ(valueOf(job->details, "shortCaption"), "A&B=C D");
    EXPECT_EQ(valueOf(job->details, "deponentFirst"), "JR B");
    EXPECT_EQ(valueOf(job->details, "pass"), "");
    EXPECT_EQ(job->word, "Uploading");
}

TEST_F(EndpointsTest, refusesABrokenRegistration)
{
    const std::string good = registration();
    const std::string endpoint = "jobdetails.php";
    expectRefusal(endpoint, changed(good, "&rush=0", ""), "field rush is missing");
    expectRefusal(endpoint, changed(good, "&rush=0&translation=0", "&translation=0&rush=0"),
                  "field rush is out of order");
    expectRefusal(endpoint, changed(good, "deponentLast", "deponentlast"), "field deponentLast is missing");
    expectRefusal(endpoint, changed(good, "&rush=0", "&rush=0&urgent=1"), "field rush is neither 0 nor 1");
    expectRefusal(endpoint, good + "&urgent=1", "field comp is followed by something else");
    expectRefusal(endpoint, changed(good, "MacQPT", "QPT"), "field enteredBy does not begin as it must");
    expectRefusal(endpoint, changed(good, "JR%20B", "J.R"), "field deponentFirst has a dot in it");
    expectRefusal(endpoint, changed(good, "JR%20B", "J R"), "field deponentFirst is not percent-encoded");
    expectRefusal(endpoint, changed(good, "=all", "=everything"), "field transcriptDestinationFormat names no format");
    expectRefusal(endpoint, changed(good, "Count=2", "Count=0"), "field totalSegmentCount is not between 1 and 1000");
    expectRefusal(endpoint, changed(good, "SourceFormat=txt", "SourceFormat=doc"),
                  "field transcriptSourceFormat is not the transcript's extension");
    expectRefusal(endpoint, changed(good, "=Smith.txt", "="), "field originalTranscriptName is not a file name");
    expectRefusal(endpoint, changed(good, "2011-03-04", "03/04/2011"), "field depoDate is not a date");
    expectRefusal(endpoint, changed(good, "groupBy=Deposition", "groupBy=Order"),
                  "field groupBy is not the constant that it must be");
    EXPECT_TRUE(service.jobs().empty());
}

TEST_F(EndpointsTest, takesSegments)
{
    (void)client.post("jobdetails.php", registration());
    EXPECT_EQ(client.post("add_segment.php", segmentBody), "");
    EXPECT_EQ(client.post("set_media_format.php", account + "&depo=883&segment=2&format=Stream%20%230%3A0"), "");
    const Segment segment = service.job(883)->segments.at(1);
    EXPECT_TRUE(segment.announced);
    EXPECT_EQ(segment.sourceName, "a & b=c.mov");
    EXPECT_EQ(segment.durationMs, 12345);
    EXPECT_EQ(segment.size, 99);
    EXPECT_EQ(segment.product, "11");
    EXPECT_EQ(segment.modified, "2025-12-30 23:59:58");
    EXPECT_EQ(segment.format, "Stream #0:0");
    EXPECT_FALSE(service.job(883)->segments.at(0).announced);
}

TEST_F(EndpointsTest, refusesABrokenSegment)
{
    (void)client.post("jobdetails.php", registration());
    const std::string endpoint = "add_segment.php";
    EXPECT_EQ(client.post(endpoint, changed(segmentBody, "883", "99999999999999")), "Unknown deposition");
    expectRefusal(endpoint, changed(segmentBody, "segment=2", "segment=3"),
                  "field segment is not one of the job's segments");
    expectRefusal(endpoint, changed(segmentBody, "segment=2", "segment=0"),
                  "field segment is not one of the job's segments");
    expectRefusal(endpoint, changed(segmentBody, "&size=99", ""), "field size is missing");
    expectRefusal(endpoint, changed(segmentBody, "src_name", "srcname"), "field src_name is missing");
    expectRefusal(endpoint, changed(segmentBody, "&depo=883&segment=2", "&segment=2&depo=883"),
                  "field depo is out of order");
    expectRefusal(endpoint, changed(segmentBody, "12345", "12.345"), "field duration is not a number");
    expectRefusal(endpoint, changed(segmentBody, "12-30 23", "12-30T23"), "field mod is not a date with its time");
    expectRefusal(endpoint, changed(segmentBody, "a & b=c.mov", "/tmp/a.mov"), "field src_name is not a file name");
    expectRefusal(endpoint, segmentBody + "&x=1", "field mod is not a date with its time");
    EXPECT_FALSE(service.job(883)->segments.at(1).announced);
}

TEST_F(EndpointsTest, refusesABrokenMediaFormat)
{
    (void)client.post("jobdetails.php", registration());
    const std::string endpoint = "set_media_format.php";
    EXPECT_EQ(client.post(endpoint, account + "&depo=1&segment=1&format=x"), "Unknown deposition");
    expectRefusal(endpoint, account + "&depo=883&segment=3&format=x", "field segment is not one of the job's segments");
    expectRefusal(endpoint, account + "&depo=883&segment=1&format=a:b", "field format is not fully percent-encoded");
    expectRefusal(endpoint, account + "&depo=883&format=x&segment=1", "field segment is out of order");
    expectRefusal(endpoint, account + "&depo=883&segment=1", "field format is missing");
}

TEST_F(EndpointsTest, tellsTheStatusOfOneMachineOrAll)
{
    (void)client.post("jobdetails.php", registration());
    EXPECT_EQ(client.status(), "Depo: 883 Smith.txt Uploading\n");
    EXPECT_EQ(client.post("checkstatus.php", account + "&contactID=4711&comp=C02X"), "Depo: 883 Smith.txt Uploading\n");
    EXPECT_EQ(client.post("checkstatus.php", account + "&contactID=4711&comp=other"), "");
    EXPECT_EQ(client.post("checkstatus.php", account + "&contactID=1"), "Unknown contact");
    expectRefusal("checkstatus.php", account, "field contactID is missing");
    expectRefusal("checkstatus.php", account + "&comp=C02X&contactID=4711", "something unknown follows field pass");
    expectRefusal("checkstatus.php", account + "&contactID=4711&Comp=C02X",
                  "field contactID is followed by something else");
}

TEST_F(EndpointsTest, asksForTheLogOnce)
{
    const std::string body = account + "&app=Quillpost";
    EXPECT_EQ(client.post("get_instructions.php", body), "OK");
    service.setSendLogs();
    EXPECT_EQ(client.post("get_instructions.php", body), "OK SendLogs");
    EXPECT_EQ(client.post("get_instructions.php", body), "OK");
    expectRefusal("get_instructions.php", account, "field app is missing");
    expectRefusal("get_instructions.php", account + "&app=Other", "field app is not the constant that it must be");
    expectRefusal("get_instructions.php", "user=demo&pass=a b&app=Quillpost", "field pass is not percent-encoded");
}

TEST_F(EndpointsTest, tellsWhetherTheLogFormatIsAvailable)
{
    EXPECT_EQ(client.post("is_fti.php", account + "&contactID=4711"), "yes");
    service.setLogFormat(false);
    EXPECT_EQ(client.post("is_fti.php", account + "&contactID=4711"), "no");
    EXPECT_EQ(client.post("is_fti.php", account + "&contactID=47"), "Unknown contact");
    expectRefusal("is_fti.php", account, "field contactID is missing");
}

TEST_F(EndpointsTest, givesRates)
{
    Rates rates;
    rates.man24 = {95.5, 24};
    rates.rushMultiplier = 2;
    service.setRates(rates);
    EXPECT_EQ(client.post("get_rates2.php", account),
              "{\"Man24\":{\"Rate\":95.50,\"ProdCode\":24},\"Man48\":{\"Rate\":75.00,\"ProdCode\":48},"
              "\"Man72\":{\"Rate\":60.00,\"ProdCode\":72},\"Unattended\":{\"Rate\":45.00,\"ProdCode\":10},"
              "\"AutoSync\":{\"Rate\":30.00,\"ProdCode\":11},\"RUSH\":{\"Multiplier\":2.00}}");
    EXPECT_EQ(client.post("get_rates.php", account), "24 Man24\n48 Man48\n72 Man72\n10 Unattended\n11 AutoSync\n");
    EXPECT_EQ(client.post("get_rates.php", account + "&prod=24"), "95.50");
    EXPECT_EQ(client.post("get_rates.php", account + "&prod=1"), "Unknown product code");
    expectRefusal("get_rates.php", account + "&prod=x", "field prod is not an integer");
    expectRefusal("get_rates.php", account + "&code=24", "something unknown follows field pass");
    expectRefusal("get_rates2.php", "user=demo", "field pass is missing");
}

TEST_F(EndpointsTest, tellsAJobsFacts)
{
    (void)client.post("jobdetails.php", registration());
    const std::string body = account + "&depo=883&";
    const std::string endpoint = "miscstuff.php";
    EXPECT_EQ(client.post(endpoint, body + "field=delivery_option"), "Deposition");
    service.setDeliveryOption("ShortCaption");
    EXPECT_EQ(client.post(endpoint, body + "field=delivery_option"), "ShortCaption");
    EXPECT_EQ(client.post(endpoint, body + "field=deponent2"), "O'Neil");
    EXPECT_EQ(client.post(endpoint, body + "field=depo_date"), "2011-03-04");
    EXPECT_EQ(client.post(endpoint, body), "A&B=C D");
    EXPECT_EQ(client.post(endpoint, account + "&depo=1&"), "Unknown deposition");
    expectRefusal(endpoint, account + "&depo=883", "the body does not go on after field depo");
    expectRefusal(endpoint, account + "&depo=x&", "field depo is not a number");
    expectRefusal(endpoint, body + "field=other", "nothing is known of the field asked for");
    expectRefusal(endpoint, account + "&field=deponent2", "field depo is missing");
}

TEST_F(EndpointsTest, refusesTheWrongMethodOrContentType)
{
    const auto got = client.get("/saltine/cauthorize2.php");
    ASSERT_TRUE(got);
    EXPECT_EQ(got->status, 200);
    EXPECT_EQ(got->body, "Bad request: this is asked with POST");
    const auto json = client.tryPost("cauthorize2.php", account, "application/json");
    ASSERT_TRUE(json);
    EXPECT_EQ(json->body, "Bad request: the content type is not application/x-www-form-urlencoded");
    EXPECT_EQ(client.postParts("cauthorize2.php", DemoClient::uploadParts("a", "b")),
              "Bad request: the content type is not application/x-www-form-urlencoded");
    EXPECT_EQ(service.refusals().size(), 3U);
}

TEST_F(EndpointsTest, servesItsPagesAndNothingElse)
{
    for (const char* path : {"/login", "/saltine/setup_custom_options.php"}) {
        const auto page = client.get(path);
        ASSERT_TRUE(page);
        EXPECT_EQ(page->status, 200);
        EXPECT_THAT(page->body, HasSubstr("<html"));
    }
    for (const char* path : {"/", "/saltine/other.php", "/cauthorize2.php", "/saltine/x/cauthorize2.php"}) {
        const auto page = client.get(path);
        ASSERT_TRUE(page);
        EXPECT_EQ(page->status, 404) << path;
    }
}

TEST_F(EndpointsTest, theFileHostServesTheDemoDisc)
{
    httplib::Client files("127.0.0.1", service.filePort());
    for (const char* path : {"/DemoDisc/OstrovizerDownloader.exe", "/DemoDisc/autorun.inf", "/Korvane_ReadMe.txt"}) {
        const auto file = files.Get(path);
        ASSERT_TRUE(file);
        EXPECT_EQ(file->status, 200);
        EXPECT_THAT(file->body, HasSubstr("stands in for"));
    }
    EXPECT_EQ(files.Get("/saltine/cauthorize2.php")->status, 404);
    EXPECT_EQ(service.count("autorun.inf"), 1);
    EXPECT_TRUE(service.requests("autorun.inf").front().onFileHost);
}

TEST_F(EndpointsTest, recordsWhatItWasAsked)
{
    const std::string body = "user=demo&pass=" + std::string(20000, 'x');
    EXPECT_EQ(client.post("cauthorize2.php", body), "Invalid user name or password");
    (void)client.post("get_rates2.php", account);
    ASSERT_EQ(service.requests().size(), 2U);
    const Request request = service.requests("cauthorize2.php").front();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/saltine/cauthorize2.php");
    EXPECT_EQ(request.body, body);
    EXPECT_EQ(valueOf(request.headers, "Content-Length"), std::to_string(body.size()));
    EXPECT_EQ(request.status, 200);
    EXPECT_EQ(request.reply, "Invalid user name or password");
    EXPECT_FALSE(request.refused);
    EXPECT_EQ(service.count("get_rates2.php"), 1);
    EXPECT_EQ(service.count("checkstatus.php"), 0);
    service.clearRequests();
    EXPECT_EQ(service.count("get_rates2.php"), 0);
}

TEST(ServiceLog, hasALineForEachRequestAndNeverAPassword)
{
    std::vector<std::string> lines;
    Options options;
    options.log = [&lines](const std::string& line) { lines.push_back(line); };
    Service service(options);
    const DemoClient client(service);
    (void)client.post("cauthorize2.php", account);
    (void)client.post("cauthorize2.php", account + "&x=1");
    (void)client.post("checkstatus.php", account + "&contactID=4711");
    service.stop();
    EXPECT_THAT(lines,
                ElementsAre("POST /saltine/cauthorize2.php 200 OK: 4711",
                            "POST /saltine/cauthorize2.php 200 Bad request: something unknown follows field pass",
                            "POST /saltine/checkstatus.php 200 (empty)"));
}
