#pragma once

#include "host/sql/FunctionArguments.h"
#include "host/values/Data.h"

#include <chrono>
#include <string>
#include <string_view>

/// The functions of statements.

namespace host::sql {

/// The surroundings of functions. They outlive the connection's statements.
struct FunctionContext {
    const std::chrono::steady_clock::time_point& deadline;
    std::string account;
};

struct FunctionRow {
    std::string_view name; ///< in upper case
    /// A letter each: n a number, s a text, d a date or timestamp, t a time or timestamp, c a container.
    /// Parameters after `?` may be left out.
    std::string_view parameters;
    DataType result;
    SqlImplementation implementation;
    bool isBare = false; ///< may stand without parentheses, and changes from call to call
};

/// Null where there is no such function.
const FunctionRow* functionRow(std::string_view name);

/// True also for COALESCE, NULLIF and STRVAL, whose types depend on their arguments.
bool isFunction(std::string_view name);
bool isAggregate(std::string_view name);
/// A function that may stand without parentheses.
bool isMoment(std::string_view name);

/// The name under which the store knows a function.
std::string storeName(std::string_view name);

/// Registers the functions, and those that operators use. Gives the engine's result code.
int registerFunctions(sqlite3* connection, FunctionContext& context);

} // namespace host::sql
