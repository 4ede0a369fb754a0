#pragma once

#include <ctime>

/// The processor time that an input has used so far.
///
/// Patterns end at a bound that is counted in steps. Under the sanitizers that may take half a minute, so a
/// few such inputs, and what the fuzzer makes of them, would take all of its time. They are tried like any
/// other, but the fuzzer does not go on from them.
class InputTime {
public:
    /// Whether an input of many steps should end.
    [[nodiscard]] bool isUp() const { return used() > kMost; }
    /// The return value for the fuzzer: whether it keeps the input for variation.
    [[nodiscard]] int answer() const { return used() > kMostToGoOnFrom ? kDoNotKeep : 0; }

private:
    static constexpr std::clock_t kMost = CLOCKS_PER_SEC, kMostToGoOnFrom = CLOCKS_PER_SEC / 10;
    static constexpr int kDoNotKeep = -1;

    [[nodiscard]] std::clock_t used() const { return std::clock() - start_; }

    std::clock_t start_ = std::clock();
};
