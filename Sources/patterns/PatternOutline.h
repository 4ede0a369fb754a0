#pragma once

/// What can be told of a pattern before it is compiled, and the form in which it is compiled.

#include <cstddef>
#include <string>
#include <string_view>

namespace kst {

/// Reading takes one pass and a fixed amount of stack. Of a malformed pattern nothing is promised but that:
/// whoever compiles it finds the fault.
struct PatternOutline {
    /// The pattern with every "." as the set of characters that it stands for: the library asks the traits
    /// about the members of a set, but not about ".". Matches and groups are the same.
    std::wstring atStart;
    /// That for attempts behind the start of the text, where "^" never matches: the library takes the place
    /// where it begins to look for the start of the text.
    std::wstring behindStart;
    /// Greatest depth of groups in groups.
    std::size_t depth = 0;
    std::size_t repetitions = 0;
    /// Repetitions, groups and bars between alternatives.
    std::size_t branches = 0;
    /// How many alternatives a match may leave open for each character that it passes; at least 1.
    double openPerCharacter = 1;
    /// About how many ways, or how many rounds, there are through parts of the pattern in which no character
    /// is compared; at least 1. `(|)(|)(|)$` has eight.
    double waysWithoutReading = 1;
};

PatternOutline outlineOf(std::wstring_view pattern);

} // namespace kst
