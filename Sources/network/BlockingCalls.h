#pragma once

/// Connecting and receiving with a deadline.
///
/// The host calls the plug-in's functions on the app's main thread. The system ends an app whose main thread
/// hangs for about 20 seconds. So poll waits for a socket, by the monotonic clock.

#include <chrono>
#include <cstddef>
#include <string_view>
#include <sys/socket.h>

namespace kst {

using Deadline = std::chrono::steady_clock::time_point;

/// Owns a socket for the calls below. The socket does not block. Writing to a closed connection gives an
/// error and raises no signal.
class Socket {
public:
    Socket(int family, int type, int protocol);
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket();

    /// False when the system could not make the socket.
    [[nodiscard]] bool isReady() const { return isReady_; }
    [[nodiscard]] int get() const { return socket_; }

private:
    int socket_;
    bool isReady_;
};

/// Returns 0 or the system's error number; ETIMEDOUT at the deadline.
int connectBy(Deadline deadline, int socket, const sockaddr& address, socklen_t size);

/// Sends all bytes in one call, without waiting. False when that fails.
bool sendAtOnce(int socket, std::string_view bytes);

/// Receives once, up to `size` bytes, and returns their number. 0 when the other side has closed; negative
/// when receiving fails or the deadline passes.
ssize_t receiveBy(Deadline deadline, int socket, char* bytes, std::size_t size);

} // namespace kst
