#pragma once

/// The groups of rows that main prints, beside its own.

namespace bench {

void benchGlobals();
void benchSql();
void benchText();

} // namespace bench
