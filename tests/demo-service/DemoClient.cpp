#include "DemoClient.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

httplib::Result DemoClient::tryPost(const std::string& endpoint, const std::string& body,
                                    const std::string& contentType) const
{
    httplib::SSLClient client("127.0.0.1", m_port);
    client.enable_server_certificate_verification(false);
    client.set_tcp_nodelay(true);
    client.set_read_timeout(60);
    return client.Post("/saltine/" + endpoint, body, contentType);
}

std::string DemoClient::post(const std::string& endpoint, const std::string& body) const
{
    const httplib::Result result = tryPost(endpoint, body);
    return result ? result->body : "(no reply)";
}

httplib::Result DemoClient::get(const std::string& path) const
{
    httplib::SSLClient client("127.0.0.1", m_port);
    client.enable_server_certificate_verification(false);
    client.set_tcp_nodelay(true);
    return client.Get(path);
}

DemoClient::Parts DemoClient::uploadParts(const std::string& fileName, const std::string& bytes)
{
    return {{"user", "demo", "", ""},
            {"pass", "demo1234", "", ""},
            {"file_size", std::to_string(bytes.size()), "", ""},
            {"file", bytes, fileName, "application/octet-stream"},
            {"submit", "Submit Query", "", ""}};
}

std::string DemoClient::postParts(const std::string& endpoint, const Parts& parts) const
{
    httplib::SSLClient client("127.0.0.1", m_port);
    client.enable_server_certificate_verification(false);
    client.set_tcp_nodelay(true);
    const httplib::Result result = client.Post("/saltine/" + endpoint, httplib::Headers{}, parts);
    return result ? result->body : "(no reply)";
}

std::string DemoClient::upload(const std::string& fileName, const std::string& bytes) const
{
    return postParts("test_custupload2.php", uploadParts(fileName, bytes));
}

std::string DemoClient::status() const
{
    return post("checkstatus.php", account + "&contactID=4711");
}

void DemoClient::announce(int depoNumber, int segment) const
{
    EXPECT_EQ(
        post("add_segment.php",
             fmt::format("{}&depo={}&segment={}&src_name=clip{}.mov&duration=12345&prod=11&size=99&mod=2025-12-30 "
                         "23:59:58",
                         account, depoNumber, segment, segment)),
        "");
}

void DemoClient::sendWholeJob(int segments, const std::string& format) const
{
    const std::string numbers = post("jobdetails.php", registration(segments, format));
    const std::size_t blank = numbers.find(' ');
    ASSERT_NE(blank, std::string::npos) << numbers;
    const std::string order = numbers.substr(0, blank);
    const int depoNumber = std::stoi(numbers.substr(blank + 1));
    for (int segment = 1; segment <= segments; ++segment) {
        announce(depoNumber, segment);
        EXPECT_EQ(upload(fmt::format("{}_{}_{}.mp3[clip{}.mov,10000]", order, depoNumber, segment, segment),
                         fmt::format("audio {}", segment)),
                  "UPLOAD COMPLETE");
    }
    EXPECT_EQ(upload(fmt::format("{}_{}.txt[Smith.txt,-1]", order, depoNumber), "one\r\ntwo\nthree & four\n"),
              "UPLOAD COMPLETE");
}

std::string registration(int segments, const std::string& format, const std::string& machine)
{
    return fmt::format("{}&enteredBy=MacQPT0.1.0&totalSegmentCount={}&deponentLast=O'Neil&deponentFirst=JR%20B"
                       "&depoDate=2011-03-04&transcriptSourceFormat=txt&transcriptDestinationFormat={}"
                       "&shortCaption=A&B=C%20D&originalTranscriptName=Smith.txt&autoSyncOnly=1&serviceLevel=11"
                       "&rush=0&translation=0&groupBy=Deposition&comp={}",
                       account, segments, format, machine);
}

std::string changed(std::string body, const std::string& piece, const std::string& other)
{
    const std::size_t place = body.find(piece);
    EXPECT_NE(place, std::string::npos) << piece;
    return place == std::string::npos ? body : body.replace(place, piece.size(), other);
}
