// Ends the process from a function's handler.
#include "SoundPlugIn.h"

#include <csignal>

SAMPLE_PLUG_IN({.handler = [](SAMPLE_PARAMETERS) -> fmx::errcode { return std::raise(SIGKILL), 0; }})
