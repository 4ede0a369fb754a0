#pragma once

#include "host/app/Solution.h"
#include "host/values/Text.h"

#include <cstdint>

/// Styled texts for the conversion into HTML: an ordinary one and some difficult ones.

namespace bench {

inline constexpr std::uint32_t kRun = 20, kParagraph = 400;

/// A solution with the fonts of the styles.
host::Solution solutionWithFonts();

/// One of twelve styles.
host::CharacterStyle styleOfRun(std::uint32_t run);
/// Paragraphs of 400 characters, with a new style every 20.
host::Text ordinaryText(std::uint32_t size);

host::Text newStyleEachCharacter(std::uint32_t size);
host::Text newDeclarationsEachCharacter(std::uint32_t size);
/// All runs are equal after the formattings that no parameter requests are dropped.
host::Text runsThatBecomeEqual(std::uint32_t size);
host::Text styledLines(std::uint32_t count);

} // namespace bench
