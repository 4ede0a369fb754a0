#include "host/sql/BoundedFunctions.h"

#include "host/sql/FunctionArguments.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <unordered_set>

namespace host {

namespace {

using namespace std::string_literals;

constexpr std::uint64_t mostComparisons = std::uint64_t{1} << 30U; ///< about a second

using Arguments = SqlArguments;
using Implementation = SqlImplementation;

bool isBlob(sqlite3_value* value) { return sqlite3_value_type(value) == SQLITE_BLOB; }

std::string_view blobOf(sqlite3_value* value) {
    const void* bytes = sqlite3_value_blob(value);
    const int size = sqlite3_value_bytes(value);
    if (bytes == nullptr) return {};
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

/// The first position of `needle` at or after `from`; npos when there is none. Linear, unlike the search of
/// the standard library's string.
std::size_t placeOf(std::string_view text, std::string_view needle, std::size_t from) {
    const std::string_view rest = text.substr(from);
    const auto* place =
        static_cast<const char*>(::memmem(rest.data(), rest.size(), needle.data(), needle.size()));
    return place == nullptr ? std::string_view::npos : static_cast<std::size_t>(place - text.data());
}

/// The position counts bytes for two containers, otherwise characters.
void instr(sqlite3_context* context, int /*count*/, Arguments arguments) {
    const bool inBytes = isBlob(arguments[0]) && isBlob(arguments[1]);
    const std::string_view text = inBytes ? blobOf(arguments[0]) : textOf(arguments[0]);
    const std::string_view needle = inBytes ? blobOf(arguments[1]) : textOf(arguments[1]);
    const std::size_t place = needle.empty() ? 0 : placeOf(text, needle, 0);
    if (place == std::string_view::npos) return sqlite3_result_int(context, 0);
    const auto before = text.substr(0, place);
    const auto skipped = inBytes ? 0 : std::count_if(before.begin(), before.end(), isContinuation);
    sqlite3_result_int64(context, static_cast<std::int64_t>(place) - skipped + 1);
}

void replace(sqlite3_context* context, int /*count*/, Arguments arguments) {
    const std::string_view text = textOf(arguments[0]), needle = textOf(arguments[1]),
                           instead = textOf(arguments[2]);
    if (needle.empty()) return sqlite3_result_value(context, arguments[0]);
    const auto most =
        static_cast<std::size_t>(sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LENGTH, -1));
    std::string result;
    std::size_t from = 0;
    for (std::size_t place = 0; (place = placeOf(text, needle, from)) != std::string_view::npos;) {
        result.append(text, from, place - from).append(instead);
        if (result.size() > most) return sqlite3_result_error_toobig(context);
        from = place + needle.size();
    }
    giveText(context, result.append(text, from));
}

std::size_t lengthOfFirst(std::string_view text) {
    const auto* next = std::find_if_not(text.begin() + 1, text.end(), isContinuation);
    return static_cast<std::size_t>(next - text.begin());
}

std::size_t lengthOfLast(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && isContinuation(text[text.size() - length]))
        ++length;
    return length;
}

template<bool left, bool right>
void trim(sqlite3_context* context, int count, Arguments arguments) {
    std::string_view text = textOf(arguments[0]);
    std::string_view toRemove = count > 1 ? textOf(arguments[1]) : " ";
    std::unordered_set<std::string_view> characters;
    while (!toRemove.empty()) {
        const std::size_t length = lengthOfFirst(toRemove);
        characters.insert(toRemove.substr(0, length));
        toRemove.remove_prefix(length);
    }
    while (left && !text.empty() && characters.contains(text.substr(0, lengthOfFirst(text))))
        text.remove_prefix(lengthOfFirst(text));
    while (right && !text.empty() && characters.contains(text.substr(text.size() - lengthOfLast(text))))
        text.remove_suffix(lengthOfLast(text));
    giveText(context, text);
}

std::u32string codesOf(std::string_view text) {
    const std::u16string units = fromUtf8(text);
    std::u32string codes;
    for (std::size_t i = 0; i < units.size(); ++i) {
        const bool isPair = i + 1 < units.size() && (units[i] & 0xFC00U) == 0xD800U;
        const char32_t first = units[i];
        codes += isPair
                     ? static_cast<char32_t>(0x10000U + ((first & 0x3FFU) << 10U) + (units[i + 1] & 0x3FFU))
                     : first;
        i += isPair ? 1 : 0;
    }
    return codes;
}

const char* stringOf(sqlite3_value* value) {
    const unsigned char* text = sqlite3_value_text(value);
    return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}

void like(sqlite3_context* context, int count, Arguments arguments) {
    const std::u32string escape = count > 2 ? codesOf(textOf(arguments[2])) : U"\0"s;
    if (escape.size() != 1 || escape == U"%" || escape == U"_")
        return sqlite3_result_error(context, "ESCAPE expression must be a single ordinary character", -1);
    if (isTooMuch(context, textOf(arguments[0]), textOf(arguments[1])))
        return sqlite3_result_error_toobig(context);
    const int different = sqlite3_strlike(stringOf(arguments[0]), stringOf(arguments[1]), escape.front());
    sqlite3_result_int(context, different == 0 ? 1 : 0);
}

void glob(sqlite3_context* context, int /*count*/, Arguments arguments) {
    if (isTooMuch(context, textOf(arguments[0]), textOf(arguments[1])))
        return sqlite3_result_error_toobig(context);
    const int different = sqlite3_strglob(stringOf(arguments[0]), stringOf(arguments[1]));
    sqlite3_result_int(context, different == 0 ? 1 : 0);
}

/// The frame of every function: no start after the deadline, NULL for a NULL argument, no exception into the
/// engine. A container matches no pattern; the answer is 0 even for a NULL pattern, as in the engine.
template<Implementation implementation, bool isMatch = false>
void guarded(sqlite3_context* context, int count, Arguments arguments) {
    const auto* deadline =
        static_cast<const std::chrono::steady_clock::time_point*>(sqlite3_user_data(context));
    if (std::chrono::steady_clock::now() > *deadline)
        return sqlite3_result_error_code(context, SQLITE_INTERRUPT);
    if (isMatch && (isBlob(arguments[0]) || isBlob(arguments[1]))) return sqlite3_result_int(context, 0);
    const auto isNull = [](sqlite3_value* value) { return sqlite3_value_type(value) == SQLITE_NULL; };
    if (std::any_of(arguments, arguments + count, isNull)) return sqlite3_result_null(context);
    try {
        implementation(context, count, arguments);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

struct Bounded {
    const char* name;
    int arguments;
    Implementation implementation;
};

constexpr Bounded functions[] = {
    {"instr", 2, guarded<instr>},
    {"replace", 3, guarded<replace>},
    {"trim", 1, guarded<trim<true, true>>},
    {"trim", 2, guarded<trim<true, true>>},
    {"ltrim", 1, guarded<trim<true, false>>},
    {"ltrim", 2, guarded<trim<true, false>>},
    {"rtrim", 1, guarded<trim<false, true>>},
    {"rtrim", 2, guarded<trim<false, true>>},
    {"like", 2, guarded<like, true>},
    {"like", 3, guarded<like, true>},
    {"glob", 2, guarded<glob, true>},
};

} // namespace

bool isTooMuch(sqlite3_context* context, std::string_view pattern, std::string_view text) {
    const auto most = sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LIKE_PATTERN_LENGTH, -1);
    return pattern.size() > static_cast<std::size_t>(most) ||
           std::uint64_t{pattern.size()} * text.size() > mostComparisons;
}

int boundFunctions(sqlite3* connection, const std::chrono::steady_clock::time_point& deadline) {
    void* const data = const_cast<std::chrono::steady_clock::time_point*>(&deadline);
    for (const Bounded& function : functions) {
        constexpr int kind = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
        const int code = sqlite3_create_function(connection, function.name, function.arguments, kind, data,
                                                 function.implementation, nullptr, nullptr);
        if (code != SQLITE_OK) return code;
    }
    return SQLITE_OK;
}

} // namespace host
