#pragma once

/// The table of calculation functions, and their registration with the host.
///
/// A function has an identifier, 1 to 26 without 16, which the host passes to its handler. Its prototype is
/// string 100 + identifier. Its name is the prototype up to the parenthesis.

#include "bridge/HostInterface.h"

/// Fills `out` with the prototype of a function, 101 to 126, or with its name alone. Any other number gives
/// "ERROR".
void Do_GetString(unsigned long stringId, fmx::TextUniquePtr& out, bool nameOnly);

/// Registers one function with the name and prototype of its string. `maxArgs` -1 means no limit. Returns the
/// host's error code, 0 on success. A failing host call throws.
fmx::errcode RegisterExternalFunction(short id, short minArgs, short maxArgs, unsigned flags,
                                      fmx::ExtPluginType handler);
/// Withdraws one function. Returns the host's error code. A failing host call throws.
fmx::errcode UnRegisterExternalFunction(short id);

/// Registers all functions in the order of their identifiers. When the host refuses one, the functions before
/// it are withdrawn, the last first, and the result is false. When a host call throws, they are withdrawn and
/// the exception is passed on. A later start withdraws all, 26 to 1, before it registers them.
bool RegisterExternalFunctions();

/// Withdraws identifiers 25 to 1, in this order, registered or not. Function 26 stays until the host unloads
/// the plug-in. A failure to withdraw one function does not stop the rest.
void UnRegisterExternalFunctions() noexcept;
