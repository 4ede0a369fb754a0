#pragma once

#include "host/app/PlugIn.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Contract checks: what a host may expect of any plug-in's binary, in levels of growing severity.

namespace host::check {

/// The finding of a check: empty when the contract holds, else one sentence that says what is wrong.
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

/// The library that is checked, and what the host tells it about itself.
struct Subject {
    std::filesystem::path library;
    Announcement announcement{};
};

struct Check {
    int level;             ///< 1 loading, 2 messages, 3 registration, 4 calls, 5 a failing host
    std::string_view name; ///< one word, joined by hyphens
    std::string_view promise;
    std::string_view remedy; ///< a sentence that says what to do about a finding
    /// The check that must have passed before this one, so that one fault is one finding; empty: none.
    std::string_view needs;
    /// Runs against a library that is not loaded yet, in a session of its own. May throw NoGround.
    Finding (*run)(const Subject& subject);
};

inline constexpr int kHighestLevel = 5, kFirstLevelWithCalls = 4;

/// The table, in the order of levels. The first check is whether the library loads at all.
std::span<const Check> checks();

/// Runs a check in a process of its own, so that a crash or a hang is a finding and not an end. Where the
/// system allows it, that process has no network. The plug-in's output goes where this process's does.
/// A check that takes longer than `secondsAllowed` is ended and has failed.
Outcome runIsolated(const Check& check, const Subject& subject, int secondsAllowed = 120);

/// A check and how it went.
struct Judgement {
    const Check* check;
    Outcome outcome;
};
/// Runs the checks up to a level, each isolated; a check whose `needs` has not passed is skipped. After a
/// library that cannot be loaded none follows. Gives each judgement to `onJudged` as soon as it is there.
std::vector<Judgement> runChecks(const Subject& subject, int level,
                                 const std::function<void(const Judgement&)>& onJudged);

} // namespace host::check
