#pragma once

// The sockets of this process that a listening port accepted. The HTTP library keeps them to itself, while a
// connection can only be reset, and an idle one only be ended, through its socket.
namespace DemoService::Sockets {

// Resets the connection from that peer, so that it reads a reset and not an end.
void reset(int localPort, int peerPort);
// Ends every connection of the port; threads that wait for its bytes wake up.
void endAll(int localPort);

} // namespace DemoService::Sockets
