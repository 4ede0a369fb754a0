#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"
#include "bridge/StringUtils.h"
#include "bridge/fmlib.h"
#include "platform/Platform.h"
#include "scripts/Scripts.h"

#include <optional>
#include <stdexcept>

/// Starts a script of the calling file, now or at a later moment.

namespace {

constexpr fmx::uint32 kMostParameters = 3;
constexpr double kFarthestAhead = 86400; // a day, in seconds
/// The error of a calculation whose moment lies too far ahead.
constexpr fmx::errcode kWrongTimestamp = -1001;

/// The delay in seconds from a moment or a number. Empty when it lies too far ahead.
///
/// The value's type is not used: a number of seconds reads as a moment of the year 1, so every moment in the
/// past counts as a number. A moment of last week therefore becomes a delay of two thousand years. Solutions
/// rely on this rule.
std::optional<double> delayFrom(const fmx::Data& delayOrTime) {
    const fmx::DateTimeUniquePtr now;
    now->Now();
    const fmx::FixPtUniquePtr nowSeconds(0, fmlib::kPrecision);
    now->GetSecondsSinceEpoch(*nowSeconds);
    const fmx::FixPtUniquePtr thenSeconds(0, fmlib::kPrecision);
    delayOrTime.GetAsTimeStamp().GetSecondsSinceEpoch(*thenSeconds);
    const double ahead = thenSeconds->AsFloat() - nowSeconds->AsFloat();
    if (ahead > kFarthestAhead) return std::nullopt;
    return ahead < 0 ? delayOrTime.GetAsNumber().AsFloat() : ahead;
}

platform::Units unitsOf(const fmx::Text& text) { return wellFormed(unitsFromFMText(text)); }

fmx::errcode answer(fmx::errcode code, fmx::Data& result, const fmx::ExprEnv& env) {
    if (code == kst::kWrongParameter) return kst::answerWithError(code, "Invalid script name", result, env);
    fmlib::FMErrCode2FMData(code, result);
    return 0;
}

fmx::errcode startLater(const fmx::Text& scriptName, const fmx::Data& parameter, double delay,
                        fmx::Data& result, const fmx::ExprEnv& env) {
    platform::logDelay(delay);
    const fmx::TextUniquePtr fileName;
    fmlib::FillFMTextWithCurrentDatabaseFileName(*fileName, env);
    if (!IsScriptNameValidInFile(scriptName, *fileName, env))
        return answer(kst::kWrongParameter, result, env);
    // The result comes first: when the host fails there, no script is left to start.
    const fmx::errcode error = answer(kst::kNoError, result, env);
    if (!platform::scheduleScript({unitsOf(scriptName), unitsOf(*fileName), unitsOf(parameter.GetAsText())},
                                  delay))
        throw std::runtime_error("The platform could not schedule the script");
    return error;
}

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_DoFileMakerScript(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters,
                          fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        kst::SetLastError(kst::kNoError, "", env);
        const fmx::uint32 count = parameters.Size();
        if (count == 0)
            return kst::answerWithError(kst::kWrongParameter, "Not enough parameters", result, env);
        if (count > kMostParameters)
            return kst::answerWithError(kst::kWrongParameter, "Too many parameters", result, env);
        const fmx::DataUniquePtr parameter;
        if (count > 1) parameter->SetAsText(parameters.AtAsText(1), parameter->GetLocale());
        const fmx::Text& scriptName = parameters.AtAsText(0);
        if (count < kMostParameters) return answer(runFMScript(scriptName, *parameter, env), result, env);
        const std::optional<double> delay = delayFrom(parameters.At(2));
        if (!delay) {
            kst::SetLastError(kst::kNoError, "Wrong timestamp", env);
            return kWrongTimestamp;
        }
        return startLater(scriptName, *parameter, *delay, result, env);
    });
}
