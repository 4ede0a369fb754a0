#pragma once

#include "host/sql/Schema.h"
#include "host/sql/Syntax.h"

/// CREATE, ALTER and DROP.

namespace host {
class Connection;
}

namespace host::sql {

[[nodiscard]] bool isDefinition(const StatementTree& tree);

/// Changes the schema and the store together, or nothing: then it throws Problem.
void define(const StatementTree& tree, Connection& connection, Schema& schema);

} // namespace host::sql
