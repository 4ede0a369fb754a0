// A text of the host's that is made when the library is loaded, before the host is ready; and not at once.

#include "FMWrapper/FMXText.h"

namespace {

__attribute__((noinline)) fmx::TextUniquePtr* makeText() { return new fmx::TextUniquePtr; }

fmx::TextUniquePtr* const text = makeText();

} // namespace

extern "C" __attribute__((used)) const void* startText() { return text; }
