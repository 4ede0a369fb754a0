#pragma once

#include "host/app/Solution.h"
#include "host/values/Text.h"

#include <cstdint>

/// Styled texts for the conversion into HTML: an ordinary one and some that are unkind to it.

namespace bench {

inline constexpr std::uint32_t kRun = 20, kParagraph = 400;

/// With the fonts that the styles name.
host::Solution solutionWithFonts();

/// One of twelve styles.
host::CharacterStyle styleOfRun(std::uint32_t run);
/// Paragraphs of 400 characters, with a new style every 20.
host::Text ordinaryText(std::uint32_t size);

host::Text newStyleEachCharacter(std::uint32_t size);
host::Text newDeclarationsEachCharacter(std::uint32_t size);
/// Without what no parameter asks for, all runs look alike.
host::Text runsThatBecomeEqual(std::uint32_t size);
host::Text styledLines(std::uint32_t count);

} // namespace bench
