#pragma once

/// How functions report their outcome: something in the result, and a record of code and message that the
/// solution reads afterwards.
///
/// The record lives in the solution, as $$Kestrel_LastError and $$Kestrel_LastErrorMessage of the calling
/// file. setLastError keeps a second copy by host session, for the life of the process. Codes are the host's
/// 16-bit error numbers, 0 for success.

#include "bridge/HostInterface.h"

#include <exception>
#include <string>

/// The codes that the plug-in itself gives.
namespace kst {

constexpr short kNoError = 0;
constexpr short kNotImplemented = -4;
constexpr short kWrongParameter = -50;
constexpr short kUnexpectedError = 2400;

/// The codes that FilterErrCode lets through.
inline constexpr short kstErrors[] = {kNoError, kNotImplemented, kWrongParameter};

} // namespace kst

/// One outcome.
struct LastError {
    short code = 0;
    std::string message;
};

/// The standard message of a code.
std::string getErrorMessage(short code);

/// Puts the outcome into the result and records it. Without a message, `useDefaultMessage` takes the code's
/// standard one. On an error the result is "?". On success it is the message, which then carries the
/// function's value, and {0, "No error"} is recorded only with `recordSuccess`.
void setLastError(short code, const std::string& message, fmx::Data& result, const fmx::ExprEnv& env,
                  bool recordSuccess, bool useDefaultMessage);

/// The session's own copy as text; 0 and "No error" when the session has none.
void getLastErrorCode(const fmx::ExprEnv& env, fmx::Data& result);
void getLastErrorMessage(const fmx::ExprEnv& env, fmx::Data& result);

namespace kst {

/// Writes the two variables of the solution and gives the evaluation's error code. The message goes into a
/// calculation as it is: one with a quotation mark in it makes the calculation fail, and neither variable
/// changes.
fmx::errcode SetLastError(const short& code, const std::string& message, const fmx::ExprEnv& env);

/// Records the code and message and puts the code into the result as a number. 0, which is what a handler
/// answers to the host after an error of its own.
fmx::errcode answerWithError(short code, const std::string& message, fmx::Data& result,
                             const fmx::ExprEnv& env);

/// The solution's variables: the code as a number, the others as text with the result's locale. A variable
/// never set reads "No Error Message".
void GetLastErrorCode(fmx::Data& result, const fmx::ExprEnv& env);
void GetLastErrorMessage(fmx::Data& result, const fmx::ExprEnv& env);
void GetLastScriptStderr(fmx::Data& result, const fmx::ExprEnv& env);

/// The code if it is one of kstErrors, else 2400.
short FilterErrCode(const short& code);

/// Turn what a handler caught into the number 2400 in the result and a record with the exception's text.
/// Both give what SetLastError gives. The flag is not used. They ask the host, so they may throw themselves.
fmx::errcode ProcessSTDException(const std::exception& e, fmx::Data& result, const fmx::ExprEnv& env,
                                 bool unused);
fmx::errcode ProcessFatalException(fmx::Data& result, const fmx::ExprEnv& env, bool unused);

} // namespace kst
