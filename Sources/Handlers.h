#pragma once

/// The handlers of the calculation functions, each under its function's name.
///
/// The host calls a handler on its own thread, one at a time, whenever a calculation evaluates the function.
/// A handler writes its value into `result` with the result's own locale. It records errors (LastError.h) and
/// throws nothing (HandlerFrame.h). It returns 0, or an error that becomes the calculation's error.

#include "bridge/HostInterface.h"

/// The type of a handler, as fmx::ExtPluginType points to it.
using Handler = FMX_PROC(fmx::errcode)(short functionId, const fmx::ExprEnv& env,
                                       const fmx::DataVect& parameters, fmx::Data& result);

// The plug-in itself
Handler Kestrel_Version;
Handler Kestrel_Get;
Handler Kestrel_Set;
Handler Kestrel_GetLog; ///< not offered to solutions

// Texts and data
Handler Kestrel_ExecuteSQL;
Handler Kestrel_Encode;
Handler Kestrel_Decode;
Handler Kestrel_MergeText;
Handler Kestrel_RegExp_Substitute;
Handler Kestrel_RegExp_PatternCount;
Handler Kestrel_ValueType;
Handler Kestrel_GetTimestamp;
Handler Kestrel_GetAsHTML;

// Values that outlive a calculation
Handler Kestrel_SetGlobal;
Handler Kestrel_GetGlobal;

// Scripts
Handler Kestrel_DoFileMakerScript;

// The network
Handler Kestrel_GetClientPublicIPAddress;
Handler Kestrel_GetNameForIP;
Handler Kestrel_GetIPforName;

// Functions that this platform does not support
Handler Kestrel_DoSystemScript;
Handler Kestrel_GetDefaultPrinter;
Handler Kestrel_SetDefaultPrinter;
Handler Kestrel_GetPrinterNames;
Handler Kestrel_GetSpecialWindows;
Handler Kestrel_SetScriptShortcut;
Handler Kestrel_DoBashCmd;
