#pragma once

#include "host/sql/Schema.h"

#include <string>
#include <string_view>

/// The tables that describe a file's tables to statements.

namespace host::sql {

/// The system table of that name, in any case; null where there is none.
const BaseTable* systemTable(std::u16string_view name);

/// A query that gives the rows of a system table, in columns `column1`, `column2` and so on.
std::string systemRows(const BaseTable& table, const Schema& schema, std::u16string_view fileName);

/// A text in single quotes, as UTF-8.
std::string quotedText(std::u16string_view text);

} // namespace host::sql
