#include "DemoClient.h"

#include "support/TemporaryHome.h"
#include "support/Waiting.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <unzip.h>

using namespace DemoService;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string nameOfFile(const DemoClient& client, int number)
{
    return client.post("test_downloadjob2.php",
                       fmt::format("{}&depo=883&file_num={}&just_get_name=1", account, number));
}

std::string contentsOfFile(const DemoClient& client, int number)
{
    return client.post("test_downloadjob2.php",
                       fmt::format("{}&depo=883&starting_point=0&file_num={}", account, number));
}

std::vector<std::string> namesInside(const std::string& archivePath)
{
    std::vector<std::string> names;
    unzFile archive = unzOpen(archivePath.c_str());
    EXPECT_NE(archive, nullptr);
    for (int found = unzGoToFirstFile(archive); found == UNZ_OK; found = unzGoToNextFile(archive)) {
        std::string name(200, '\0');
        unz_file_info information{};
        unzGetCurrentFileInfo(archive, &information, name.data(), name.size(), nullptr, 0, nullptr, 0);
        name.resize(information.size_filename);
        names.push_back(name);
        // Reading to the end checks the sum.
        EXPECT_EQ(unzOpenCurrentFile(archive), UNZ_OK);
        std::string bytes(information.uncompressed_size, '\0');
        EXPECT_EQ(unzReadCurrentFile(archive, bytes.data(), static_cast<unsigned>(bytes.size())),
                  static_cast<int>(bytes.size()));
        EXPECT_EQ(unzCloseCurrentFile(archive), UNZ_OK);
    }
    unzClose(archive);
    return names;
}

} // namespace

using JobRoad = TemporaryHome;

TEST_F(JobRoad, leadsFromRegistrationToDelivery)
{
    const Service service;
    const DemoClient client(service);
    client.sendWholeJob(2);
    EXPECT_EQ(client.status(), "Depo: 883 Smith.txt Joined\n"
                               "Segment: 883 1 Joined 10000 92\n"
                               "Segment: 883 2 Joined 10000 95\n");
    EXPECT_EQ(nameOfFile(client, 0), "Smith.txt");
    EXPECT_EQ(nameOfFile(client, 1), "C:\\out\\Smith_rl.xml");
    EXPECT_EQ(nameOfFile(client, 13), "Smith.zip");
    EXPECT_EQ(nameOfFile(client, 14), "");
    EXPECT_EQ(contentsOfFile(client, 0), "00:00:00.000  one\r\n00:00:06.666  two\r\n00:00:13.333  three & four\r\n");
    const QString zip = writeFile(QStringLiteral("Smith.zip"), QByteArray::fromStdString(contentsOfFile(client, 13)));
    EXPECT_THAT(namesInside(zip.toStdString()),
                ElementsAre("index.html", "transcript.json", "data/sync.txt", "ReadMe.txt"));
    EXPECT_EQ(service.job(883)->deliverables.size(), 14U);
    EXPECT_FALSE(service.job(883)->delivered);
    EXPECT_EQ(contentsOfFile(client, 15), "Bad request: field file_num is beyond the job's files");
    EXPECT_FALSE(service.job(883)->delivered);
    EXPECT_EQ(contentsOfFile(client, 14), "");
    EXPECT_TRUE(service.job(883)->delivered);
    EXPECT_THAT(client.status(), HasSubstr("Depo: 883 Smith.txt Done\n"));
}

TEST_F(JobRoad, deliversTheFormatThatWasOrdered)
{
    const Service service;
    const DemoClient client(service);
    client.sendWholeJob(1, "PTF/VID");
    EXPECT_EQ(nameOfFile(client, 0), "Smith.ptf");
    EXPECT_EQ(nameOfFile(client, 1), "Smith.vid");
    EXPECT_EQ(nameOfFile(client, 2), "");
}

TEST_F(JobRoad, hasNoFilesBeforeTheJobIsJoined)
{
    Options options;
    options.turnaround = 1h;
    Service service(options);
    const DemoClient client(service);
    client.sendWholeJob(1);
    EXPECT_THAT(client.status(), HasSubstr("Depo: 883 Smith.txt Splitting\n"));
    EXPECT_EQ(nameOfFile(client, 0), "");
    EXPECT_EQ(contentsOfFile(client, 0), "This deposition is not ready");
    EXPECT_FALSE(service.job(883)->delivered);
    service.setTurnaround(0ms);
    EXPECT_THAT(client.status(), HasSubstr("Depo: 883 Smith.txt Joined\n"));
    EXPECT_EQ(nameOfFile(client, 0), "Smith.txt");
}

TEST_F(JobRoad, theTurnaroundPassesByItself)
{
    Options options;
    options.turnaround = 300ms;
    const Service service(options);
    const DemoClient client(service);
    client.sendWholeJob(1);
    EXPECT_TRUE(Waiting::until([&] { return service.job(883)->word == "Joined"; }));
}

TEST_F(JobRoad, refusesABrokenDownload)
{
    const Service service;
    const DemoClient client(service);
    client.sendWholeJob(1);
    const std::string endpoint = "test_downloadjob2.php";
    EXPECT_EQ(client.post(endpoint, account + "&depo=883&file_num=0"), "Bad request: field just_get_name is missing");
    EXPECT_EQ(client.post(endpoint, account + "&depo=883&file_num=0&just_get_name=2"),
              "Bad request: field just_get_name is not the constant that it must be");
    EXPECT_EQ(client.post(endpoint, account + "&depo=883&file_num=0&starting_point=0"),
              "Bad request: field starting_point is out of order");
    EXPECT_EQ(client.post(endpoint, account + "&depo=883&starting_point=5&file_num=0"),
              "Bad request: field starting_point is not the constant that it must be");
    EXPECT_EQ(client.post(endpoint, account + "&depo=883&starting_point=0&file_num=-1"),
              "Bad request: field file_num is not a number");
    EXPECT_EQ(client.post(endpoint, account + "&depo=5&starting_point=0&file_num=0"), "Unknown deposition");
}

TEST_F(JobRoad, asksForASegmentAgain)
{
    Options options;
    options.again = {{1, Channels::Mono}};
    Service service(options);
    const DemoClient client(service);
    client.sendWholeJob(1);
    EXPECT_EQ(client.status(), "Depo: 883 Smith.txt Splitting\nSegment: 883 1 Processing_Media_Mono 10000 -1\n");
    EXPECT_EQ(nameOfFile(client, 0), "");
    EXPECT_EQ(client.upload("5120_883_1.mp3[clip1.mov,10000]", "mono"), "UPLOAD COMPLETE");
    EXPECT_THAT(client.status(), HasSubstr("Depo: 883 Smith.txt Joined\n"));
    EXPECT_EQ(service.job(883)->segments.front().audio, "mono");
    EXPECT_TRUE(service.askAgain(883, {1, Channels::Stereo}));
    EXPECT_THAT(client.status(), HasSubstr("Segment: 883 1 Processing_Media_Stereo 10000 -1\n"));
}

TEST_F(JobRoad, canBeSteeredWhileItRuns)
{
    Service service;
    const DemoClient client(service);
    EXPECT_EQ(service.addServerJob("Far Away.txt", 2), 883);
    EXPECT_THAT(client.status(), HasSubstr("Depo: 883 Far Away.txt Joined\nSegment: 883 1 Joined 247000 "));
    EXPECT_TRUE(service.setDeliverables(883, {{"D:\\x\\one.txt", "1"}}));
    EXPECT_EQ(nameOfFile(client, 0), "D:\\x\\one.txt");
    EXPECT_EQ(contentsOfFile(client, 0), "1");
    EXPECT_TRUE(service.holdWord(883, "Pondering"));
    EXPECT_THAT(client.status(), HasSubstr("Depo: 883 Far Away.txt Pondering\n"));
    EXPECT_TRUE(service.holdWord(883, ""));
    EXPECT_TRUE(service.voidJob(883));
    EXPECT_THAT(client.status(), HasSubstr("Depo: 883 Far Away.txt VOID\n"));
}
