#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace host::cli {

/// A part of a calculation that begins and does not end: a bracket, a text constant or a comment.
struct OpenPart {
    char16_t mark;          ///< `(`, `[`, `{`, `"`, or `*` for a comment
    std::uint32_t position; ///< where it begins, in units
};

/// The parts that are open at the end of a calculation, innermost last. Brackets that do not match are passed
/// over.
std::vector<OpenPart> openParts(std::u16string_view calculation);

} // namespace host::cli
