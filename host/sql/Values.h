#pragma once

#include "host/sql/Rows.h"
#include "host/values/Data.h"

#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>

/// Conversion of values between calculations and SQL.

namespace host {

/// Binds a value to a parameter position, counted from 1. Gives the engine's result code.
int bindValue(sqlite3_stmt* statement, int place, const Data& value);

/// Gives a value as the result of a function, converted to a type; NULL where it has no such reading.
void giveValue(sqlite3_context* context, const Data& value, DataType type);

/// Whether the store keeps all digits of a number.
bool isStoredWhole(const Decimal& number);

/// A number in the store; nothing for all else.
std::optional<Decimal> storedDecimal(sqlite3_value* value);

/// A date, time or timestamp as SQL writes it, and read from such a text.
std::string sqlText(const DateTime& value, DataType type);
std::optional<DateTime> readSqlText(std::u16string_view text, DataType type);

/// The type of value that a declared column type stands for; invalid when it stands for none.
DataType declaredType(const char* declaration);

/// A column of the current row, converted to the declared type where possible. The SQL form is a text. The
/// size of a text or container is added to `bytes`.
Data columnValue(sqlite3_stmt* statement, int column, DataType declared, ValueForm form, std::size_t& bytes);

} // namespace host
