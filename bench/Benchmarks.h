#pragma once

/// The rows that main prints in addition to its own, by the kind of figure.

namespace bench {

// Costs and their floors.
void benchPlainCalls();
void benchGlobals();
void benchSql();
void benchText();
void benchPatterns();
void benchNetwork();
void benchHtml();
/// Throws std::runtime_error when a registered function has no row since the last heading.
void requireRowsForAllFunctions();

// Costs compared with other code for the same work.
void benchCoderBesidePeers();
void benchResponseBesidePeers();
void benchHtmlBesidePeers();

// Growth and memory.
void benchGrowth();
void benchHtmlMemory();

} // namespace bench
