// Registers two functions under one identifier.
#include "SoundPlugIn.h"

SAMPLE_PLUG_IN({.secondId = 1})
