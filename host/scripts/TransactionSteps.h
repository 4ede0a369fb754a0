#pragma once

#include "host/scripts/StepRun.h"

namespace host::scripts {

/// Takes the open transaction back after an error that spoils it, unless the script has switched that off.
void revertAfterError(StepRun& run, int code);
/// Lets a script go on after its transaction where another script has taken that back. Its file must be open.
void leaveEndedTransaction(Frame& frame);

} // namespace host::scripts
