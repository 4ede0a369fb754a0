#pragma once

#include "host/sql/Schema.h"

#include <string>
#include <string_view>

/// The tables of a schema in the store, and those of the store in a schema.

namespace host {

class Connection;

/// A name in double quotes, as UTF-8.
std::string quotedName(std::u16string_view name);

/// The column of a field's repetition, in double quotes.
std::string columnName(const Field& field, int repetition = 1);

/// The column's declaration: name and type.
std::string columnDeclaration(const Field& field, int repetition);

/// CREATE TABLE with the columns of every record and others, each with a comma in front.
std::string tableStatement(std::u16string_view name, const std::string& columns);

/// Makes the tables that a schema describes. Throws std::runtime_error where the store refuses one.
void makeTables(Connection& connection, const Schema& schema);

/// Adds the store's tables and views that the schema lacks, in the order in which they were made. Empty texts
/// in their columns become NULL where the table allows it.
void addStoredTables(Connection& connection, Schema& schema);

} // namespace host
