#pragma once

/// Facts about a pattern before it is compiled, and the form in which it is compiled.

#include <cstddef>
#include <string>
#include <string_view>

namespace kst {

/// Reading takes one pass and a fixed amount of stack. A malformed pattern gets an outline too; compiling its
/// `atStart` finds the fault.
struct PatternOutline {
    /// The pattern with every "." as the set of characters that it stands for: the library asks the traits
    /// about the members of a set, but not about ".". Matches and groups are the same.
    std::wstring atStart;
    /// The pattern for attempts after the start of the text, where "^" never matches: the library takes the
    /// position where a search begins for the start of the text.
    std::wstring afterStart;
    /// Greatest depth of groups in groups.
    std::size_t depth = 0;
    std::size_t repetitions = 0;
    /// Repetitions, groups and bars between alternatives.
    std::size_t branches = 0;
    /// The largest number of alternatives that a match leaves open from one comparison of a character to the
    /// next; at least 1.
    double open = 1;
    /// The largest number of steps of a search from one comparison to the next; `(|)(|)(|)$` has some twenty.
    double steps = 0;
};

PatternOutline outlineOf(std::wstring_view pattern);

} // namespace kst
