#pragma once

/// Calls that may block, done until a moment at the latest.
///
/// The host calls the plug-in's functions on the app's main thread, and the system ends an app whose main
/// thread hangs for about 20 seconds. Every wait for the network therefore ends at a deadline of the
/// monotonic clock. Sockets are waited for with poll. The system's resolver has no time-out that can be set
/// everywhere, and cannot be stopped: it runs on a thread of its own that shares nothing with the caller but
/// what both own together. A resolver that is late is left to itself; its answer is thrown away when it
/// comes. The code that such a thread runs stays: an image with Objective-C classes is never unloaded.

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <utility>

namespace kst {

using Deadline = std::chrono::steady_clock::time_point;

/// The longest that one call of a function waits for the network, whatever the network does: half of what the
/// system bears, less half a second for everything else in the call. All other time-outs are shares of it.
constexpr std::chrono::milliseconds kLongestWait{9500};

/// Owns an open file or socket, or none; closes it.
class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& that) noexcept : descriptor_(std::exchange(that.descriptor_, kNone)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { close(); }

    void close();
    [[nodiscard]] int get() const { return descriptor_; }
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

private:
    static constexpr int kNone = -1;
    int descriptor_;
};

/// True as soon as one of poll's events has come, or the descriptor has failed; false at the deadline.
bool WaitFor(int descriptor, short events, Deadline deadline);

/// A socket for ConnectBy and the calls after it: it does not block, and writing to a closed connection is an
/// error and no signal. Not open when the system has none to give.
Descriptor MakeSocket(int family, int type, int protocol);

/// 0, or the system's error number; ETIMEDOUT at the deadline.
int ConnectBy(Deadline deadline, int socket, const sockaddr& address, socklen_t size);

/// Sends everything in one call. False when that fails or the deadline passes.
bool SendBy(Deadline deadline, int socket, const char* bytes, std::size_t size);

/// Receives once, up to `size` bytes; none when the other side has closed, a negative number when that fails
/// or the deadline passes.
ssize_t ReceiveBy(Deadline deadline, int socket, char* bytes, std::size_t size);

/// The most calls that may be left behind in the resolver at the same time; while there are as many, further
/// ones fail at once. A function leaves at most five behind.
constexpr int kMostLeftBehind = 16;

/// Runs the work on a thread of its own; true when it has ended by the deadline. The work must own all that
/// it uses and throw nothing. False also when no thread can be had.
bool FinishesBy(Deadline deadline, std::function<void()> work);

/// What the work gives, or nothing when it is late. What it throws by then is thrown here.
template<typename Work>
auto AnswerBy(Deadline deadline, Work work) -> std::optional<decltype(work())> {
    const auto task = std::make_shared<std::packaged_task<decltype(work())()>>(std::move(work));
    auto answer = task->get_future();
    if (!FinishesBy(deadline, [task] { (*task)(); })) return std::nullopt;
    return answer.get();
}

} // namespace kst
