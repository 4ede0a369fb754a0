#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"
#include "bridge/fmlib.h"
#include "globals/Dictionary.h"
#include "selectors/SortNumbers.h"

#include <array>
#include <cstddef>

/// The plug-in's state, read and changed by selector words. The whole word must match; case does not count.

namespace {

using Action = void (*)(const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result);

struct Selector {
    const char* word;
    Action action;
};

void doNothing(const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&) {}

void getLastErrorCode(const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    kst::GetLastErrorCode(result, env);
}

void getLastErrorMessage(const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    kst::GetLastErrorMessage(result, env);
}

void getScriptErrorOutput(const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    kst::GetLastScriptStderr(result, env);
}

void getTimestamp(const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data& result) {
    const fmx::DateTimeUniquePtr now;
    fmlib::SetDateTimeToNow(*now);
    result.SetAsTimeStamp(*now, fmx::Data::kDTTimeStamp);
}

/// A missing second parameter makes the host call throw, which the frame reports.
void getSorted(const fmx::ExprEnv&, const fmx::DataVect& parameters, fmx::Data& result) {
    SortNumberInFMText(parameters.AtAsText(1), result);
}

void answerNotImplemented(const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    setLastError(kst::kNotImplemented, "", result, env, true, true);
}

/// Any number is accepted. It is set last, so that a call that ends in an error changes nothing.
void setCleanPeriod(const fmx::ExprEnv&, const fmx::DataVect& parameters, fmx::Data& result) {
    const double seconds = parameters.AtAsNumber(1).AsFloat();
    fmlib::FMData2FMData(parameters.At(1), result);
    kst::gCleanPeriod = seconds;
}

/// A selector without a function has an effect on other platforms only.
constexpr std::array kGetSelectors{
    Selector{"lastError", getLastErrorCode},
    Selector{"lastErrorMessage", getLastErrorMessage},
    Selector{"timestamp", getTimestamp},
    Selector{"sort", getSorted},
    Selector{"stderr", getScriptErrorOutput},
    Selector{"inlineDocumentation", doNothing},
    Selector{"scriptStatus", answerNotImplemented},
    Selector{"scriptResult", answerNotImplemented},
};

constexpr std::array kSetSelectors{
    Selector{"globalDieInterval", setCleanPeriod},
    Selector{"inlineDocumentation", doNothing},
    Selector{"scriptTerminate", doNothing},
};

template<std::size_t count>
fmx::errcode select(const std::array<Selector, count>& selectors, fmx::uint32 fewestParameters,
                    const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        if (parameters.Size() < fewestParameters)
            return kst::answerWithError(kst::kWrongParameter, "Not enough parameters", result, env);
        std::array<const char*, count> words{};
        for (std::size_t i = 0; i < count; ++i)
            words[i] = selectors[i].word;
        const unsigned found = fmlib::FindFMTextInArray(parameters.AtAsText(0), words.data(), count);
        if (found >= count)
            return kst::answerWithError(kst::kWrongParameter, "Unrecognized selector", result, env);
        selectors[found].action(env, parameters, result);
        return fmx::errcode{0};
    });
}

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_Get(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return select(kGetSelectors, 1, env, parameters, result);
}

FMX_PROC(fmx::errcode)
Kestrel_Set(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return select(kSetSelectors, 2, env, parameters, result);
}
