#pragma once

/// Connecting and receiving that end at a deadline.
///
/// The host calls the plug-in's functions on the app's main thread, and the system ends an app whose main
/// thread hangs for about 20 seconds. Sockets are therefore waited for with poll, by the monotonic clock.

#include <chrono>
#include <cstddef>
#include <string_view>
#include <sys/socket.h>

namespace kst {

using Deadline = std::chrono::steady_clock::time_point;

/// Owns a socket for the calls below: it does not block, and writing to a closed connection is an error and
/// no signal.
class Socket {
public:
    Socket(int family, int type, int protocol);
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket();

    /// False when the system has none to give.
    [[nodiscard]] bool isReady() const { return isReady_; }
    [[nodiscard]] int get() const { return socket_; }

private:
    int socket_;
    bool isReady_;
};

/// 0, or the system's error number; ETIMEDOUT at the deadline.
int connectBy(Deadline deadline, int socket, const sockaddr& address, socklen_t size);

/// Sends all bytes in one call, without waiting. False when that fails.
bool sendAtOnce(int socket, std::string_view bytes);

/// Receives once, up to `size` bytes. 0 when the other side has closed, a negative number when receiving
/// fails or the deadline passes.
ssize_t receiveBy(Deadline deadline, int socket, char* bytes, std::size_t size);

} // namespace kst
