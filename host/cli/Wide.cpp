#include "host/cli/Wide.h"

#include "host/values/Encoding.h"

#include <unicode/utf16.h>

namespace host::cli {

std::wstring wide(std::string_view utf8) {
    const std::u16string units = fromUtf8(utf8);
    std::wstring characters;
    for (std::size_t at = 0; at < units.size();) {
        UChar32 point = 0;
        U16_NEXT(units.data(), at, units.size(), point);
        characters += static_cast<wchar_t>(point);
    }
    return characters;
}

std::string narrow(std::wstring_view characters) {
    std::u16string units;
    for (const wchar_t character : characters) {
        const auto point = static_cast<char32_t>(character);
        if (U_IS_BMP(point)) {
            units += static_cast<char16_t>(point);
        } else {
            units += static_cast<char16_t>(U16_LEAD(point));
            units += static_cast<char16_t>(U16_TRAIL(point));
        }
    }
    return toUtf8(units);
}

} // namespace host::cli
