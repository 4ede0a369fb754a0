#include "network/BlockingCalls.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace kst {

namespace {

// Systems have a flag for the socket or for each call. Where both exist, older versions of the system have
// only the socket's.
#ifdef SO_NOSIGPIPE
constexpr int kSendFlags = 0;

bool silenceBrokenPipe(int socket) {
    const int on = 1;
    return ::setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on) == 0;
}
#else
constexpr int kSendFlags = MSG_NOSIGNAL;

bool silenceBrokenPipe(int) { return true; }
#endif

/// True at the event or the socket's failure; false at the deadline.
bool waitFor(int socket, short event, Deadline deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Deadline::clock::now());
        pollfd poll{socket, event, 0};
        const int answer = ::poll(&poll, 1, static_cast<int>(std::max<long long>(left.count(), 0)));
        if (answer >= 0 || errno != EINTR) return answer > 0;
    }
}

} // namespace

Socket::Socket(int family, int type, int protocol)
    : socket_(::socket(family, type, protocol)),
      isReady_(::fcntl(socket_, F_SETFL, O_NONBLOCK) == 0 && silenceBrokenPipe(socket_)) {}

Socket::~Socket() {
    if (socket_ >= 0) ::close(socket_);
}

int connectBy(Deadline deadline, int socket, const sockaddr& address, socklen_t size) {
    if (::connect(socket, &address, size) == 0) return 0;
    if (errno != EINPROGRESS && errno != EINTR) return errno;
    if (!waitFor(socket, POLLOUT, deadline)) return ETIMEDOUT;
    int error = 0;
    socklen_t errorSize = sizeof error;
    return ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &errorSize) == 0 ? error : errno;
}

bool sendAtOnce(int socket, std::string_view bytes) {
    return ::send(socket, bytes.data(), bytes.size(), kSendFlags) == static_cast<ssize_t>(bytes.size());
}

ssize_t receiveBy(Deadline deadline, int socket, char* bytes, std::size_t size) {
    return waitFor(socket, POLLIN, deadline) ? ::recv(socket, bytes, size, 0) : -1;
}

} // namespace kst
