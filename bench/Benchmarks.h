#pragma once

/// The rows that main prints beside its own, by what they say.

namespace bench {

// A cost beside its floor.
void benchPlainCalls();
void benchGlobals();
void benchSql();
void benchText();
void benchPatterns();
void benchNetwork();
void benchHtml();
/// Throws std::runtime_error when the rows since the last heading leave a registered function out.
void requireRowsForAllFunctions();

// A cost beside other makers' code for the same work.
void benchCoderBesidePeers();
void benchResponseBesidePeers();
void benchHtmlBesidePeers();

// Figures of their own.
void benchGrowth();
void benchHtmlMemory();

} // namespace bench
