// Keeps a text at every call.
#include "SoundPlugIn.h"

namespace {
FMX_PROC(fmx::errcode) leak(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&) try {
    const fmx::Text* const kept = fmx::TextUniquePtr().release();
    static_cast<void>(kept);
    return 0;
} catch (const std::exception&) {
    return 1200;
}
} // namespace

SAMPLE_PLUG_IN({.handler = leak})
