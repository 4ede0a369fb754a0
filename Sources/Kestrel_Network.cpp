#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"
#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"
#include "network/GetClientPublicIP.h"
#include "network/NetworkNames.h"

#include <array>
#include <string>

/// Network lookups for solutions. A failed lookup of a name or address is no error: its message is the
/// result.

namespace {

/// Names and addresses are read up to this length, or up to the first zero byte.
constexpr std::size_t kMostBytes = 1023;

fmx::errcode answerWithText(const std::string& s, fmx::Data& result) {
    cFMUtils::resultFromText(*cFMUtils::FMXTextUniquePtrFromString(s), result);
    return 0;
}

fmx::errcode answerLookup(std::string (*lookUp)(const std::string&), const char* messageWithoutParameter,
                          const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        if (parameters.Size() == 0)
            return kst::answerWithError(kst::kWrongParameter, messageWithoutParameter, result, env);
        const std::string asked =
            bytesFromFMText(parameters.AtAsText(0), kMostBytes, fmx::Text::kEncoding_Native);
        return answerWithText(lookUp(asked.substr(0, asked.find('\0'))), result);
    });
}

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_GetClientPublicIPAddress(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        std::array<char, kAddressBufferSize> address{};
        const int code = askForPublicIP(address.data());
        if (code == kPublicIPFound) return answerWithText(address.data(), result);
        return kst::answerWithError(static_cast<short>(code), "Public IP is not available", result, env);
    });
}

FMX_PROC(fmx::errcode)
Kestrel_GetNameForIP(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return answerLookup(slib::NameForIP, "IP address is not specified", env, parameters, result);
}

FMX_PROC(fmx::errcode)
Kestrel_GetIPforName(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return answerLookup(slib::IPForName, "Host name is not specified", env, parameters, result);
}
