#pragma once

#include "host/values/Data.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// Texts in pieces: words and the values of lists.

namespace host::calc {

/// A piece of a text, in units.
struct Piece {
    std::uint32_t start, size;
    [[nodiscard]] std::u16string_view in(std::u16string_view units) const {
        return units.substr(start, size);
    }
};

/// The words by Unicode's rules for word boundaries. Signs separate words, but a point between digits and an
/// apostrophe between letters do not.
std::vector<Piece> wordsOf(std::u16string_view units);

/// The values of a list, without the returns. A return at the very end opens no further value.
std::vector<Piece> valuesOf(std::u16string_view units);

/// The text from the first word's first character to the last word's last.
DataRef wordsResult(const Text& text, std::span<const Piece> words);

/// The values, each followed by a return.
DataRef valuesResult(const Text& text, std::span<const Piece> values);

} // namespace host::calc
