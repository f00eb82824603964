#include "DemoClient.h"

#include "support/TemporaryHome.h"

#include <gmock/gmock.h>

using namespace DemoService;
using testing::ElementsAre;

namespace {

const std::string segmentName = "5120_883_1.mp3[clip1.mov,12000]";

class UploadsTest : public TemporaryHome
{
protected:
    UploadsTest()
    {
        Options options;
        options.saveUploads = path(QStringLiteral("received")).toStdString();
        service.emplace(options);
        client.emplace(*service);
        EXPECT_EQ(client->post("jobdetails.php", registration()), "5120 883");
        client->announce(883, 1);
    }

    // An upload of the segment with one part exchanged.
    std::string uploadWith(std::size_t part, const httplib::MultipartFormData& other)
    {
        DemoClient::Parts parts = DemoClient::uploadParts(segmentName, "audio");
        parts[part] = other;
        return client->postParts("test_custupload2.php", parts);
    }

    std::optional<Service> service;
    std::optional<DemoClient> client;
};

} // namespace

TEST_F(UploadsTest, takesASegment)
{
    const std::string bytes("\0\r\n--\r\n\xff audio", 13);
    EXPECT_EQ(client->upload(segmentName, bytes), "UPLOAD COMPLETE");
    const Segment segment = service->job(883)->segments.front();
    EXPECT_TRUE(segment.uploaded);
    EXPECT_EQ(segment.audio, bytes);
    EXPECT_EQ(segment.uploadName, segmentName);
    EXPECT_EQ(segment.uploadDurationMs, 12000);
    EXPECT_EQ(readFile(path(QStringLiteral("received/5120_883_1.mp3"))).toStdString(), bytes);
}

TEST_F(UploadsTest, takesTheTranscript)
{
    EXPECT_EQ(client->upload("5120_883.txt[Smith.txt,-1]", "text"), "UPLOAD COMPLETE");
    EXPECT_EQ(service->job(883)->transcript, "text");
    EXPECT_EQ(readFile(path(QStringLiteral("received/5120_883.txt"))).toStdString(), "text");
}

TEST_F(UploadsTest, takesAnEmptyFile)
{
    EXPECT_EQ(client->upload(segmentName, ""), "UPLOAD COMPLETE");
    EXPECT_TRUE(service->job(883)->segments.front().uploaded);
}

TEST_F(UploadsTest, takesALargeFile)
{
    std::string bytes(3'000'000, '\0');
    for (std::size_t index = 0; index < bytes.size(); ++index)
        bytes[index] = static_cast<char>(index * 31 >> 3);
    EXPECT_EQ(client->upload(segmentName, bytes), "UPLOAD COMPLETE");
    EXPECT_TRUE(service->job(883)->segments.front().audio == bytes);
}

TEST_F(UploadsTest, takesNamesBeyondAscii)
{
    EXPECT_EQ(
        client->post("jobdetails.php", changed(registration(), "Name=Smith.txt", "Name=M%C3%BCller%20%22X%22.txt")),
        "5121 884");
    // Clients write a quote inside a part's file name as %22.
    EXPECT_EQ(client->upload("5121_884.txt[M\xc3\xbcller %22X%22.txt,-1]", "text"), "UPLOAD COMPLETE");
}

TEST_F(UploadsTest, recordsThePartsInOrder)
{
    (void)client->upload(segmentName, "audio");
    const Request request = service->requests("test_custupload2.php").front();
    EXPECT_EQ(request.body, "");
    ASSERT_EQ(request.parts.size(), 5U);
    EXPECT_EQ(request.parts[0].name, "user");
    EXPECT_EQ(request.parts[1].content, "demo1234");
    EXPECT_EQ(request.parts[2].content, "5");
    EXPECT_EQ(request.parts[3].name, "file");
    EXPECT_EQ(request.parts[3].fileName, segmentName);
    EXPECT_EQ(request.parts[3].contentType, "application/octet-stream");
    EXPECT_EQ(request.parts[3].content, "audio");
    EXPECT_EQ(request.parts[4].content, "Submit Query");
}

TEST_F(UploadsTest, refusesPartsThatAreNotAsTheyMustBe)
{
    EXPECT_EQ(uploadWith(0, {"usr", "demo", "", ""}), "Bad request: part user is missing");
    EXPECT_EQ(uploadWith(2, {"file_size", "6", "", ""}), "Bad request: part file_size is not the 5 bytes of part file");
    EXPECT_EQ(uploadWith(3, {"file", "audio", segmentName, "audio/mpeg"}),
              "Bad request: the content type of part file is not application/octet-stream");
    EXPECT_EQ(uploadWith(4, {"submit", "Submit", "", ""}),
              "Bad request: part submit is not the constant that it must be");
    DemoClient::Parts parts = DemoClient::uploadParts(segmentName, "audio");
    std::swap(parts[0], parts[1]);
    EXPECT_EQ(client->postParts("test_custupload2.php", parts), "Bad request: part user is out of order");
    parts = DemoClient::uploadParts(segmentName, "audio");
    parts.push_back({"more", "1", "", ""});
    EXPECT_EQ(client->postParts("test_custupload2.php", parts), "Bad request: something unknown follows part submit");
    parts.resize(4);
    EXPECT_EQ(client->postParts("test_custupload2.php", parts), "Bad request: part submit is missing");
    EXPECT_EQ(client->post("test_custupload2.php", account),
              "Bad request: the content type is not multipart/form-data");
    EXPECT_EQ(uploadWith(1, {"pass", "nope", "", ""}), "Invalid user name or password");
    EXPECT_FALSE(service->job(883)->segments.front().uploaded);
}

TEST_F(UploadsTest, refusesNamesThatBelongToNoJob)
{
    EXPECT_EQ(client->upload("clip1.mp3", "x"), "Bad request: the file name names no upload of a job");
    EXPECT_EQ(client->upload("5120_884_1.mp3[clip1.mov,1000]", "x"), "Unknown order and deposition");
    EXPECT_EQ(client->upload("5121_883_1.mp3[clip1.mov,1000]", "x"), "Unknown order and deposition");
    EXPECT_EQ(client->upload("5120_883_2.mp3[clip2.mov,1000]", "x"),
              "Bad request: the file name has a segment that was not announced");
    EXPECT_EQ(client->upload("5120_883_1.mp3[clip2.mov,1000]", "x"),
              "Bad request: the file name has another recording than the segment");
    EXPECT_EQ(client->upload("5120_883.txt[Jones.txt,-1]", "x"),
              "Bad request: the file name has another transcript than the job");
    EXPECT_EQ(service->job(883)->transcript, std::nullopt);
    EXPECT_FALSE(service->job(883)->segments.front().uploaded);
}

TEST_F(UploadsTest, keepsLogs)
{
    EXPECT_EQ(client->postParts("qpt_debug_upload.php", DemoClient::uploadParts("debug.txt", "a line\n")),
              "UPLOAD COMPLETE");
    ASSERT_EQ(service->logs().size(), 1U);
    EXPECT_EQ(service->logs().front().name, "debug.txt");
    EXPECT_EQ(service->logs().front().content, "a line\n");
    EXPECT_EQ(readFile(path(QStringLiteral("received/log_1.txt"))), QByteArray("a line\n"));
    EXPECT_EQ(client->postParts("qpt_debug_upload.php", DemoClient::uploadParts("../debug.txt", "x")),
              "Bad request: the log has no file name");
    EXPECT_EQ(service->logs().size(), 1U);
}
