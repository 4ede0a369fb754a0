#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

/// Ratios of costs to their floors within one run. Absolute times depend on the machine and its load.

namespace bench {

/// Prevents the optimiser from removing a result.
template<class Value>
void keep(const Value& value) {
    asm volatile("" : : "r,m"(value) : "memory"); // NOLINT(hicpp-no-assembler)
}

/// The processor time of the process, which hardly depends on other processes.
struct ProcessorClock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<ProcessorClock>;
    static constexpr bool is_steady = true;

    static time_point now() {
        std::timespec time{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return time_point(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
    }
};

/// The nanoseconds of one call of `action`, measured over a batch of `calls`.
template<class Clock = std::chrono::steady_clock, class Action>
double nanosecondsPerCall(const Action& action, std::size_t calls) {
    const auto start = Clock::now();
    for (std::size_t i = 0; i < calls; ++i)
        action();
    const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
    return taken.count() / static_cast<double>(calls);
}

template<class Action>
std::size_t callsForABatch(const Action& action) {
    constexpr double batchNanoseconds = 2e7;
    std::size_t calls = 1;
    while (calls < 1'000'000 &&
           nanosecondsPerCall(action, calls) * static_cast<double>(calls) < batchNanoseconds)
        calls *= 2;
    return calls;
}

/// The median and the extremes of an odd number of measurements.
struct Spread {
    explicit Spread(std::vector<double> values) {
        std::sort(values.begin(), values.end());
        least = values.front();
        median = values[values.size() / 2];
        most = values.back();
    }
    double least, median, most;
};

/// The names of the rows since the last heading.
inline std::vector<std::string>& rowNames() {
    static std::vector<std::string> names;
    return names;
}

inline void heading(const char* text) {
    static bool isFirst = true;
    std::printf("%s%s\n", isFirst ? "" : "\n", text);
    std::fflush(stdout);
    isFirst = false;
    rowNames().clear();
}

/// Prints a row of the table: a cost, and its floor or the cost of a peer. Both are measured alternately, so
/// that the conditions are the same. The ratio is the median of the rounds' ratios; its spread follows.
template<class Cost, class Floor>
void row(const std::string& name, const Cost& cost, const std::string& floorName, const Floor& floor,
         double unitsPerCall = 1, const char* unit = "call") {
    constexpr int rounds = 15;
    const std::size_t costCalls = callsForABatch(cost), floorCalls = callsForABatch(floor);
    std::vector<double> costs, floors, ratios;
    for (int round = 0; round < rounds; ++round) {
        costs.push_back(nanosecondsPerCall(cost, costCalls) / unitsPerCall);
        floors.push_back(nanosecondsPerCall(floor, floorCalls) / unitsPerCall);
        ratios.push_back(costs.back() / floors.back());
    }
    const Spread ratio(ratios);
    std::printf("  %-50s %10.2f ns/%-5s %6.2f x [%.2f .. %.2f] of %s (%.2f ns)\n", name.c_str(),
                Spread(costs).median, unit, ratio.median, ratio.least, ratio.most, floorName.c_str(),
                Spread(floors).median);
    std::fflush(stdout);
    rowNames().push_back(name);
}

} // namespace bench
