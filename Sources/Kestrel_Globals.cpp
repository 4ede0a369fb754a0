#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"
#include "bridge/StringUtils.h"
#include "bridge/fmlib.h"
#include "globals/Dictionary.h"

#include <iterator>

/// The store of global values for solutions. Success is not recorded: the last error stays as it was.

namespace {

bool isDieOnClose(const fmx::Text& option) {
    constexpr const char* words[] = {"dieonclose"};
    return fmlib::FindFMTextInArray(option, words, std::size(words)) == 0;
}

bool isEmptyText(const fmx::Data& value) {
    return value.GetNativeType() == fmx::Data::kDTText && isEmpty(value.GetAsText());
}

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_SetGlobal(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        const fmx::uint32 count = parameters.Size();
        if (count < 2)
            return kst::answerWithError(kst::kWrongParameter, "Key and value must be specified", result, env);
        const fmx::Text& key = parameters.AtAsText(0);
        const fmx::Data& value = parameters.At(1);
        if (isEmpty(key)) {
            kst::globalDictionary.clean();
            return fmx::errcode{0};
        }
        if (isEmptyText(value)) {
            kst::globalDictionary.removeKeyValue(key);
            return fmx::errcode{0};
        }
        const bool diesOnClose = count > 2;
        if (diesOnClose && !isDieOnClose(parameters.AtAsText(2)))
            return kst::answerWithError(kst::kWrongParameter, "Unknown value of parameter moreOptions",
                                        result, env);
        // The result comes first: a call that ends in an error stores nothing.
        fmlib::FMData2FMData(value, result);
        if (diesOnClose)
            kst::globalDictionary.storeLocalValueForKey(env, key, value);
        else
            kst::globalDictionary.storeValueForKey(key, value);
        return fmx::errcode{0};
    });
}

FMX_PROC(fmx::errcode)
Kestrel_GetGlobal(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        if (parameters.Size() == 0)
            return kst::answerWithError(kst::kWrongParameter, "Key must be specified", result, env);
        const fmx::Text& key = parameters.AtAsText(0);
        if (!isEmpty(key)) kst::globalDictionary.loadValueForKey(key, result);
        return fmx::errcode{0};
    });
}
