#include "host/calc/Lexer.h"

#include "host/calc/Node.h"

#include <algorithm>
#include <array>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace host::calc {

namespace {

struct Symbol {
    std::u16string_view text;
    Token::Kind kind;
    Operator op = {};
};

/// A longer symbol comes before the shorter one that it begins with.
constexpr std::array symbols{
    Symbol{u"<>", Token::Kind::op, Operator::notEqual},
    Symbol{u"<=", Token::Kind::op, Operator::lessOrEqual},
    Symbol{u">=", Token::Kind::op, Operator::greaterOrEqual},
    Symbol{u"<", Token::Kind::op, Operator::less},
    Symbol{u">", Token::Kind::op, Operator::greater},
    Symbol{u"=", Token::Kind::op, Operator::equal},
    Symbol{u"≠", Token::Kind::op, Operator::notEqual},
    Symbol{u"≤", Token::Kind::op, Operator::lessOrEqual},
    Symbol{u"≥", Token::Kind::op, Operator::greaterOrEqual},
    Symbol{u"+", Token::Kind::op, Operator::add},
    Symbol{u"-", Token::Kind::op, Operator::subtract},
    Symbol{u"*", Token::Kind::op, Operator::multiply},
    Symbol{u"/", Token::Kind::op, Operator::divide},
    Symbol{u"^", Token::Kind::op, Operator::power},
    Symbol{u"&", Token::Kind::op, Operator::join},
    Symbol{u"(", Token::Kind::leftParenthesis},
    Symbol{u")", Token::Kind::rightParenthesis},
    Symbol{u"[", Token::Kind::leftBracket},
    Symbol{u"]", Token::Kind::rightBracket},
    Symbol{u";", Token::Kind::semicolon},
};

struct Keyword {
    std::u16string_view text; ///< folded
    Token::Kind kind;
    Operator op = {};
    std::u16string_view digits = {};
};
constexpr std::array keywords{
    Keyword{u"not", Token::Kind::logicalNot},
    Keyword{u"and", Token::Kind::op, Operator::logicalAnd},
    Keyword{u"or", Token::Kind::op, Operator::logicalOr},
    Keyword{u"xor", Token::Kind::op, Operator::logicalXor},
    Keyword{u"true", Token::Kind::number, {}, u"1"},
    Keyword{u"false", Token::Kind::number, {}, u"0"},
};
constexpr std::size_t longestKeyword = 5;

/// The keyword; null for a word that is none.
const Keyword* keywordIn(std::u16string_view word) {
    if (word.size() > longestKeyword) return nullptr;
    const std::u16string folded = foldName(word);
    const auto* row = std::find_if(keywords.begin(), keywords.end(),
                                   [&](const Keyword& keyword) { return keyword.text == folded; });
    return row == keywords.end() ? nullptr : row;
}

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

/// The signs of the language, and the quotation marks that word processors put in place of its own.
constexpr std::u16string_view reserved = u"\x7F,+-*/\\^&=≠><≤≥()[]{}\";:$¶“”„‟";

constexpr std::array<bool, 128> asciiNameParts = [] {
    std::array<bool, 128> parts{};
    for (std::size_t unit = u'!'; unit < parts.size(); ++unit)
        parts[unit] = reserved.find(static_cast<char16_t>(unit)) == std::u16string_view::npos;
    return parts;
}();

/// Any sign that is not reserved may stand in a name.
bool isNamePart(UChar32 point) {
    if (point < 0x80) return asciiNameParts[static_cast<std::size_t>(point)];
    return u_isgraph(point) != 0 &&
           (point > 0xFFFF || reserved.find(static_cast<char16_t>(point)) == std::u16string_view::npos);
}
bool isNameStart(UChar32 point) { return point != '.' && u_isdigit(point) == 0 && isNamePart(point); }

Token made(Token::Kind kind, std::u16string_view text = {}, Operator op = {}) {
    Token token;
    token.kind = kind;
    token.text = text;
    token.op = op;
    return token;
}

} // namespace

void Lexer::skipBlanks() {
    while (at_ < source_.size()) {
        if (u_isUWhiteSpace(source_[at_]) != 0) {
            ++at_;
        } else if (sees(u"//")) {
            at_ = std::min(source_.find_first_of(u"\r\n", at_), source_.size());
        } else if (sees(u"/*")) {
            start_ = at_;
            const std::size_t close = source_.find(u"*/", at_ + 2);
            if (close == std::u16string_view::npos) throw Error{error::unterminatedComment};
            at_ = close + 2;
        } else {
            return;
        }
    }
}

Token Lexer::next() {
    skipBlanks();
    start_ = at_;
    Token token = at_ < source_.size() ? read() : Token();
    token.position = position();
    token.length = static_cast<std::uint32_t>(at_ - start_);
    return token;
}

Token Lexer::read() {
    if (unit() == u'"') return quotedText();
    if (isDigit(unit()) || (unit() == u'.' && isDigit(unit(1)))) return number();
    if (sees(u"${")) return name();
    if (unit() == u'$') return variable();
    UChar32 point = 0;
    std::size_t ahead = at_;
    U16_NEXT(source_.data(), ahead, source_.size(), point);
    return isNameStart(point) ? name() : symbol();
}

Token Lexer::quotedText() {
    Token token = made(Token::Kind::text);
    for (++at_; at_ < source_.size(); ++at_) {
        char16_t character = unit();
        if (character == u'"') {
            ++at_;
            return token;
        }
        const char16_t after = unit(1);
        if (character == u'\\' && (after == u'"' || after == u'\\' || after == u'¶')) {
            character = after;
            ++at_;
        } else if (character == u'¶' || character == u'\n') {
            character = u'\r';
        } else if (character == u'\r' && after == u'\n') {
            ++at_; // A line that ends with two characters is one return.
        }
        token.text += character;
    }
    throw Error{error::unterminatedText};
}

Token Lexer::number() {
    const auto digits = [this] {
        while (isDigit(unit()))
            ++at_;
    };
    digits();
    // A second point makes the whole unreadable, which the parser finds.
    while (unit() == u'.') {
        ++at_;
        digits();
    }
    const bool isSigned = unit(1) == u'+' || unit(1) == u'-';
    if ((unit() == u'e' || unit() == u'E') && isDigit(unit(isSigned ? 2 : 1))) {
        at_ += isSigned ? 2 : 1;
        digits();
    }
    return made(Token::Kind::number, source_.substr(start_, at_ - start_));
}

/// The end of the characters of a name from a position on, which is that position where none stand.
std::size_t Lexer::wordEnd(std::size_t from) const {
    while (from < source_.size()) {
        UChar32 point = 0;
        std::size_t ahead = from;
        U16_NEXT(source_.data(), ahead, source_.size(), point);
        if (!isNamePart(point)) break;
        from = ahead;
    }
    return from;
}

/// A name of words with blanks between them; a keyword ends it. It is empty where no word stands.
std::u16string Lexer::plainName() {
    const std::size_t first = at_;
    at_ = wordEnd(first);
    for (std::size_t end = at_; end < source_.size();) {
        const std::size_t next = std::min(source_.find_first_not_of(u' ', end), source_.size());
        end = wordEnd(next);
        if (next == at_ || end == next || keywordIn(source_.substr(next, end - next)) != nullptr) break;
        at_ = end;
    }
    return std::u16string(source_.substr(first, at_ - first));
}

/// `${name}`: any characters but a closing brace.
std::u16string Lexer::quotedName() {
    const std::size_t first = at_ + 2;
    const std::size_t close = source_.find(u'}', first);
    if (close == std::u16string_view::npos) throw Error{error::unexpectedEnd};
    at_ = close + 1;
    if (close == first) throw Error{error::nameMissing};
    return std::u16string(source_.substr(first, close - first));
}

/// Takes the colons between a table and a field, and the blanks around them.
bool Lexer::takeColons() {
    const auto afterBlanks = [this](std::size_t from) {
        return std::min(source_.find_first_not_of(u" \t\r\n", from), source_.size());
    };
    const std::size_t colons = afterBlanks(at_);
    if (!source_.substr(colons).starts_with(u"::")) return false;
    at_ = afterBlanks(colons + 2);
    return true;
}

Token Lexer::variable() {
    Token token = made(Token::Kind::variable);
    ++at_;
    if (unit() == u'$') {
        token.ofFile = true;
        ++at_;
    }
    token.text = plainName();
    if (token.text.empty()) throw Error{error::nameMissing};
    return token;
}

Token Lexer::name() {
    const std::size_t firstEnd = wordEnd(at_);
    if (const Keyword* keyword = keywordIn(source_.substr(at_, firstEnd - at_))) {
        at_ = firstEnd;
        return made(keyword->kind, keyword->digits, keyword->op);
    }
    Token token = made(Token::Kind::name);
    token.isQuoted = sees(u"${");
    token.text = token.isQuoted ? quotedName() : plainName();
    if (!takeColons()) return token;
    token.isQualified = true;
    token.table = std::move(token.text);
    token.isQuoted = sees(u"${");
    token.text = token.isQuoted ? quotedName() : plainName();
    if (token.text.empty()) throw Error{error::nameMissing};
    return token;
}

Token Lexer::symbol() {
    // A paragraph mark outside a quoted text is a text of its own.
    if (unit() == u'¶') {
        ++at_;
        return made(Token::Kind::text, u"\r");
    }
    for (const Symbol& symbol : symbols)
        if (sees(symbol.text)) {
            at_ += symbol.text.size();
            return made(symbol.kind, {}, symbol.op);
        }
    UChar32 unknown = 0;
    U16_NEXT(source_.data(), at_, source_.size(), unknown);
    return made(Token::Kind::unknown);
}

} // namespace host::calc
