#pragma once

#include "host/sql/Functions.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <new>
#include <span>

/// The tables of functions, and what their implementations share. Names with `_` in front serve operators.

namespace host::sql {

std::span<const FunctionRow> textFunctions();
std::span<const FunctionRow> numberFunctions();
std::span<const FunctionRow> dateFunctions();

inline std::array<std::span<const FunctionRow>, 3> functionGroups() {
    return {textFunctions(), numberFunctions(), dateFunctions()};
}

/// STDEV and STDEVP.
int registerDeviations(sqlite3* connection);

/// The frame of a function: NULL for a NULL argument, no exception into the engine.
template<SqlImplementation implementation>
void guarded(sqlite3_context* context, int count, SqlArguments arguments) {
    for (int i = 0; i < count; ++i)
        if (sqlite3_value_type(arguments[i]) == SQLITE_NULL) return sqlite3_result_null(context);
    try {
        implementation(context, count, arguments);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

/// An empty text is NULL everywhere.
inline void giveTextOrNull(sqlite3_context* context, std::string_view text) {
    if (text.empty()) return sqlite3_result_null(context);
    giveText(context, text);
}

/// A whole number as an integer; NULL where there is no result.
inline void giveNumber(sqlite3_context* context, double value) {
    constexpr double mostExact = 9'007'199'254'740'992.0;
    if (!std::isfinite(value)) return sqlite3_result_null(context);
    if (std::trunc(value) == value && std::abs(value) < mostExact)
        return sqlite3_result_int64(context, static_cast<std::int64_t>(value));
    sqlite3_result_double(context, value);
}

/// A number of characters, days and so on, held within what lengths and calendars can take.
inline std::int64_t countOf(sqlite3_value* value) {
    constexpr double most = 1e12;
    return static_cast<std::int64_t>(std::clamp(sqlite3_value_double(value), -most, most));
}

} // namespace host::sql
