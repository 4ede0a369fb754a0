#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host::sql {

enum class TokenKind : std::uint8_t { word, quotedName, text, number, sign, end };

struct Token {
    TokenKind kind = TokenKind::end;
    std::u16string text; ///< of quoted names and texts without the quotes
    /// A sign, or an unquoted word in upper case; empty for all else and for words beyond ASCII.
    std::string word;
    std::size_t position = 0; ///< in UTF-16 units
};

/// The tokens of a statement; the last one is the end. A character that belongs to none, or a quote without
/// its other one, throws Problem.
std::vector<Token> tokensOf(std::u16string_view statement);

/// Whether a word in upper case must be quoted to be a name.
bool isReserved(std::string_view word);

} // namespace host::sql
