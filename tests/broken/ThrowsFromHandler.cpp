// Lets an exception out of a function's handler.
#include "SoundPlugIn.h"

#include <stdexcept>

SAMPLE_PLUG_IN({.handler = [](SAMPLE_PARAMETERS) -> fmx::errcode {
    throw std::runtime_error("nobody catches this");
}})
