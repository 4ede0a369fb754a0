#include "BlockingCalls.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

/// Waits that end, on connections of the real loopback device: its sockets are made past the preloaded
/// libraries that stand for the network elsewhere in these tests.

namespace {

using kst::Deadline;
using kst::Descriptor;
using std::chrono::milliseconds;

Deadline in(milliseconds time) { return Deadline::clock::now() + time; }
const milliseconds kShort{80};
const milliseconds kLong{5000};

Descriptor loopbackSocket(int flags) {
    return Descriptor(static_cast<int>(::syscall(SYS_socket, AF_INET, SOCK_STREAM | flags, 0)));
}

/// Listens on a port of the system's choice.
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
    [[nodiscard]] Descriptor accept() const {
        return Descriptor(static_cast<int>(::syscall(SYS_accept4, socket_.get(), nullptr, nullptr, 0)));
    }
    void close() { socket_.close(); }

private:
    Descriptor socket_ = loopbackSocket(0);
    sockaddr_in address_{};
};

int connectTo(const Listener& listener, const Descriptor& socket, milliseconds time) {
    return kst::ConnectBy(in(time), socket.get(), listener.address(), sizeof(sockaddr_in));
}

TEST(BlockingCalls, carryBytesToAndFro) {
    const Listener listener(1);
    const Descriptor client = loopbackSocket(SOCK_NONBLOCK);
    ASSERT_EQ(connectTo(listener, client, kLong), 0);
    const Descriptor server = listener.accept();
    std::array<char, 16> bytes{};
    EXPECT_TRUE(kst::SendBy(in(kLong), client.get(), "request", 7));
    EXPECT_EQ(kst::ReceiveBy(in(kLong), server.get(), bytes.data(), bytes.size()), 7);
    EXPECT_LT(kst::ReceiveBy(in(kShort), client.get(), bytes.data(), bytes.size()), 0); // nothing comes
    EXPECT_TRUE(kst::SendBy(in(kLong), server.get(), "answer", 6));
    EXPECT_EQ(kst::ReceiveBy(in(kLong), client.get(), bytes.data(), bytes.size()), 6);
    EXPECT_EQ(std::string(bytes.data(), 7), "answert");
    // More than fits at once, to somebody who does not read.
    const std::vector<char> much(64'000'000, 'x');
    EXPECT_FALSE(kst::SendBy(in(kShort), client.get(), much.data(), much.size()));
    EXPECT_FALSE(kst::SendBy(in(kShort), client.get(), much.data(), much.size()));
}

TEST(BlockingCalls, endWhenAConnectionIsNotTakenUp) {
    const Listener listener(0);
    std::vector<Descriptor> queue;
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

TEST(BlockingCalls, sayWhenAConnectionIsRefusedAgainAndAgain) {
    Listener listener(1);
    const Descriptor client = loopbackSocket(SOCK_NONBLOCK);
    listener.close();
    EXPECT_EQ(connectTo(listener, client, kLong), ECONNREFUSED);
    // Later attempts may be told in other words.
    for (int attempt = 2; attempt <= 11; ++attempt)
        EXPECT_NE(connectTo(listener, client, kLong), 0);
}

TEST(BlockingCalls, surviveAResetConnection) {
    const Listener listener(1);
    const Descriptor client = loopbackSocket(SOCK_NONBLOCK);
    ASSERT_EQ(connectTo(listener, client, kLong), 0);
    {
        const Descriptor server = listener.accept();
        const linger reset{1, 0};
        ASSERT_EQ(::syscall(SYS_setsockopt, server.get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset), 0);
    }
    std::array<char, 16> bytes{};
    EXPECT_LT(kst::ReceiveBy(in(kLong), client.get(), bytes.data(), bytes.size()), 0);
    // The second time there is nobody left who could tell: without the flag, a signal ends the process here.
    EXPECT_FALSE(kst::SendBy(in(kLong), client.get(), "x", 1));
    EXPECT_FALSE(kst::SendBy(in(kLong), client.get(), "x", 1));
}

TEST(BlockingCalls, failWithoutADescriptor) {
    std::array<char, 1> byte{};
    const int closed = Descriptor(loopbackSocket(0)).get();
    EXPECT_LT(kst::ReceiveBy(in(kLong), closed, byte.data(), byte.size()), 0);
    EXPECT_FALSE(kst::MakeSocket(-1, SOCK_STREAM, 0).isOpen());
}

TEST(Answers, areAwaitedUntilTheDeadline) {
    EXPECT_EQ(kst::AnswerBy(in(kLong), [] { return 7; }), 7);
    EXPECT_THROW(kst::AnswerBy(in(kLong), []() -> int { throw std::runtime_error("x"); }),
                 std::runtime_error);

    const auto isOpen = std::make_shared<std::atomic<bool>>(false);
    const auto stuck = [isOpen] {
        isOpen->wait(false);
        return 7;
    };
    // What is late is left behind, up to as many as may be; from then on nothing is even begun.
    for (int i = 0; i < kst::kMostLeftBehind; ++i)
        EXPECT_EQ(kst::AnswerBy(in(milliseconds{5}), stuck), std::nullopt);
    EXPECT_EQ(kst::AnswerBy(in(kLong), [] { return 7; }), std::nullopt);
    isOpen->store(true);
    isOpen->notify_all();
    const Deadline end = in(kLong);
    while (kst::AnswerBy(in(kLong), [] { return 7; }) != 7 && Deadline::clock::now() < end)
        std::this_thread::sleep_for(milliseconds{1});
    EXPECT_EQ(kst::AnswerBy(in(kLong), [] { return 7; }), 7);
}

} // namespace
