#include "host/dispatch/MainQueue.h"

#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/dispatch/dispatch/dispatch.h"
#include "host/values/Clock.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <sys/time.h>

/// Delayed work on the main queue, with the clock held.

namespace {

using namespace std::chrono_literals;

constexpr auto nanosPerSecond = static_cast<std::int64_t>(NSEC_PER_SEC);

dispatch_time_t inSeconds(std::int64_t seconds) {
    return dispatch_time(DISPATCH_TIME_NOW, seconds * nanosPerSecond);
}

class MainQueue : public testing::Test {
protected:
    host::MainQueue& queue = host::mainQueue();
    std::string order;
    dispatch_queue_t main = dispatch_get_main_queue();

    void SetUp() override { host::clock().hold(); }
    void TearDown() override {
        queue.clear();
        host::clock().reset();
    }
    /// Adds work that writes a letter at the moment.
    void write(dispatch_time_t when, char letter) {
        std::string* const written = &order;
        dispatch_after(when, main, ^{
          *written += letter;
        });
    }
    std::string drained() {
        order.clear();
        const std::size_t count = queue.drain();
        EXPECT_EQ(count, order.size());
        return order;
    }
};

TEST_F(MainQueue, RunsDueWorkByDeadlineAndThenInOrder) {
    write(inSeconds(2), 'd');
    write(inSeconds(1), 'b');
    write(inSeconds(1), 'c');
    write(inSeconds(-5), 'a');
    write(inSeconds(3), 'e');
    EXPECT_EQ(queue.pending(), 5U);
    EXPECT_EQ(drained(), "a");
    EXPECT_EQ(queue.untilNext(), 1s);
    host::clock().advance(1s - 1us);
    EXPECT_EQ(drained(), "");
    EXPECT_EQ(queue.untilNext(), 1us);
    host::clock().advance(1s + 1us);
    EXPECT_EQ(queue.untilNext(), 0s);
    EXPECT_EQ(drained(), "bcd");

    host::clock().advance(-24h);
    EXPECT_EQ(queue.untilNext(), 24h + 1s);
    write(DISPATCH_TIME_NOW, 'n');
    EXPECT_EQ(drained(), "n");
    host::clock().advance(48h);
    EXPECT_EQ(drained(), "e");
    EXPECT_EQ(queue.untilNext(), std::nullopt);
}

TEST_F(MainQueue, AddedWorkWaitsForTheNextDrain) {
    std::string* const written = &order;
    dispatch_queue_t const mainQueue = main;
    dispatch_after(DISPATCH_TIME_NOW, main, ^{
      *written += 'a';
      dispatch_after(dispatch_time(DISPATCH_TIME_NOW, -nanosPerSecond), mainQueue, ^{
        *written += 'b';
      });
      EXPECT_EQ(host::mainQueue().drain(), 0U);
    });
    EXPECT_EQ(drained(), "a");
    EXPECT_EQ(drained(), "b");
}

TEST_F(MainQueue, TimesSaturate) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max(),
                           least = std::numeric_limits<std::int64_t>::min();
    constexpr dispatch_time_t forever = DISPATCH_TIME_FOREVER;
    const dispatch_time_t now = inSeconds(0);
    const struct {
        dispatch_time_t when;
        std::int64_t delta;
        dispatch_time_t expected;
    } cases[] = {{forever, 0, forever},         {5, least, 1},  {now, 0, now},
                 {forever, least, forever},     {1, -1'000, 1}, {now, 1, now + 1},
                 {forever - 1, most, forever},  {2, -1'000, 1}, {now, 1'000, now + 1},
                 {forever - 1, 1, forever},     {1, -1, 1},     {now, 1'001, now + 2},
                 {forever - 2, 1, forever - 1}, {1, least, 1},  {now, -1'999, now - 1}};
    for (const auto& [when, delta, expected] : cases)
        EXPECT_EQ(dispatch_time(when, delta), expected) << when << " + " << delta;
    EXPECT_GT(dispatch_time(now, most), now);

    // The same holds at the ends of the clock's range.
    for (const host::Clock::Micros moment : {host::Clock::Micros::min(), host::Clock::Micros::max()}) {
        host::clock().set(moment);
        write(inSeconds(-1), 'a');
        write(inSeconds(1), 'b');
        EXPECT_EQ(drained(), "a");
        queue.clear();
    }
}

TEST_F(MainQueue, ForeverAndMissingBlocksNeverRun) {
    write(DISPATCH_TIME_FOREVER, 'a');
    write(dispatch_time(DISPATCH_TIME_FOREVER, -nanosPerSecond), 'b');
    dispatch_after(inSeconds(0), main, nullptr);
    dispatch_after(inSeconds(0), nullptr,
                   ^{
                   });
    EXPECT_EQ(queue.pending(), 0U);
    host::clock().set(host::Clock::Micros::max());
    EXPECT_EQ(drained(), "");
}

TEST_F(MainQueue, BlocksAreCopiedAndAlwaysReleased) {
    const auto kept = std::make_shared<int>(0);
    const auto leave = [&](std::int64_t seconds) {
        // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): a block would not copy a reference
        const std::shared_ptr<int> captured = kept;
        dispatch_after(inSeconds(seconds), main, ^{
          ++*captured;
        });
    };
    leave(1);
    leave(2);
    EXPECT_EQ(kept.use_count(), 3);
    host::clock().advance(1s);
    EXPECT_EQ(queue.drain(), 1U);
    EXPECT_EQ(kept.use_count(), 2);
    {
        host::Session session; // its destructor empties the queue
    }
    EXPECT_EQ(kept.use_count(), 1);
    EXPECT_EQ(*kept, 1);
}

TEST_F(MainQueue, reportsWorkThatThrowsAsAViolationOfItsPlugIn) {
    host::Session session;
    auto plugIn =
        std::make_unique<host::PlugIn>(session, std::filesystem::path(KESTREL_BROKEN_DIR) / "Sound.so");
    const std::size_t before = queue.failures();
    const auto throwing = [this] {
        dispatch_after(DISPATCH_TIME_NOW, main, ^{
          throw 1;
        });
    };
    throwing();
    host::WorkOwner::run(plugIn.get(), throwing);
    write(DISPATCH_TIME_NOW, 'c');
    EXPECT_EQ(queue.drain(), 3U);
    EXPECT_EQ(order, "c");
    EXPECT_EQ(queue.failures() - before, 2U);
    EXPECT_EQ(plugIn->violations(), std::vector{host::PlugIn::Violation::threwFromBlock});

    host::WorkOwner::run(plugIn.get(), throwing);
    write(DISPATCH_TIME_NOW, 'd');
    plugIn.reset(); // drops its work on the queue
    EXPECT_EQ(drained(), "d");
}

class TimeOfDay : public testing::Test {
protected:
    void TearDown() override { host::clock().reset(); }
};

TEST_F(TimeOfDay, ComesFromTheHostsClockOnceItHasMoved) {
    const auto timeOfDay = [] {
        timeval moment{};
        struct timezone zone{.tz_minuteswest = 7, .tz_dsttime = 7};
        EXPECT_EQ(::gettimeofday(&moment, &zone), 0);
        EXPECT_EQ(zone.tz_minuteswest, 0);
        EXPECT_EQ(zone.tz_dsttime, 0);
        EXPECT_TRUE(moment.tv_usec >= 0 && moment.tv_usec < 1'000'000);
        return std::chrono::seconds(moment.tv_sec) + host::Clock::Micros(moment.tv_usec);
    };
    const auto machine = std::chrono::system_clock::now().time_since_epoch();
    EXPECT_LT(timeOfDay() - machine, 10s);
    EXPECT_GT(timeOfDay() - machine, -1s);
    host::clock().advance(1h);
    EXPECT_GT(timeOfDay() - machine, 59min);
    host::clock().hold();
    for (const host::Clock::Micros moment : {0us, 1'700'000'000'123'456us, -1us, -62'000'000'000'000'001us}) {
        host::clock().set(moment);
        EXPECT_EQ(timeOfDay(), moment);
    }
    host::clock().set(host::Clock::Micros::max());
    host::clock().advance(host::Clock::Micros::max());
    EXPECT_EQ(timeOfDay(), 253'402'300'799s);
    host::clock().set(0s);
    host::clock().release();
    EXPECT_LT(timeOfDay(), 1h);
}

} // namespace
