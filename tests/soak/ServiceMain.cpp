// The service of a soak: the demo service, told on standard input what to do next, one order a line:
//   fault ENDPOINT KIND [DATA]   the next request to the endpoint goes wrong
//   again DEPO                   asks for the job's first segment again
//   forget DEPO                  answered on standard output with "forgotten DEPO": the service lists the job no more
// It ends with its standard input.

#include "demo-service/Service.h"

#include <fmt/format.h>

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>

namespace {

DemoService::Override overrideOf(const std::string& kind, const std::string& data)
{
    if (kind == "reply")
        return {.reply = data, .times = 1};
    if (kind == "reset")
        return {.reset = true, .times = 1};
    if (kind == "cut")
        return {.cutAt = 6, .times = 1};
    if (kind == "slow")
        return {.delay = std::chrono::milliseconds(700), .times = 1};
    return {.status = 503, .times = 1};
}

void obey(DemoService::Service& service, const std::string& order)
{
    std::istringstream words(order);
    std::string verb;
    words >> verb;
    if (verb == "fault") {
        std::string endpoint;
        std::string kind;
        std::string data;
        words >> endpoint >> kind >> std::ws;
        std::getline(words, data);
        service.addOverride(endpoint, overrideOf(kind, data));
    } else if (verb == "again") {
        int depo = 0;
        words >> depo;
        service.askAgain(depo, {.segment = 1, .channels = DemoService::Channels::Stereo});
    } else if (verb == "forget") {
        int depo = 0;
        words >> depo;
        service.forgetJob(depo);
        service.clearRequests();
        std::fputs(fmt::format("forgotten {}\n", depo).c_str(), stdout);
        std::fflush(stdout);
    }
}

} // namespace

int main()
{
    DemoService::Options options;
    options.turnaround = std::chrono::milliseconds(200);
    DemoService::Service service(options);
    std::fputs(fmt::format("{}\n{}\n", service.secureHost(), service.fileHost()).c_str(), stdout);
    std::fflush(stdout);
    std::string order;
    while (std::getline(std::cin, order))
        obey(service, order);
    service.stop();
    return 0;
}
