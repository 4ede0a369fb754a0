#pragma once

/// The groups of rows that main prints, beside its own.

namespace bench {

void benchGlobals();
void benchSql();
void benchText();
void benchNetwork();
void benchHtml();
void benchPatterns();
void benchGrowth();

} // namespace bench
