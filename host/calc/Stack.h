#pragma once

#include <cstddef>

namespace host::calc {

/// Lets the stack of the process's first thread grow to 64 MiB, where the machine permits it, so that custom
/// functions may call themselves tens of thousands of times.
void enlargeStack();

/// Whether the thread's stack has room for another call of a custom function. The part that is kept free is
/// as large as the deepest nesting of calculations without custom functions needs.
bool hasStack();

} // namespace host::calc
