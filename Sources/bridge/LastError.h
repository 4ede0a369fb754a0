#pragma once

/// The outcome of a function: a value in the result, and a record of code and message for the solution.
///
/// The record is kept in the variables $$Kestrel_LastError and $$Kestrel_LastErrorMessage of the calling
/// file. setLastError keeps a second record for each host session, until the process ends. Codes are the
/// host's 16-bit error numbers, 0 for success.

#include "bridge/HostInterface.h"

#include <exception>
#include <string>

/// The plug-in's own codes.
namespace kst {

constexpr short kNoError = 0;
constexpr short kNotImplemented = -4;
constexpr short kWrongParameter = -50;
constexpr short kUnexpectedError = 2400;

/// The codes that FilterErrCode leaves unchanged.
inline constexpr short kstErrors[] = {kNoError, kNotImplemented, kWrongParameter};

} // namespace kst

/// One outcome.
struct LastError {
    short code = 0;
    std::string message;
};

/// The standard message of a code.
std::string getErrorMessage(short code);

/// Puts the outcome into the result and records it. An empty message is replaced by the code's standard one
/// with `useDefaultMessage`. On an error the result is "?". On success the result is the message, which is
/// the function's value, and {0, "No error"} is recorded only with `recordSuccess`.
void setLastError(short code, const std::string& message, fmx::Data& result, const fmx::ExprEnv& env,
                  bool recordSuccess, bool useDefaultMessage);

/// The session's record as text; 0 and "No error" when the session has none.
void getLastErrorCode(const fmx::ExprEnv& env, fmx::Data& result);
void getLastErrorMessage(const fmx::ExprEnv& env, fmx::Data& result);

namespace kst {

/// Writes the two variables of the solution and returns the evaluation's error code. The message goes into a
/// calculation without quoting: a quotation mark makes the calculation fail, and neither variable changes.
fmx::errcode SetLastError(const short& code, const std::string& message, const fmx::ExprEnv& env);

/// Records the code and message and puts the code into the result as a number. Returns 0, the handler's
/// return value after an error of its own.
fmx::errcode answerWithError(short code, const std::string& message, fmx::Data& result,
                             const fmx::ExprEnv& env);

/// The solution's variables: the code as a number, the others as text with the result's locale. A variable
/// that was never set reads "No Error Message".
void GetLastErrorCode(fmx::Data& result, const fmx::ExprEnv& env);
void GetLastErrorMessage(fmx::Data& result, const fmx::ExprEnv& env);
void GetLastScriptStderr(fmx::Data& result, const fmx::ExprEnv& env);

/// The code if it is one of kstErrors, else 2400.
short FilterErrCode(const short& code);

/// Put the number 2400 into the result and record the text of the exception that a handler caught. Both
/// return the return value of SetLastError. The flag is not used. Host calls in them may throw.
fmx::errcode ProcessSTDException(const std::exception& e, fmx::Data& result, const fmx::ExprEnv& env,
                                 bool unused);
fmx::errcode ProcessFatalException(fmx::Data& result, const fmx::ExprEnv& env, bool unused);

} // namespace kst
