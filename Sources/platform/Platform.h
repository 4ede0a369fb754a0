#pragma once

/// The platform's services in plain C++: the clock, the log, delayed scripts, and matches of a pattern. The
/// Objective-C classes implement them.
///
/// All functions belong to the main thread and throw nothing. Objective-C exceptions are caught inside. No
/// C++ exception passes through Objective-C code, because some runtimes do not support both together.

#include <string>
#include <vector>

namespace platform {

/// A text as UTF-16 units.
using Units = std::vector<unsigned short>;

/// A delayed script. Its texts are well-formed UTF-16, because some platforms change other texts.
struct Script {
    Units name;
    Units file;
    Units parameter;
};

/// Queues a script when the delay, in seconds, is over. takeScript finds it from then on. False when the
/// platform did not accept it.
[[nodiscard]] bool scheduleScript(const Script& script, double seconds) noexcept;

enum class Taken : unsigned char {
    nothing, ///< no script waits
    script,
    failed, ///< a script was taken out, but its texts could not be read
};

/// Takes out the script that was queued last.
[[nodiscard]] Taken takeScript(Script& script) noexcept;

/// Local date and time in seconds since 0001-01-01 00:00:00, by the platform's clock. False when the clock
/// cannot be read.
[[nodiscard]] bool readClock(double& seconds) noexcept;

enum class Counted : unsigned char {
    all,
    tooLong, ///< ended early: the pattern takes too many steps on this text
    failed,
};

/// Counts the matches of a pattern in ICU's grammar, in decimal. "0" also when the pattern is malformed. Both
/// texts are well-formed UTF-16.
[[nodiscard]] Counted countMatches(const Units& text, const Units& pattern, std::string& count) noexcept;

void logDelay(double seconds) noexcept;
void logScriptError(int error) noexcept;

} // namespace platform
