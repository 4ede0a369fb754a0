// Lets an exception out of a function's handler.
#include "SoundPlugIn.h"

#include <stdexcept>

namespace {
FMX_PROC(fmx::errcode) fail(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&) {
    throw std::runtime_error("nobody catches this");
}
} // namespace

SAMPLE_PLUG_IN({.handler = fail})
