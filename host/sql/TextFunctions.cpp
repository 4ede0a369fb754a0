#include "host/sql/FunctionRows.h"
#include "host/sql/Values.h"
#include "host/values/Decimal.h"
#include "host/values/Encoding.h"
#include "host/values/Text.h"

#include <algorithm>
#include <string>

namespace host::sql {

namespace {

using Context = sqlite3_context*;
using Arguments = SqlArguments;
using std::chrono::steady_clock;

constexpr std::string_view kBlank = " ";

FunctionContext& contextOf(Context context) {
    return *static_cast<FunctionContext*>(sqlite3_user_data(context));
}

/// The byte at which the character of that place from 0 starts; the end where there is none.
std::size_t byteAt(std::string_view text, std::int64_t character) {
    std::size_t byte = 0;
    for (; byte < text.size() && character > 0; --character)
        for (++byte; byte < text.size() && isContinuation(text[byte]);)
            ++byte;
    return byte;
}

std::int64_t charactersOf(std::string_view text) {
    return static_cast<std::int64_t>(text.size()) - std::count_if(text.begin(), text.end(), isContinuation);
}

void left(Context context, int /*count*/, Arguments arguments) {
    const std::string_view text = textOf(arguments[0]);
    giveTextOrNull(context, text.substr(0, byteAt(text, countOf(arguments[1]))));
}

void right(Context context, int /*count*/, Arguments arguments) {
    const std::string_view text = textOf(arguments[0]);
    const std::int64_t wanted = std::max<std::int64_t>(countOf(arguments[1]), 0);
    giveTextOrNull(context, text.substr(byteAt(text, charactersOf(text) - wanted)));
}

void substring(Context context, int count, Arguments arguments) {
    const std::string_view text = textOf(arguments[0]);
    const std::int64_t from = countOf(arguments[1]) - 1;
    const std::string_view rest = text.substr(byteAt(text, from));
    if (count < 3) return giveTextOrNull(context, rest);
    const std::int64_t length = countOf(arguments[2]) + std::min<std::int64_t>(from, 0);
    giveTextOrNull(context, rest.substr(0, byteAt(rest, length)));
}

template<bool atLeft, bool atRight>
void trim(Context context, int /*count*/, Arguments arguments) {
    std::string_view text = textOf(arguments[0]);
    if (atLeft) text.remove_prefix(std::min(text.find_first_not_of(kBlank), text.size()));
    if (atRight) text = text.substr(0, text.find_last_not_of(kBlank) + 1);
    giveTextOrNull(context, text);
}

template<Text::Case wanted>
void withCase(Context context, int /*count*/, Arguments arguments) {
    giveTextOrNull(context, Text::fromUtf8(textOf(arguments[0])).withCase(wanted).utf8());
}

void chr(Context context, int /*count*/, Arguments arguments) {
    const std::int64_t code = countOf(arguments[0]);
    if (code <= 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        return sqlite3_result_null(context);
    const auto unit = static_cast<char32_t>(code);
    std::u16string units;
    if (unit >= 0x10000) {
        units += static_cast<char16_t>(0xD800U + ((unit - 0x10000U) >> 10U));
        units += static_cast<char16_t>(0xDC00U + ((unit - 0x10000U) & 0x3FFU));
    } else
        units += static_cast<char16_t>(unit);
    giveText(context, toUtf8(units));
}

void space(Context context, int /*count*/, Arguments arguments) {
    const std::int64_t length = std::max<std::int64_t>(countOf(arguments[0]), 0);
    if (length > sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LENGTH, -1))
        return sqlite3_result_error_toobig(context);
    giveTextOrNull(context, std::string(static_cast<std::size_t>(length), ' '));
}

void length(Context context, int /*count*/, Arguments arguments) {
    sqlite3_result_int64(context, charactersOf(textOf(arguments[0])));
}

void user(Context context, int /*count*/, Arguments /*arguments*/) {
    giveTextOrNull(context, contextOf(context).account);
}

/// Joins, and moves the left text's trailing blanks to the end.
void joinBeforeBlanks(Context context, int /*count*/, Arguments arguments) {
    const std::string_view text = textOf(arguments[0]);
    const std::size_t end = text.find_last_not_of(kBlank) + 1;
    std::string joined(text.substr(0, end));
    giveTextOrNull(context, joined.append(textOf(arguments[1])).append(text.substr(end)));
}

void numberText(Context context, int /*count*/, Arguments arguments) {
    if (const auto number = storedDecimal(arguments[0])) return giveText(context, toUtf8(number->text()));
    giveTextOrNull(context, textOf(arguments[0]));
}

std::string_view firstCharacter(std::string_view text) { return text.substr(0, byteAt(text, 1)); }

/// Matches by characters and with regard to case. After a mismatch only the last `%` takes more.
bool matches(std::string_view pattern, std::string_view text, std::string_view escape) {
    std::size_t p = 0, t = 0, retryPattern = std::string_view::npos, retryText = 0;
    while (t < text.size() || p < pattern.size()) {
        std::string_view wanted = firstCharacter(pattern.substr(p));
        if (wanted == "%" && wanted != escape) {
            retryPattern = ++p;
            retryText = t;
            continue;
        }
        const bool isEscape = !wanted.empty() && wanted == escape;
        const std::size_t taken = wanted.size();
        if (isEscape) wanted = firstCharacter(pattern.substr(p + taken));
        const std::string_view found = firstCharacter(text.substr(t));
        const bool fits =
            !found.empty() && !wanted.empty() && (found == wanted || (wanted == "_" && !isEscape));
        if (fits) {
            p += taken + (isEscape ? wanted.size() : 0);
            t += found.size();
        } else if (retryPattern != std::string_view::npos && retryText < text.size()) {
            retryText += firstCharacter(text.substr(retryText)).size();
            p = retryPattern;
            t = retryText;
        } else
            return false;
    }
    return true;
}

void like(Context context, int count, Arguments arguments) {
    const std::string_view text = textOf(arguments[0]), pattern = textOf(arguments[1]);
    const std::string_view escape = count > 2 ? textOf(arguments[2]) : std::string_view();
    if (count > 2 && charactersOf(escape) != 1)
        return sqlite3_result_error(context, "ESCAPE takes one character", -1);
    if (isTooMuch(context, pattern, text)) return sqlite3_result_error_toobig(context);
    if (steady_clock::now() > contextOf(context).deadline)
        return sqlite3_result_error_code(context, SQLITE_INTERRUPT);
    sqlite3_result_int(context, matches(pattern, text, escape) ? 1 : 0);
}

constexpr DataType kText = DataType::text, kNumber = DataType::number;

constexpr std::array rows{
    FunctionRow{"CHR", "n", kText, guarded<chr>},
    FunctionRow{"LEFT", "sn", kText, guarded<left>},
    FunctionRow{"RIGHT", "sn", kText, guarded<right>},
    FunctionRow{"SUBSTR", "sn?n", kText, guarded<substring>},
    FunctionRow{"SUBSTRING", "sn?n", kText, guarded<substring>},
    FunctionRow{"TRIM", "s", kText, guarded<trim<true, true>>},
    FunctionRow{"LTRIM", "s", kText, guarded<trim<true, false>>},
    FunctionRow{"RTRIM", "s", kText, guarded<trim<false, true>>},
    FunctionRow{"UPPER", "s", kText, guarded<withCase<Text::Case::upper>>},
    FunctionRow{"LOWER", "s", kText, guarded<withCase<Text::Case::lower>>},
    FunctionRow{"SPACE", "n", kText, guarded<space>},
    FunctionRow{"LENGTH", "s", kNumber, guarded<length>},
    FunctionRow{"CURRENT_USER", "", kText, guarded<user>, true},
    FunctionRow{"USER", "", kText, guarded<user>, true},
    FunctionRow{"USERNAME", "", kText, guarded<user>, true},
    FunctionRow{"_LIKE", "ss?s", kNumber, guarded<like>},
    FunctionRow{"_JOIN_BEFORE_BLANKS", "ss", kText, guarded<joinBeforeBlanks>},
    FunctionRow{"_CUT", "sn", kText, guarded<left>},
    FunctionRow{"_NUMBER_TEXT", "n", kText, guarded<numberText>},
};

} // namespace

std::span<const FunctionRow> textFunctions() { return rows; }

} // namespace host::sql
