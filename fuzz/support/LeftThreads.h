#pragma once

#include <chrono>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <thread>

/// Waits until no more threads run than at the first call.
///
/// A lookup's thread is left to end by itself once it has answered. The search for leaks behind an input has
/// once called lost what belongs to such a thread; the same input again did not leak. What a thread that has
/// ended left behind is still found. A thread that does not end within a second is gone on without.
inline void awaitLeftThreads() {
    using namespace std::chrono_literals;
    using Threads = std::filesystem::directory_iterator;
    const auto count = [] {
        std::error_code none; // a thread that ends while its folder is read is no fault
        return std::distance(Threads("/proc/self/task", none), Threads());
    };
    static const auto atFirst = count();
    for (int tries = 0; tries < 10'000 && count() > atFirst; ++tries)
        std::this_thread::sleep_for(100us);
}
