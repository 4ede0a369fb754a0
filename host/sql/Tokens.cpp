#include "host/sql/Tokens.h"

#include "host/sql/Problems.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_set>

namespace host::sql {

namespace {

constexpr std::string_view reservedWords =
    "ABSOLUTE ACTION ADD ALL ALLOCATE ALTER AND ANY ARE AS ASC ASSERTION AT AUTHORIZATION AVG BEGIN "
    "BETWEEN BINARY BIT BIT_LENGTH BLOB BOOLEAN BOTH BY CASCADE CASCADED CASE CAST CATALOG CHAR "
    "CHARACTER CHARACTER_LENGTH CHAR_LENGTH CHECK CHR CLOSE COALESCE COLLATE COLLATION COLUMN COMMIT "
    "CONNECT CONNECTION CONSTRAINT CONSTRAINTS CONTINUE CONVERT CORRESPONDING COUNT CREATE CROSS "
    "CURDATE CURRENT CURRENT_DATE CURRENT_TIME CURRENT_TIMESTAMP CURRENT_USER CURSOR CURTIME "
    "CURTIMESTAMP DATE DATEVAL DAY DAYNAME DAYOFWEEK DEALLOCATE DEC DECIMAL DECLARE DEFAULT "
    "DEFERRABLE DEFERRED DELETE DESC DESCRIBE DESCRIPTOR DIAGNOSTICS DISCONNECT DISTINCT DOMAIN "
    "DOUBLE DROP ELSE END END_EXEC ESCAPE EVERY EXCEPT EXCEPTION EXEC EXECUTE EXISTS EXTERNAL EXTRACT "
    "FALSE FETCH FIRST FLOAT FOR FOREIGN FOUND FROM FULL GET GLOBAL GO GOTO GRANT GROUP HAVING HOUR "
    "IDENTITY IMMEDIATE IN INDEX INDICATOR INITIALLY INNER INPUT INSENSITIVE INSERT INT INTEGER "
    "INTERSECT INTERVAL INTO IS ISOLATION JOIN KEY LANGUAGE LAST LEADING LEFT LENGTH LEVEL LIKE LOCAL "
    "LONGVARBINARY LOWER LTRIM MATCH MAX MIN MINUTE MODULE MONTH MONTHNAME NAMES NATIONAL NATURAL "
    "NCHAR NEXT NO NOT NULL NULLIF NUMERIC NUMVAL OCTET_LENGTH OF OFFSET ON ONLY OPEN OPTION OR ORDER "
    "OUTER OUTPUT OVERLAPS PAD PART PARTIAL PERCENT POSITION PRECISION PREPARE PRESERVE PRIMARY PRIOR "
    "PRIVILEGES PROCEDURE PUBLIC READ REAL REFERENCES RELATIVE RESTRICT REVOKE RIGHT ROLLBACK ROUND "
    "ROW ROWID ROWS RTRIM SCHEMA SCROLL SECOND SECTION SELECT SESSION SESSION_USER SET SIZE SMALLINT "
    "SOME SPACE SQL SQLCODE SQLERROR SQLSTATE STRVAL SUBSTRING SUM SYSTEM_USER TABLE TEMPORARY THEN "
    "TIES TIME TIMESTAMP TIMESTAMPVAL TIMEVAL TIMEZONE_HOUR TIMEZONE_MINUTE TO TODAY TRAILING "
    "TRANSACTION TRANSLATE TRANSLATION TRIM TRUE TRUNCATE UNION UNIQUE UNKNOWN UPDATE UPPER USAGE "
    "USER USERNAME USING VALUE VALUES VARBINARY VARCHAR VARYING VIEW WHEN WHENEVER WHERE WITH WORK "
    "WRITE YEAR ZONE ";

std::unordered_set<std::string_view> wordsOf(std::string_view list) {
    std::unordered_set<std::string_view> words;
    for (std::size_t end = 0; (end = list.find(' ')) != std::string_view::npos; list.remove_prefix(end + 1))
        words.insert(list.substr(0, end));
    return words;
}

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
bool isAsciiLetter(char16_t unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z'); }
bool isBlank(char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == u'\u00A0'; }
bool startsName(char16_t unit) { return isAsciiLetter(unit) || unit > u'\u00A0'; }
bool continuesName(char16_t unit) { return startsName(unit) || isDigit(unit) || unit == u'_'; }

class Tokenizer {
public:
    explicit Tokenizer(std::u16string_view source) : source_(source) {}

    std::vector<Token> tokens() {
        std::vector<Token> tokens;
        do {
            while (isBlank(unit(0)) && place_ < source_.size())
                ++place_;
            tokens.push_back(next());
        } while (tokens.back().kind != TokenKind::end);
        return tokens;
    }

private:
    /// The unit at that distance; zero past the end.
    [[nodiscard]] char16_t unit(std::size_t ahead) const {
        return place_ + ahead < source_.size() ? source_[place_ + ahead] : u'\0';
    }

    Token next() {
        if (place_ >= source_.size())
            return {.kind = TokenKind::end, .text = {}, .word = {}, .position = place_};
        const char16_t first = unit(0);
        // A comment is not taken for two minus signs.
        if (first == u'-' && unit(1) == u'-') throw Problem{.code = Fql::syntax, .position = place_};
        if (startsName(first)) return word();
        if (isDigit(first) || (first == u'.' && isDigit(unit(1)))) return number();
        if (first == u'"') return quoted(TokenKind::quotedName);
        if (first == u'\'') return quoted(TokenKind::text);
        return sign();
    }

    Token word() {
        Token token{.kind = TokenKind::word, .text = {}, .word = {}, .position = place_};
        while (continuesName(unit(0)))
            token.text += source_[place_++];
        if (std::all_of(token.text.begin(), token.text.end(), [](char16_t unit) { return unit < 0x80; }))
            for (const char16_t unit : token.text)
                token.word += static_cast<char>(unit >= u'a' && unit <= u'z' ? unit - u'a' + u'A' : unit);
        return token;
    }

    void digits(std::u16string& text) {
        while (isDigit(unit(0)))
            text += source_[place_++];
    }

    Token number() {
        Token token{.kind = TokenKind::number, .text = {}, .word = {}, .position = place_};
        digits(token.text);
        if (unit(0) == u'.') {
            token.text += source_[place_++];
            digits(token.text);
        }
        const std::size_t sign = unit(1) == u'+' || unit(1) == u'-' ? 1 : 0;
        if ((unit(0) == u'e' || unit(0) == u'E') && isDigit(unit(1 + sign))) {
            token.text += source_.substr(place_, 1 + sign);
            place_ += 1 + sign;
            digits(token.text);
        }
        return token;
    }

    Token quoted(TokenKind kind) {
        Token token{.kind = kind, .text = {}, .word = {}, .position = place_};
        const char16_t quote = source_[place_++];
        for (;;) {
            if (place_ >= source_.size()) throw Problem{.code = Fql::syntax, .position = token.position};
            const char16_t unit = source_[place_++];
            if (unit == quote && this->unit(0) != quote) break;
            if (unit == quote) ++place_;
            token.text += unit;
        }
        if (kind == TokenKind::quotedName && token.text.empty())
            throw Problem{.code = Fql::syntax, .position = token.position};
        return token;
    }

    Token sign() {
        static constexpr std::array<std::string_view, 21> signs{"<>", "<=", ">=", "||", "**", "+", "-",
                                                                "*",  "/",  "^",  "=",  "<",  ">", "(",
                                                                ")",  ",",  ".",  "[",  "]",  "?", ";"};
        for (const std::string_view sign : signs)
            if (unit(0) == static_cast<char16_t>(sign[0]) &&
                (sign.size() == 1 || unit(1) == static_cast<char16_t>(sign[1]))) {
                Token token{
                    .kind = TokenKind::sign, .text = {}, .word = std::string(sign), .position = place_};
                place_ += sign.size();
                return token;
            }
        throw Problem{.code = Fql::syntax, .position = place_};
    }

    std::u16string_view source_;
    std::size_t place_ = 0;
};

} // namespace

std::vector<Token> tokensOf(std::u16string_view statement) { return Tokenizer(statement).tokens(); }

bool isReserved(std::string_view word) {
    static const std::unordered_set<std::string_view> words = wordsOf(reservedWords);
    return words.contains(word);
}

} // namespace host::sql
