#pragma once

#include <chrono>
#include <sqlite3.h>

namespace host {

/// Replaces the engine's functions whose work grows with the product of two lengths: it looks at the clock
/// between them, not within one. `instr`, `replace` and the trims give for well-formed text what the
/// engine's own give, in linear time; `like` and `glob` refuse what would take seconds, and `like` also "%"
/// and "_" as its escape. All refuse to begin behind `deadline`, which outlives the connection. Gives the
/// engine's result code.
int boundFunctions(sqlite3* connection, const std::chrono::steady_clock::time_point& deadline);

} // namespace host
