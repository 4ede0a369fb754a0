#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The tokens of a calculation, one at a time.

namespace host::calc {

enum class Operator : std::uint8_t;

struct Token {
    enum class Kind : std::uint8_t {
        end,
        number,   ///< text: its digits
        text,     ///< text: the characters it stands for
        name,     ///< text: as written, inner blanks included; table: the part before `::`
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
    bool ofFile = false;      ///< a `$$` variable
    bool isQuoted = false;    ///< a name written as `${name}`: no function, no keyword
    bool isQualified = false; ///< a name with a table
    Operator op{};
    std::uint32_t position = 0, length = 0; ///< in units of the source
    std::u16string text, table;
};

/// Blanks and comments are skipped. Throws `Error` for a comment (1205) or a text (1206) without an end, for
/// `${` without a brace that closes it (1203), and for a dollar sign or two colons without a name (1209);
/// `position` then says where it began.
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
    [[nodiscard]] std::size_t wordEnd(std::size_t from) const;
    Token read();
    Token quotedText();
    Token number();
    Token variable();
    Token name();
    Token symbol();
    bool takeColons();
    std::u16string plainName();
    std::u16string quotedName();

    std::u16string_view source_;
    std::size_t at_ = 0, start_ = 0;
};

} // namespace host::calc
