#pragma once

#include <chrono>
#include <sqlite3.h>

namespace host {

/// Replaces the engine's functions whose time grows with the product of two lengths. The engine checks the
/// clock between function calls, not within one. `instr`, `replace` and the trims are linear here, with the
/// engine's results for well-formed text. `like` and `glob` refuse input that would take seconds; `like` also
/// refuses "%" and "_" as its escape. No function starts after `deadline`, which outlives the connection.
/// Gives the engine's result code.
int boundFunctions(sqlite3* connection, const std::chrono::steady_clock::time_point& deadline);

} // namespace host
