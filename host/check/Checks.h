#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

/// Contract checks: what a host may expect of any plug-in's binary, in levels of growing severity.

namespace host::check {

/// What a check found: empty when the contract holds, else one sentence that says what is wrong.
using Finding = std::string;

/// Thrown by a check that cannot judge: an earlier part of the contract is broken, or the plug-in has nothing
/// that the check is about. The text says why.
struct NoGround : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class Verdict : std::uint8_t { passed, failed, skipped };
struct Outcome {
    Verdict verdict = Verdict::passed;
    std::string words; ///< the finding, or why the check was skipped; empty when it passed
};

struct Check {
    int level;             ///< 1 loading, 2 messages, 3 registration, 4 calls, 5 a failing host
    std::string_view name; ///< one word, joined by hyphens
    std::string_view promise;
    /// Runs against a library that is not loaded yet, in a session of its own. May throw NoGround.
    Finding (*run)(const std::filesystem::path& library);
};

inline constexpr int kHighestLevel = 5;

/// The table, in the order of levels. The first check is whether the library loads at all.
std::span<const Check> checks();

/// Runs a check in a process of its own, so that a crash or a hang is a finding and not an end. Where the
/// system allows it, that process has no network. Whatever the plug-in prints goes where this process prints.
/// A check that takes longer than `secondsAllowed` is ended and has failed.
Outcome runIsolated(const Check& check, const std::filesystem::path& library, int secondsAllowed = 120);

} // namespace host::check
