#pragma once

#include "host/values/Data.h"

#include <sqlite3.h>

/// Values of calculations to SQL and back.

namespace host {

/// Binds a value to a place counted from 1; gives the engine's result code.
int bindValue(sqlite3_stmt* statement, int place, const Data& value);

/// The kind of value that a declared column type stands for; invalid when it says nothing.
DataType declaredType(const char* declaration);

/// A column of the current row, read as the declared type where that can be done.
DataRef columnValue(sqlite3_stmt* statement, int column, DataType declared);

} // namespace host
