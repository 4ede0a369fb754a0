#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The terminal and the signals, as the prompt needs them.

namespace host::cli {

/// Takes over Ctrl-C, changes of the window's size and the return from a stop, as long as it lives. Ctrl-C
/// stops the calculation that runs; a second one before the first is taken ends the process, with the
/// terminal as it was found. One at a time in a process.
class Signals {
public:
    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// Becomes readable when a signal has come; -1 when there is no pipe.
    [[nodiscard]] int descriptor() const;
    struct Taken {
        bool interrupt = false, redraw = false;
    };
    /// The signal that came since the last call. Calculations may run again from then on.
    static Taken take();
};

/// Collects what is written to standard output and standard error by this process while it lives.
class CapturedOutput {
public:
    CapturedOutput();
    ~CapturedOutput() { restore(); }
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    /// Ends the collection and gives what was written.
    std::string take();

private:
    void restore();
    int file_ = -1, output_ = -1, error_ = -1;
};

/// How many rows of a terminal of so many columns the text reaches below its first one; its last character's
/// successor counts.
std::size_t rowsBelow(std::wstring_view text, std::size_t columns);
/// The terminal's columns; 80 where it does not say.
std::size_t terminalColumns();

} // namespace host::cli
