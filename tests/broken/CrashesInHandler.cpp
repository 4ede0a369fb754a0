// Ends the process from a function's handler.
#include "SoundPlugIn.h"

#include <csignal>

namespace {
FMX_PROC(fmx::errcode) crash(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&) {
    std::raise(SIGKILL);
    return 0;
}
} // namespace

SAMPLE_PLUG_IN({.handler = crash})
