#pragma once

#include "host/values/Clock.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>

namespace host {

class WorkOwner;

/// The main queue of dispatch/dispatch.h: delayed work of plug-ins, ordered by its deadline on the host's
/// clock. Work may be added on any thread. It runs only in `drain`, which the host's loop calls.
class MainQueue {
public:
    /// A moment in microseconds since the year 1, from 1. The host's clock ticks in microseconds, and the
    /// type holds every date of it. FOREVER of the interface is no moment.
    using Moment = std::uint64_t;
    static constexpr Moment forever = ~Moment{0};
    static Moment now();
    /// The moment `nanoseconds` after `when`, rounded up to a whole microsecond, so work never runs early.
    static Moment later(Moment when, std::int64_t nanoseconds);

    using Work = std::function<void()>;
    /// Adds work for the plug-in whose code runs, if any. Work with the deadline `forever` is dropped at
    /// once.
    void add(Moment when, Work work);
    /// Runs the due work, by deadline and then in the order in which it was added. Gives the number run. Work
    /// that is added meanwhile waits for the next call. A call from within the work does nothing. An
    /// exception is a violation of the plug-in that added the work.
    std::size_t drain();
    /// Drops all work, or the work of one plug-in, without running it.
    void clear();
    void drop(const WorkOwner& owner);

    [[nodiscard]] std::size_t pending() const;
    /// The time until the next deadline on the host's clock: 0 when work is due; no value when none waits.
    [[nodiscard]] std::optional<Clock::Micros> untilNext() const;
    /// The number of pieces of work that have thrown.
    [[nodiscard]] std::size_t failures() const { return failures_; }

private:
    struct Item {
        Work work;
        WorkOwner* owner;
    };
    void takeDue();
    std::optional<Item> nextDue();

    mutable std::mutex mutex_; ///< guards waiting_ and due_
    std::multimap<Moment, Item> waiting_;
    std::deque<Item> due_; ///< the rest of the work of the current drain
    bool isDraining_ = false;
    std::size_t failures_ = 0;
};

/// The main queue of the process. It is never destroyed: at the end of the process the code that its work
/// would run or release may already be unloaded.
MainQueue& mainQueue();

} // namespace host
