#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The words of a calculation, one at a time.

namespace host::calc {

enum class Operator : std::uint8_t;

struct Token {
    enum class Kind : std::uint8_t {
        end,
        number,   ///< text: its digits
        text,     ///< text: the characters it stands for
        name,     ///< text: as written; folded for comparisons
        variable, ///< text: without the dollar signs
        op,       ///< one of `Operator`
        logicalNot,
        leftParenthesis,
        rightParenthesis,
        leftBracket,
        rightBracket,
        semicolon,
        unknown ///< a character that means nothing
    };

    Kind kind = Kind::end;
    std::uint32_t position = 0; ///< in units of the source
    std::u16string text;
    bool ofFile = false; ///< a `$$` variable
    Operator op{};
};

/// Blanks and comments are skipped. Throws `Error` for a comment (1205) or a text (1206) without an end and
/// for a dollar sign without a name (1209); `position` then says where it began.
class Lexer {
public:
    explicit Lexer(std::u16string_view source) : source_(source) {}
    Token next();
    /// Where the latest token begins.
    [[nodiscard]] std::uint32_t position() const { return static_cast<std::uint32_t>(start_); }

private:
    void skipBlanks();
    [[nodiscard]] bool sees(std::u16string_view text) const { return source_.substr(at_).starts_with(text); }
    [[nodiscard]] char16_t unit(std::size_t offset = 0) const {
        return at_ + offset < source_.size() ? source_[at_ + offset] : u'\0';
    }
    Token quoted();
    Token number();
    Token variable();
    Token word();
    Token symbol();
    std::u16string nameHere();

    std::u16string_view source_;
    std::size_t at_ = 0, start_ = 0;
};

} // namespace host::calc
