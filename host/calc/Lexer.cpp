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

/// Longer ones first where one begins another.
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

constexpr std::array keywords{
    Symbol{u"not", Token::Kind::logicalNot},
    Symbol{u"and", Token::Kind::op, Operator::logicalAnd},
    Symbol{u"or", Token::Kind::op, Operator::logicalOr},
    Symbol{u"xor", Token::Kind::op, Operator::logicalXor},
};

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

/// Letters of any script with their marks, the underscore, and what joins the parts of a name.
bool isNameStart(UChar32 point) { return u_isalpha(point) != 0 || point == '_' || point == '~'; }
bool isNamePart(UChar32 point) {
    return isNameStart(point) || u_isdigit(point) != 0 || (U_GET_GC_MASK(point) & U_GC_M_MASK) != 0 ||
           point == '.';
}

Token made(Token::Kind kind, std::u16string text = {}, Operator op = {}) {
    Token token;
    token.kind = kind;
    token.text = std::move(text);
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
    Token token;
    if (at_ < source_.size()) {
        UChar32 point = 0;
        std::size_t ahead = at_;
        U16_NEXT(source_.data(), ahead, source_.size(), point);
        if (unit() == u'"')
            token = quoted();
        else if (isDigit(unit()) || (unit() == u'.' && isDigit(unit(1))))
            token = number();
        else if (unit() == u'$')
            token = variable();
        else if (isNameStart(point))
            token = word();
        else
            token = symbol();
    }
    token.position = position();
    return token;
}

Token Lexer::quoted() {
    Token token = made(Token::Kind::text);
    for (++at_; at_ < source_.size(); ++at_) {
        char16_t character = unit();
        if (character == u'"') {
            ++at_;
            return token;
        }
        if (character == u'\\' && (unit(1) == u'"' || unit(1) == u'\\'))
            character = source_[++at_];
        else if (character == u'¶')
            character = u'\r';
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
    if (unit() == u'.') {
        ++at_;
        digits();
    }
    const bool isSigned = unit(1) == u'+' || unit(1) == u'-';
    if ((unit() == u'e' || unit() == u'E') && isDigit(unit(isSigned ? 2 : 1))) {
        at_ += isSigned ? 2 : 1;
        digits();
    }
    return made(Token::Kind::number, std::u16string(source_.substr(start_, at_ - start_)));
}

std::u16string Lexer::nameHere() {
    const std::size_t first = at_;
    while (at_ < source_.size()) {
        UChar32 point = 0;
        std::size_t ahead = at_;
        U16_NEXT(source_.data(), ahead, source_.size(), point);
        // A field is named by its table's name, two colons and its own.
        if (sees(u"::"))
            ahead = at_ + 2;
        else if (!isNamePart(point))
            break;
        at_ = ahead;
    }
    return std::u16string(source_.substr(first, at_ - first));
}

Token Lexer::variable() {
    Token token = made(Token::Kind::variable);
    ++at_;
    if (unit() == u'$') {
        token.ofFile = true;
        ++at_;
    }
    token.text = nameHere();
    if (token.text.empty()) throw Error{error::nameMissing};
    return token;
}

Token Lexer::word() {
    Token token = made(Token::Kind::name, nameHere());
    if (token.text.size() > 3) return token;
    const std::u16string folded = foldName(token.text);
    for (const Symbol& keyword : keywords)
        if (keyword.text == folded) return made(keyword.kind, {}, keyword.op);
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
    ++at_;
    return made(Token::Kind::unknown);
}

} // namespace host::calc
