#include "Kestrel_Unavailable.h"

#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"

/// Functions that this platform does not support: it has no shells, printers, interpreters, shortcuts or
/// special windows. They stay registered, so that calculations with their names still parse. Parameters are
/// not read.

namespace {

constexpr const char* kNoScripts = "Not implemented in iOS.";
constexpr const char* kUnsupported = "iOS doesn't support this function.";

fmx::errcode refuse(const char* message, const fmx::ExprEnv& env, fmx::Data& result) {
    return kst::runHandler(env, result,
                           [&] { return kst::answerWithError(kst::kNotImplemented, message, result, env); });
}

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_DoSystemScript(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return refuse(kNoScripts, env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_GetPrinterNames(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return refuse(kUnsupported, env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_SetDefaultPrinter(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return refuse(kUnsupported, env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_GetDefaultPrinter(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return refuse(kUnsupported, env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_SetScriptShortcut(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return refuse(kUnsupported, env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_GetSpecialWindows(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return refuse(kUnsupported, env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_DoBashCmd(short, const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&) { return 0; }

int perform_shell_command_and_get_result(const char*, char*, int) { return 0; }
