#pragma once

#include "host/sql/Rows.h"
#include "host/values/Data.h"

#include <sqlite3.h>

/// Conversion of values between calculations and SQL.

namespace host {

/// Binds a value to a parameter position, counted from 1. Gives the engine's result code.
int bindValue(sqlite3_stmt* statement, int place, const Data& value);

/// The type of value that a declared column type stands for; invalid when it stands for none.
DataType declaredType(const char* declaration);

/// A column of the current row, converted to the declared type where possible. The SQL form is a text.
DataRef columnValue(sqlite3_stmt* statement, int column, DataType declared, ValueForm form);

} // namespace host
