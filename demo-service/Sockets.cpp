#include "demo-service/Sockets.h"

#include <arpa/inet.h>
#include <cstdlib>
#include <dirent.h>
#include <functional>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace DemoService::Sockets {
namespace {

using NameFunction = int (*)(int, sockaddr*, socklen_t*);

int portOf(int descriptor, NameFunction nameFunction)
{
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    if (nameFunction(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        return -1;
    if (address.ss_family == AF_INET)
        return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
    if (address.ss_family == AF_INET6)
        return ntohs(reinterpret_cast<const sockaddr_in6&>(address).sin6_port);
    return -1;
}

std::vector<int> openDescriptors()
{
    std::vector<int> descriptors;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr)
        if (entry->d_name[0] != '.')
            descriptors.push_back(std::atoi(entry->d_name));
    return descriptors;
}

// Each is looked at through a duplicate: the owner may close its descriptor at any time, and the number may then be
// somebody else's.
void forEachConnection(int localPort, const std::function<void(int descriptor, int peerPort)>& act)
{
    for (const int descriptor : openDescriptors()) {
        const int duplicate = dup(descriptor);
        if (duplicate < 0)
            continue;
        const int peerPort = portOf(duplicate, getpeername);
        if (peerPort > 0 && portOf(duplicate, getsockname) == localPort)
            act(duplicate, peerPort);
        close(duplicate);
    }
}

} // namespace

void reset(int localPort, int peerPort)
{
    forEachConnection(localPort, [peerPort](int descriptor, int peer) {
        if (peer != peerPort)
            return;
        // Dissolving the association of a connected socket sends a reset at once.
        sockaddr none{};
        none.sa_family = AF_UNSPEC;
        connect(descriptor, &none, sizeof none);
    });
}

void endAll(int localPort)
{
    forEachConnection(localPort, [](int descriptor, int) { shutdown(descriptor, SHUT_RDWR); });
}

} // namespace DemoService::Sockets
