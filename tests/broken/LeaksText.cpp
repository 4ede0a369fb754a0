// Leaks a text at every call.
#include "SoundPlugIn.h"

SAMPLE_PLUG_IN({.handler = [](SAMPLE_PARAMETERS) -> fmx::errcode {
    return fmx::TextUniquePtr().release() != nullptr ? 0 : 1200;
}})
