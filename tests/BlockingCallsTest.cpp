#include "network/BlockingCalls.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <string>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>
#include <utility>
#include <vector>

/// Time limits of blocking calls on connections of the real loopback device. The sockets bypass the preloaded
/// libraries that emulate the network in other tests.

namespace {

using kst::Deadline;
using std::chrono::milliseconds;

Deadline in(milliseconds time) { return Deadline::clock::now() + time; }
const milliseconds kShort{80};
const milliseconds kLong{5000};

/// A socket of the loopback device, closed at the end.
class Loopback {
public:
    explicit Loopback(long socket) : socket_(static_cast<int>(socket)) {}
    Loopback(Loopback&& that) noexcept : socket_(std::exchange(that.socket_, -1)) {}
    ~Loopback() { close(); }
    void close() { ::close(std::exchange(socket_, -1)); }
    [[nodiscard]] int get() const { return socket_; }

private:
    int socket_;
};

Loopback loopbackSocket(int flags) {
    return Loopback(::syscall(SYS_socket, AF_INET, SOCK_STREAM | flags, 0));
}

/// A listening socket on a port that the system chooses.
class Listener {
public:
    explicit Listener(int backlog) {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address_;
        EXPECT_EQ(::syscall(SYS_bind, socket_.get(), &address_, sizeof address_), 0);
        EXPECT_EQ(::syscall(SYS_listen, socket_.get(), backlog), 0);
        EXPECT_EQ(::syscall(SYS_getsockname, socket_.get(), &address_, &size), 0);
    }
    [[nodiscard]] const sockaddr& address() const { return reinterpret_cast<const sockaddr&>(address_); }
    [[nodiscard]] Loopback accept() const {
        return Loopback(::syscall(SYS_accept4, socket_.get(), nullptr, nullptr, 0));
    }
    void close() { socket_.close(); }

private:
    Loopback socket_ = loopbackSocket(0);
    sockaddr_in address_{};
};

/// The error of `connectBy`. A connection that it reports must exist.
int connectTo(const Listener& listener, const Loopback& socket, milliseconds time) {
    const int error = kst::connectBy(in(time), socket.get(), listener.address(), sizeof(sockaddr_in));
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    const bool isConnected = ::syscall(SYS_getpeername, socket.get(), &peer, &size) == 0;
    EXPECT_TRUE(error != 0 || isConnected);
    return error;
}

TEST(BlockingCalls, sendAndReceiveBytes) {
    const Listener listener(1);
    const Loopback client = loopbackSocket(SOCK_NONBLOCK);
    ASSERT_EQ(connectTo(listener, client, kLong), 0);
    const Loopback server = listener.accept();
    std::array<char, 16> bytes{};
    EXPECT_TRUE(kst::sendAtOnce(client.get(), "request"));
    EXPECT_EQ(kst::receiveBy(in(kLong), server.get(), bytes.data(), bytes.size()), 7);
    EXPECT_LT(kst::receiveBy(in(kShort), client.get(), bytes.data(), bytes.size()), 0); // no data arrives
    EXPECT_TRUE(kst::sendAtOnce(server.get(), "answer"));
    EXPECT_EQ(kst::receiveBy(in(kLong), client.get(), bytes.data(), bytes.size()), 6);
    EXPECT_EQ(std::string(bytes.data(), 7), "answert");
    // The data exceeds the socket's buffer.
    const std::vector<char> much(64'000'000, 'x');
    EXPECT_FALSE(kst::sendAtOnce(client.get(), {much.data(), much.size()}));
}

TEST(BlockingCalls, waitOnAfterASignal) {
    const Listener listener(1);
    const Loopback client = loopbackSocket(SOCK_NONBLOCK);
    ASSERT_EQ(connectTo(listener, client, kLong), 0);
    auto* const former = std::signal(SIGALRM, [](int) {});
    const itimerval soon{{0, 0}, {0, 10'000}};
    ASSERT_EQ(::setitimer(ITIMER_REAL, &soon, nullptr), 0);
    std::array<char, 16> bytes{};
    const Deadline start = Deadline::clock::now();
    EXPECT_LT(kst::receiveBy(in(kShort), client.get(), bytes.data(), bytes.size()), 0);
    EXPECT_GE(Deadline::clock::now() - start, kShort);
    std::signal(SIGALRM, former);
}

TEST(BlockingCalls, endWhenAConnectionIsNotAccepted) {
    const Listener listener(0);
    std::vector<Loopback> queue;
    constexpr int most = 20;
    int error = 0;
    Deadline start;
    while (error == 0 && queue.size() < most) {
        queue.push_back(loopbackSocket(SOCK_NONBLOCK));
        start = Deadline::clock::now();
        error = connectTo(listener, queue.back(), kShort);
    }
    if (error == 0) GTEST_SKIP() << "this system takes up every connection by itself";
    EXPECT_EQ(error, ETIMEDOUT);
    EXPECT_GE(Deadline::clock::now() - start, kShort);
    EXPECT_LT(Deadline::clock::now() - start, kLong);
}

TEST(BlockingCalls, reportEveryRefusedConnection) {
    Listener listener(1);
    const Loopback client = loopbackSocket(SOCK_NONBLOCK);
    listener.close();
    EXPECT_EQ(connectTo(listener, client, kLong), ECONNREFUSED);
    // Later attempts may fail with other errors.
    for (int attempt = 2; attempt <= 11; ++attempt)
        EXPECT_NE(connectTo(listener, client, kLong), 0);
}

TEST(BlockingCalls, surviveAResetConnection) {
    const Listener listener(1);
    const Loopback client = loopbackSocket(SOCK_NONBLOCK);
    ASSERT_EQ(connectTo(listener, client, kLong), 0);
    {
        const Loopback server = listener.accept();
        const linger reset{1, 0};
        ASSERT_EQ(::syscall(SYS_setsockopt, server.get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset), 0);
    }
    std::array<char, 16> bytes{};
    EXPECT_LT(kst::receiveBy(in(kLong), client.get(), bytes.data(), bytes.size()), 0);
    // The second send needs MSG_NOSIGNAL: without the flag, a signal ends the process here.
    EXPECT_FALSE(kst::sendAtOnce(client.get(), "x"));
    EXPECT_FALSE(kst::sendAtOnce(client.get(), "x"));
}

TEST(BlockingCalls, failWithoutASocket) { EXPECT_FALSE(kst::Socket(-1, SOCK_STREAM, 0).isReady()); }

} // namespace
