#pragma once

#include "host/scripts/StepRun.h"

namespace host::scripts {

/// Takes the open transaction back after an error that spoils it, unless the script has switched that off.
void revertAfterError(StepRun& run, int code);

} // namespace host::scripts
