#include "host/dispatch/MainQueue.h"

#include "host/dispatch/WorkOwner.h"
#include "host/dispatch/dispatch/dispatch.h"

#include <utility>
#include <vector>

namespace host {

namespace {

constexpr MainQueue::Moment earliest = 1; // 0 means now

} // namespace

MainQueue::Moment MainQueue::now() {
    const std::int64_t sinceYearOne = (clock().now() + kYearOneToUnixEpoch).count();
    return sinceYearOne < 1 ? earliest : static_cast<Moment>(sinceYearOne);
}

MainQueue::Moment MainQueue::later(Moment when, std::int64_t nanoseconds) {
    constexpr std::int64_t perMicro = 1'000;
    if (when == forever) return forever;
    if (when == DISPATCH_TIME_NOW) when = now();
    // A negative quotient is rounded towards zero, which is up as well.
    const std::int64_t micros = nanoseconds / perMicro + (nanoseconds % perMicro > 0 ? 1 : 0);
    if (micros >= 0)
        return forever - when > static_cast<Moment>(micros) ? when + static_cast<Moment>(micros) : forever;
    const auto back = static_cast<Moment>(-micros);
    return when > back ? when - back : earliest;
}

void MainQueue::add(Moment when, Work work) {
    if (when == forever) return;
    if (when == DISPATCH_TIME_NOW) when = now();
    Item item{.work = std::move(work), .owner = WorkOwner::running()};
    const std::lock_guard lock(mutex_);
    waiting_.emplace(when, std::move(item));
}

void MainQueue::takeDue() {
    const Moment moment = now();
    const std::lock_guard lock(mutex_);
    const auto end = waiting_.upper_bound(moment);
    for (auto item = waiting_.begin(); item != end; ++item)
        due_.push_back(std::move(item->second));
    waiting_.erase(waiting_.begin(), end);
}

std::optional<MainQueue::Item> MainQueue::nextDue() {
    const std::lock_guard lock(mutex_);
    if (due_.empty()) return std::nullopt;
    Item item = std::move(due_.front());
    due_.pop_front();
    return item;
}

std::size_t MainQueue::drain() {
    if (isDraining_) return 0;
    takeDue();
    isDraining_ = true;
    std::size_t count = 0;
    for (; std::optional<Item> item = nextDue(); ++count)
        if (!WorkOwner::run(item->owner, item->work)) ++failures_;
    isDraining_ = false;
    return count;
}

void MainQueue::clear() {
    std::multimap<Moment, Item> waiting;
    std::deque<Item> due;
    // The work is released after the lock, because a destructor in it may use the queue.
    const std::lock_guard lock(mutex_);
    waiting.swap(waiting_);
    due.swap(due_);
}

void MainQueue::drop(const WorkOwner& owner) {
    std::vector<Item> dropped; // released after the lock, as in clear
    const std::lock_guard lock(mutex_);
    const auto isOwned = [&owner](const Item& item) { return item.owner == &owner; };
    for (auto item = waiting_.begin(); item != waiting_.end();) {
        if (!isOwned(item->second)) {
            ++item;
            continue;
        }
        dropped.push_back(std::move(item->second));
        item = waiting_.erase(item);
    }
    for (Item& item : due_)
        if (isOwned(item)) dropped.push_back(std::move(item));
    std::erase_if(due_, isOwned);
}

std::size_t MainQueue::pending() const {
    const std::lock_guard lock(mutex_);
    return waiting_.size() + due_.size();
}

std::optional<Clock::Micros> MainQueue::untilNext() const {
    const Moment moment = now();
    const std::lock_guard lock(mutex_);
    if (!due_.empty()) return Clock::Micros::zero();
    if (waiting_.empty()) return std::nullopt;
    const Moment next = waiting_.begin()->first;
    return Clock::Micros(next > moment ? next - moment : 0);
}

MainQueue& mainQueue() {
    static auto& instance = *new MainQueue;
    return instance;
}

} // namespace host
