// Keeps a text at every call.
#include "SoundPlugIn.h"

namespace {
FMX_PROC(fmx::errcode) leak(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&) try {
    static_cast<void>(fmx::TextUniquePtr().release());
    return 0;
} catch (const std::exception&) {
    return 1200;
}
} // namespace

SAMPLE_PLUG_IN({.handler = leak})
