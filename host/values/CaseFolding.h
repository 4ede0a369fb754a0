#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace host {

constexpr bool isAscii(char16_t unit) { return unit < 0x80; }
constexpr char16_t foldAscii(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

/// A text without regard to case: ICU's full case folding, the same in every language.
std::u16string foldCase(std::u16string_view units);

/// The folded form of one character.
struct FoldedCharacter {
    std::array<char16_t, 3> units;
    std::size_t size;
};
FoldedCharacter foldOther(char32_t character); ///< for characters beyond ASCII
inline FoldedCharacter foldCase(char32_t character) {
    if (character >= 0x80) return foldOther(character);
    return {.units = {foldAscii(static_cast<char16_t>(character))}, .size = 1};
}

} // namespace host
