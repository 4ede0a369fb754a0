#pragma once

/// What the plug-in asks of the platform, in plain C++: the clock, the log, scripts that wait, and matches of
/// a pattern. The Objective-C classes stand behind it.
///
/// All of it belongs to the main thread. Nothing is thrown in either direction: Objective-C exceptions end
/// in here, and no C++ exception can get in, since the two do not mix on every runtime.

#include <string>
#include <vector>

namespace platform {

/// A text as UTF-16 units.
using Units = std::vector<unsigned short>;

/// Its texts are well-formed (see wellFormed in bridge/Unicode.h): not every platform keeps others.
struct Script {
    Units name;
    Units file;
    Units parameter;
};

/// Queues a script when the delay, in seconds, is over; takeScript finds it then. False when the platform
/// could not take it.
[[nodiscard]] bool scheduleScript(const Script& script, double seconds) noexcept;

enum class Taken : unsigned char {
    nothing, ///< no script waits
    script,
    failed, ///< one was taken out, but its texts could not be read
};

/// Takes out the script that was queued last.
[[nodiscard]] Taken takeScript(Script& script) noexcept;

/// Local date and time in seconds since 0001-01-01 00:00:00, by the platform's clock. False when it cannot
/// be told.
[[nodiscard]] bool readClock(double& seconds) noexcept;

enum class Counted : unsigned char {
    all,
    tooLong, ///< given up: the pattern takes too many steps on this text
    failed,
};

/// Counts the matches of a pattern in ICU's grammar, in decimal; "0" also when it is malformed. Both texts
/// are well-formed.
[[nodiscard]] Counted countMatches(const Units& text, const Units& pattern, std::string& count) noexcept;

void logDelay(double seconds) noexcept;
void logScriptError(int error) noexcept;

} // namespace platform
