#pragma once

/// The table of calculation functions and what announces them to the host.
///
/// A function has an identifier, 1 to 26 without 16, which the host passes to its handler; its prototype is
/// string 100 + identifier; its name is the prototype up to the parenthesis.

#include "bridge/HostInterface.h"

/// Fills `out` with the prototype of a function, 101 to 126, or with its name alone; "ERROR" when there is
/// none of that number.
void Do_GetString(unsigned long stringId, fmx::TextUniquePtr& out, bool nameOnly);

/// Announces one function with the name and prototype of its string. `maxArgs` -1: no limit. The host's
/// error code, 0 on success; a failing host call throws.
fmx::errcode RegisterExternalFunction(short id, short minArgs, short maxArgs, unsigned flags,
                                      fmx::ExtPluginType handler);
/// Withdraws one function. The host's error code; a failing host call throws.
fmx::errcode UnRegisterExternalFunction(short id);

/// Announces all functions in the order of their identifiers. At the first that the host refuses, those
/// before it are withdrawn, the last first, and the answer is false; when a host call fails, they are
/// withdrawn and its exception goes on. A start that is not the first withdraws all 26 to 1 before.
bool RegisterExternalFunctions();

/// Withdraws identifiers 25 to 1, in this order, registered or not. Function 26 stays until the host drops it
/// with the plug-in. A function that cannot be withdrawn does not keep the others.
void UnRegisterExternalFunctions() noexcept;
