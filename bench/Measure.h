#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

/// Costs beside their floors, as ratios within one run: absolute times say little on a machine that others
/// use too.

namespace bench {

/// Keeps a result alive for the optimiser.
template<class Value>
void keep(const Value& value) {
    asm volatile("" : : "r,m"(value) : "memory"); // NOLINT(hicpp-no-assembler)
}

/// Nanoseconds of one call of `action`, over a batch that takes long enough to measure.
template<class Action>
double nanosecondsPerCall(const Action& action, std::size_t calls) {
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < calls; ++i)
        action();
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
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

/// A row of the table: what a thing costs, and what the least that must be done costs. Cost and floor
/// alternate, so that both see the same machine; the ratio is the median of the rounds' ratios, its spread
/// stands behind it.
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
    for (auto* values : {&costs, &floors, &ratios})
        std::sort(values->begin(), values->end());
    const auto middle = static_cast<std::size_t>(rounds / 2);
    std::printf("%-44s %10.2f ns/%-5s %7.2f x [%.2f .. %.2f] of %s (%.2f ns)\n", name.c_str(), costs[middle],
                unit, ratios[middle], ratios.front(), ratios.back(), floorName.c_str(), floors[middle]);
    std::fflush(stdout);
}

} // namespace bench
