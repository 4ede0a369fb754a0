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

/// Work that plug-ins left for later, by its deadline on the host's clock: what stands behind the main queue
/// of dispatch/dispatch.h. Work may be added on any thread; it runs where `drain` is called, in the host's
/// loop, and nowhere else.
class MainQueue {
public:
    /// Moments as the queue counts them: microseconds since the year 1, which is as finely as the host's
    /// clock ticks and holds every date it can show. From 1; FOREVER of the interface is no moment.
    using Moment = std::uint64_t;
    static constexpr Moment forever = ~Moment{0};
    static Moment now();
    /// Never early: a part of a microsecond counts as a whole one.
    static Moment later(Moment when, std::int64_t nanoseconds);

    using Work = std::function<void()>;
    /// Work that is due `forever` is dropped at once. It belongs to the plug-in whose code runs, if any.
    void add(Moment when, Work work);
    /// Runs what is due, by deadline and then in the order in which it was added; gives the number run. Work
    /// that is added meanwhile waits for the next call, and a call from within does nothing. What throws is a
    /// violation of its plug-in.
    std::size_t drain();
    /// Drops everything, or what belongs to a plug-in, without running it.
    void clear();
    void drop(const WorkOwner& owner);

    [[nodiscard]] std::size_t pending() const;
    /// How long until something is due, on the host's clock: 0 when something is; nothing when nothing waits.
    [[nodiscard]] std::optional<Clock::Micros> untilNext() const;
    /// How much of the work has thrown so far.
    [[nodiscard]] std::size_t failures() const { return failures_; }

private:
    struct Item {
        Work work;
        WorkOwner* owner;
    };
    void takeDue();
    std::optional<Item> nextDue();

    mutable std::mutex mutex_; ///< of waiting_ and due_
    std::multimap<Moment, Item> waiting_;
    std::deque<Item> due_; ///< what the drain that runs has yet to run
    bool isDraining_ = false;
    std::size_t failures_ = 0;
};

/// The process's one. What still waits in it when the process ends is given up with the process: by then the
/// code that it would run or release may be gone.
MainQueue& mainQueue();

} // namespace host
