#include "BlockingCalls.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace kst {

namespace {

// A system has a flag of the socket or of each call. Where there are both, older versions of the system know
// the socket's alone.
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

bool wouldBlock(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

std::atomic<int> gRunning{0};

/// Counts a thread that runs, from before it starts.
class RunningMark {
public:
    RunningMark() : isOneTooMany_(gRunning.fetch_add(1) >= kMostLeftBehind) {}
    RunningMark(RunningMark&& that) noexcept
        : isOneTooMany_(that.isOneTooMany_), counts_(std::exchange(that.counts_, false)) {}
    RunningMark(const RunningMark&) = delete;
    RunningMark& operator=(const RunningMark&) = delete;
    RunningMark& operator=(RunningMark&&) = delete;
    ~RunningMark() { end(); }

    void end() {
        if (std::exchange(counts_, false)) gRunning.fetch_sub(1);
    }
    [[nodiscard]] bool isOneTooMany() const { return isOneTooMany_; }

private:
    bool isOneTooMany_;
    bool counts_ = true;
};

} // namespace

void Descriptor::close() {
    const int descriptor = std::exchange(descriptor_, kNone);
    if (descriptor >= 0) ::close(descriptor);
}

bool WaitFor(int descriptor, short events, Deadline deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Deadline::clock::now());
        const auto wait = std::clamp(left, std::chrono::milliseconds{0}, kLongestWait);
        pollfd poll{descriptor, events, 0};
        const int answer = ::poll(&poll, 1, static_cast<int>(wait.count()));
        if (answer > 0) return true;
        if (answer < 0 && errno != EINTR) return false;
        if (Deadline::clock::now() >= deadline) return false;
    }
}

Descriptor MakeSocket(int family, int type, int protocol) {
    Descriptor socket(::socket(family, type, protocol));
    if (!socket.isOpen()) return socket;
    const int flags = ::fcntl(socket.get(), F_GETFL);
    if (flags < 0 || ::fcntl(socket.get(), F_SETFL, flags | O_NONBLOCK) != 0 ||
        !silenceBrokenPipe(socket.get()))
        socket.close();
    return socket;
}

int ConnectBy(Deadline deadline, int socket, const sockaddr& address, socklen_t size) {
    if (::connect(socket, &address, size) == 0) return 0;
    if (errno != EINPROGRESS && errno != EINTR) return errno;
    if (!WaitFor(socket, POLLOUT, deadline)) return ETIMEDOUT;
    int error = 0;
    socklen_t errorSize = sizeof error;
    return ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &errorSize) == 0 ? error : errno;
}

bool SendBy(Deadline deadline, int socket, const char* bytes, std::size_t size) {
    for (;;) {
        if (!WaitFor(socket, POLLOUT, deadline)) return false;
        const ssize_t sent = ::send(socket, bytes, size, kSendFlags);
        if (sent >= 0) return static_cast<std::size_t>(sent) == size;
        if (!wouldBlock(errno)) return false;
    }
}

ssize_t ReceiveBy(Deadline deadline, int socket, char* bytes, std::size_t size) {
    for (;;) {
        if (!WaitFor(socket, POLLIN, deadline)) return -1;
        const ssize_t received = ::recv(socket, bytes, size, 0);
        if (received >= 0 || !wouldBlock(errno)) return received;
    }
}

bool FinishesBy(Deadline deadline, std::function<void()> work) {
    RunningMark mark;
    std::array<int, 2> ends{};
    if (mark.isOneTooMany() || ::pipe(ends.data()) != 0) return false;
    // The thread's end closes when the work has ended, which wakes the caller: a condition variable would
    // wait by the wall clock on some systems.
    const Descriptor wait(ends[0]);
    Descriptor signal(ends[1]);
    try {
        std::thread([work = std::move(work), mark = std::move(mark), signal = std::move(signal)]() mutable {
            work();
            work = nullptr;
            mark.end();
            signal.close();
        }).detach();
    } catch (const std::system_error&) {
        return false;
    }
    return WaitFor(wait.get(), POLLIN, deadline);
}

} // namespace kst
