// A host text that is created when the library is loaded, before the host is ready. Another function creates
// it, so the check must follow calls.

#include "FMWrapper/FMXText.h"

namespace {

__attribute__((noinline)) fmx::TextUniquePtr* makeText() { return new fmx::TextUniquePtr; }

fmx::TextUniquePtr* const text = makeText();

} // namespace

extern "C" __attribute__((used)) const void* startText() { return text; }
