#pragma once

#include "demo-service/Service.h"

#include <httplib.h>

#include <optional>
#include <string>
#include <vector>

// A client for the tests of the demo service: it sends what it is told, right or wrong.
class DemoClient
{
public:
    explicit DemoClient(const DemoService::Service& service) : DemoClient(service.securePort()) {}
    explicit DemoClient(int securePort) : m_port(securePort) {}

    // The reply's text; "(no reply)" when there was none.
    [[nodiscard]] std::string post(const std::string& endpoint, const std::string& body) const;
    [[nodiscard]] httplib::Result tryPost(const std::string& endpoint, const std::string& body,
                                          const std::string& contentType = "application/x-www-form-urlencoded") const;
    [[nodiscard]] httplib::Result get(const std::string& path) const;

    using Parts = httplib::MultipartFormDataItems;
    [[nodiscard]] static Parts uploadParts(const std::string& fileName, const std::string& bytes);
    [[nodiscard]] std::string postParts(const std::string& endpoint, const Parts& parts) const;
    [[nodiscard]] std::string upload(const std::string& fileName, const std::string& bytes) const;

    [[nodiscard]] std::string status() const;
    // Registers a job with so many segments, announces and uploads them and the transcript "Smith.txt".
    void sendWholeJob(int segments, const std::string& format = "all") const;
    void announce(int depoNumber, int segment) const;

private:
    int m_port;
};

inline const std::string account = "user=demo&pass=demo1234";
// The registration of a job with two segments.
[[nodiscard]] std::string registration(int segments = 2, const std::string& format = "all",
                                       const std::string& machine = "C02X");
// The same body with one piece of it exchanged; the test ends when the piece is not in it.
[[nodiscard]] std::string changed(std::string body, const std::string& piece, const std::string& other);
