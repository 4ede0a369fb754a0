// Refuses every host version.
#include "SoundPlugIn.h"

SAMPLE_PLUG_IN({.initAnswer = static_cast<FMX_PtrType>(kBadExtnVersion)})
