#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXExtern.h"
#include "HandlerFrame.h"
#include "Handlers.h"
#include "LastError.h"

/// Functions that solutions may already name and that are still to be written. They are registered, so that
/// such calculations parse, and answer "Not Implemented".

namespace {

fmx::errcode answerNotImplemented(const fmx::ExprEnv& env, fmx::Data& result) {
    return kst::RunHandler(env, result, [&] {
        return kst::AnswerWithError(kst::kNotImplemented, getErrorMessage(kst::kNotImplemented), result, env);
    });
}

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_RegExp_Substitute(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return answerNotImplemented(env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_RegExp_PatternCount(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return answerNotImplemented(env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_GetClientPublicIPAddress(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return answerNotImplemented(env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_GetNameForIP(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return answerNotImplemented(env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_GetIPforName(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return answerNotImplemented(env, result);
}

FMX_PROC(fmx::errcode)
Kestrel_GetAsHTML(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return answerNotImplemented(env, result);
}
