#pragma once

#include <sqlite3.h>
#include <string_view>

/// Arguments and results of functions in the store.

namespace host {

using SqlArguments = sqlite3_value**;
using SqlImplementation = void (*)(sqlite3_context*, int, SqlArguments);

inline std::string_view textOf(sqlite3_value* value) {
    const unsigned char* bytes = sqlite3_value_text(value);
    const int size = sqlite3_value_bytes(value);
    if (bytes == nullptr) return {};
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

inline bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

inline void giveText(sqlite3_context* context, std::string_view text) {
    sqlite3_result_text64(context, text.empty() ? "" : text.data(), text.size(), SQLITE_TRANSIENT,
                          SQLITE_UTF8);
}

/// Whether matching a pattern could take more than about a second.
bool isTooMuch(sqlite3_context* context, std::string_view pattern, std::string_view text);

} // namespace host
