#pragma once

#include "host/values/Data.h"

#include <cstddef>
#include <sqlite3.h>
#include <vector>

namespace host {

/// How the values of an answer are given: typed, or as the texts that SQL writes for them.
enum class ValueForm { typed, sqlText };

/// Binds parameters by position. False where one is missing or the engine refuses it.
bool bindAll(sqlite3_stmt* statement, const DataVect& parameters);

/// The declared types of a statement's columns.
std::vector<DataType> declaredTypes(sqlite3_stmt* statement);

/// Steps a statement to its end and collects its rows, each value with its column's type where it can be
/// converted. Gives the engine's result code: SQLITE_DONE at the end, SQLITE_TOOBIG for an answer beyond the
/// limits.
int collectRows(sqlite3_stmt* statement, const std::vector<DataType>& types, ValueForm form, RowVect& rows);

} // namespace host
