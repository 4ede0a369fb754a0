#pragma once

/// The start of scripts: at once, by the host's start-script call, or later, at one of the host's idle
/// messages.
///
/// The case of a script's name does not count; the host compares names. The calling file and its scripts are
/// read from the host each time. A failing host call throws unless a function says otherwise.

#include "bridge/HostInterface.h"

/// True when the calling file has a script of exactly this name. The file name is not used.
bool IsScriptNameValidInFile(const fmx::Text& scriptName, const fmx::Text& fileName, const fmx::ExprEnv& env);

/// Starts a script of the calling file. Returns -50 when the file has no such script, else 0, also when the
/// host's call fails with an error code.
fmx::errcode runFMScript(const fmx::Text& scriptName, const fmx::Data& parameter, const fmx::ExprEnv& env);

/// Starts the script that was queued last, if there is one. The caller is an idle message between two actions
/// of the user. The script leaves the queue before the host's call, so it starts once at most. A script that
/// cannot be started is dropped with a line in the platform's log. Throws nothing.
void performScheduledScripts() noexcept;

namespace kst {

/// Does nothing.
void PerformScheduledScripts() noexcept;

} // namespace kst
