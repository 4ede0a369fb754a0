#include "bridge/LastError.h"

#include "bridge/cFMUtils.h"
#include "bridge/fmlib.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace {

const struct {
    short code;
    const char* message;
} kMessages[] = {
    {kst::kNoError, "0"},
    {kst::kNotImplemented, "Not Implemented"},
    {kst::kWrongParameter, "Wrong Parameter"},
    {-80, "Timeout Error"},
    {100, "Could not send push notification"},
    {101, "OneSignal API error"},
    {102, "Notifications are not allowed"},
    {kst::kUnexpectedError, "Uknown Error"}, // solutions know it by this spelling
};

constexpr const char* kNoErrorMessage = "No error";

/// The records by host session. The host makes one call at a time, so there is no lock.
std::map<fmx::uint64, LastError> _lastErrors;

void record(short code, const std::string& message, const fmx::ExprEnv& env) {
    _lastErrors[env.SessionID()] = {code, message};
    kst::SetLastError(code, message, env);
}

LastError recordOf(const fmx::ExprEnv& env) {
    const auto found = _lastErrors.find(env.SessionID());
    return found == _lastErrors.end() ? LastError{kst::kNoError, kNoErrorMessage} : found->second;
}

/// The value of a variable of the solution, or the standard words when it was never set.
fmx::DataUniquePtr valueOf(const std::string& variable, const fmx::ExprEnv& env) {
    fmx::DataUniquePtr value;
    env.Evaluate(*cFMUtils::FMXTextUniquePtrFromString("If( IsEmpty( " + variable +
                                                       " ); \"No Error Message\"; " + variable + " )"),
                 *value);
    return value;
}

void putVariableAsText(const std::string& variable, fmx::Data& result, const fmx::ExprEnv& env) {
    cFMUtils::resultFromText(valueOf(variable, env)->GetAsText(), result);
}

} // namespace

std::string getErrorMessage(short code) {
    const auto* const row = std::find_if(std::begin(kMessages), std::end(kMessages),
                                         [code](const auto& candidate) { return candidate.code == code; });
    return row == std::end(kMessages) ? "Error code has no Error Message" : row->message;
}

void setLastError(short code, const std::string& message, fmx::Data& result, const fmx::ExprEnv& env,
                  bool recordSuccess, bool useDefaultMessage) {
    const std::string text = message.empty() && useDefaultMessage ? getErrorMessage(code) : message;
    cFMUtils::FMResultFromString(code != kst::kNoError ? "?" : text, result);
    if (code != kst::kNoError)
        record(code, text, env);
    else if (recordSuccess)
        record(kst::kNoError, kNoErrorMessage, env);
}

void getLastErrorCode(const fmx::ExprEnv& env, fmx::Data& result) {
    cFMUtils::FMResultFromInt(recordOf(env).code, result);
}

void getLastErrorMessage(const fmx::ExprEnv& env, fmx::Data& result) {
    cFMUtils::FMResultFromString(recordOf(env).message, result);
}

namespace kst {

fmx::errcode SetLastError(const short& code, const std::string& message, const fmx::ExprEnv& env) {
    const std::string expression = "Let ( [ $$Kestrel_LastError = " + std::to_string(code) +
                                   " ; $$Kestrel_LastErrorMessage = \"" + message + "\" ] ; \"\" )";
    const fmx::DataUniquePtr discarded;
    return env.Evaluate(*cFMUtils::FMXTextUniquePtrFromString(expression), *discarded);
}

fmx::errcode answerWithError(short code, const std::string& message, fmx::Data& result,
                             const fmx::ExprEnv& env) {
    SetLastError(code, message, env);
    fmlib::FMErrCode2FMData(code, result);
    return 0;
}

void GetLastErrorCode(fmx::Data& result, const fmx::ExprEnv& env) {
    const fmx::DataUniquePtr value = valueOf("$$Kestrel_LastError", env);
    result.SetAsNumber(value->GetAsNumber(), fmx::Data::kDTNumber);
}

void GetLastErrorMessage(fmx::Data& result, const fmx::ExprEnv& env) {
    putVariableAsText("$$Kestrel_LastErrorMessage", result, env);
}

void GetLastScriptStderr(fmx::Data& result, const fmx::ExprEnv& env) {
    putVariableAsText("$$Kestrel_LastScriptStderr", result, env);
}

short FilterErrCode(const short& code) {
    const bool isKnown = std::find(std::begin(kstErrors), std::end(kstErrors), code) != std::end(kstErrors);
    return isKnown ? code : kUnexpectedError;
}

fmx::errcode ProcessSTDException(const std::exception& e, fmx::Data& result, const fmx::ExprEnv& env,
                                 bool /*unused*/) {
    fmlib::FMErrCode2FMData(kUnexpectedError, result);
    return SetLastError(kUnexpectedError, e.what(), env);
}

fmx::errcode ProcessFatalException(fmx::Data& result, const fmx::ExprEnv& env, bool /*unused*/) {
    fmlib::FMErrCode2FMData(kUnexpectedError, result);
    return SetLastError(kUnexpectedError, "Unknown fatal error occured", env); // spelled as solutions know it
}

} // namespace kst
