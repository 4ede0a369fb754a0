#pragma once

/// Starting scripts: at once, through the host's start-script call, or later, by the host's idle messages.
///
/// A script is named by its name in any case; what counts as the same is for the host to say. The calling
/// file and its scripts are asked for anew each time. Failing host calls travel as exceptions unless a
/// function says otherwise.

#include "bridge/HostInterface.h"

/// Whether the calling file has a script of that whole name. The file name is not used.
bool IsScriptNameValidInFile(const fmx::Text& scriptName, const fmx::Text& fileName, const fmx::ExprEnv& env);

/// Starts a script of the calling file: 0, whatever the host makes of the call, or -50 when the file has no
/// such script.
fmx::errcode runFMScript(const fmx::Text& scriptName, const fmx::Data& parameter, const fmx::ExprEnv& env);

/// Starts the script that was queued last, if one waits: the moment between two actions of the user. It
/// leaves the queue before the host hears of it, so it starts once at most. One that cannot be started, for
/// whatever reason, is dropped with a line in the platform's log. Throws nothing.
void performScheduledScripts() noexcept;

namespace kst {

/// Does nothing.
void PerformScheduledScripts() noexcept;

} // namespace kst
