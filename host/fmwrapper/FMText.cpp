#include "FMWrapper/FMXText.h"

#include "host/fmwrapper/Gate.h"
#include "host/fmwrapper/Versions.h"
#include "host/values/Encoding.h"
#include "host/values/Text.h"

#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>

using host::CharacterStyle;
using host::ObjectClass;
using host::Text;
using host::bridge::checked;
using host::bridge::in;
using host::bridge::unitsFrom;
namespace gate = host::gate;

namespace {

/// Converts wide characters, which are code points on this platform. A surrogate or a number past the last
/// code point becomes the replacement character.
std::u16string fromWide(std::wstring_view wide) {
    constexpr char32_t replacement = 0xFFFD, lastCodePoint = 0x10FFFF, firstBeyond = 0x10000;
    std::u16string result;
    result.reserve(wide.size());
    for (const wchar_t unit : wide) {
        auto point = static_cast<char32_t>(unit);
        if (point > lastCodePoint || (point >= 0xD800 && point <= 0xDFFF)) point = replacement;
        if (point < firstBeyond) {
            result += static_cast<char16_t>(point);
        } else {
            result += static_cast<char16_t>(0xD800 + ((point - firstBeyond) >> 10));
            result += static_cast<char16_t>(0xDC00 + ((point - firstBeyond) & 0x3FF));
        }
    }
    return result;
}

std::size_t lengthOf(const fmx::uint16* s) {
    std::size_t length = 0;
    for (checked(s); s[length] != 0;)
        ++length;
    return length;
}

void assign(void* self, const char* bytes, std::size_t size, fmx::int32 encoding) {
    in<Text>(self) = Text(host::decode({bytes, size}, host::encodingFromNumber(encoding)));
}

std::u16string_view rangeOf(const Text& text, fmx::uint32 position, fmx::uint32 size) {
    return position < text.size() ? text.units().substr(position, size) : std::u16string_view();
}

std::size_t bytesOf(const Text& text, fmx::uint32 position, fmx::uint32 size, fmx::int32 encoding,
                    char* buffer, std::size_t capacity) {
    return host::encodeInto(rangeOf(text, position, size), host::encodingFromNumber(encoding), buffer,
                            capacity);
}

/// Changes the case of a text. The interface passes a const pointer, but the text itself is never const: the
/// plug-in owns it.
void mapCase(const void* self, Text::Case wanted) {
    Text& text = in<Text>(const_cast<void*>(self));
    text = text.withCase(wanted);
}

} // namespace

extern "C" {

fmx::Text* FM_Text_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::Text, ObjectClass::text>(_x, [&] { return Text{}; });
}
void FM_Text_Delete(void* _self, fmx::_fmxcpt& _x) { gate::destroy<Text, ObjectClass::text>(_self, _x); }
fmx::uint32 FM_Text_GetSize(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::uint32>(_x, [&] { return in<Text>(_self).size(); });
}
void FM_Text_Assign(void* _self, const char* s, fmx::int32 encoding, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { assign(_self, s, std::strlen(checked(s)), encoding); });
}
void FM_Text_AssignWide(void* _self, const wchar_t* s, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self) = Text(fromWide({checked(s), std::wcslen(s)})); });
}
void FM_Text_AssignUnicode(void* _self, const fmx::uint16* s, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self) = Text(unitsFrom(s, lengthOf(s))); });
}
void FM_Text_AssignWithLength(void* _self, const char* s, fmx::uint32 length, fmx::int32 encoding,
                              fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { assign(_self, length == 0 ? "" : checked(s), length, encoding); });
}
void FM_Text_AssignWideWithLength(void* _self, const wchar_t* s, fmx::uint32 length, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self) = Text(fromWide({length == 0 ? L"" : checked(s), length})); });
}
void FM_Text_AssignUnicodeWithLength(void* _self, const fmx::uint16* s, fmx::uint32 length,
                                     fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self) = Text(unitsFrom(s, length)); });
}
void FM_Text_GetBytes(const void* _self, char* buffer, fmx::uint32 buffersize, fmx::uint32 position,
                      fmx::uint32 size, fmx::int32 encoding, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] {
        const Text& text = in<Text>(_self);
        if (buffersize == 0) return;
        buffer[bytesOf(text, position, size, encoding, checked(buffer), buffersize - 1)] = 0;
    });
}
fmx::uint32 FM_Text_GetBytesEx(const void* _self, char* buffer, fmx::uint32 buffersize, fmx::uint32 position,
                               fmx::uint32 size, fmx::int32 encoding, fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_Text_GetBytesEx">();
    return gate::number<fmx::uint32>(_x, [&] {
        return static_cast<fmx::uint32>(bytesOf(in<Text>(_self), position, size, encoding,
                                                buffersize == 0 ? buffer : checked(buffer), buffersize));
    });
}
void FM_Text_GetUnicode(const void* _self, fmx::uint16* s, fmx::uint32 position, fmx::uint32 size,
                        fmx::_fmxcpt& _x) {
    gate::call(_x, [&] {
        const auto range = rangeOf(in<Text>(_self), position, size);
        if (!range.empty()) std::memcpy(checked(s), range.data(), range.size() * sizeof(char16_t));
    });
}
void FM_Text_SetText(void* _self, const fmx::Text& other, fmx::uint32 position, fmx::uint32 size,
                     fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self) = in<Text>(&other).substring(position, size); });
}
void FM_Text_AppendText(void* _self, const fmx::Text& other, fmx::uint32 position, fmx::uint32 size,
                        fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self).append(in<Text>(&other), position, size); });
}
void FM_Text_InsertText(void* _self, const fmx::Text& other, fmx::uint32 position, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self).insert(in<Text>(&other), position); });
}
void FM_Text_DeleteText(void* _self, fmx::uint32 position, fmx::uint32 size, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self).erase(position, size); });
}
fmx::uint32 FM_Text_Find(const void* _self, const fmx::Text& other, fmx::uint32 position, fmx::_fmxcpt& _x) {
    return gate::call(_x, Text::end, [&] {
        return static_cast<fmx::uint32>(in<Text>(_self).find(in<Text>(&other), position));
    });
}
fmx::uint32 FM_Text_FindPrev(const void* _self, const fmx::Text& other, fmx::uint32 position,
                             fmx::_fmxcpt& _x) {
    return gate::call(_x, Text::end, [&] {
        return static_cast<fmx::uint32>(in<Text>(_self).findBackward(in<Text>(&other), position));
    });
}
fmx::uint32 FM_Text_FindIgnoringCase(const void* _self, const fmx::Text& other, fmx::uint32 position,
                                     fmx::_fmxcpt& _x) {
    return gate::call(_x, Text::end, [&] {
        return static_cast<fmx::uint32>(in<Text>(_self).findIgnoringCase(in<Text>(&other), position));
    });
}
fmx::uint32 FM_Text_FindPrevIgnoringCase(const void* _self, const fmx::Text& other, fmx::uint32 position,
                                         fmx::_fmxcpt& _x) {
    return gate::call(_x, Text::end, [&] {
        return static_cast<fmx::uint32>(in<Text>(_self).findBackwardIgnoringCase(in<Text>(&other), position));
    });
}
void FM_Text_Uppercase(const void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { mapCase(_self, Text::Case::upper); });
}
void FM_Text_Lowercase(const void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { mapCase(_self, Text::Case::lower); });
}
void FM_Text_GetStyle(const void* _self, fmx::CharacterStyle& style, fmx::uint32 position, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(&style) = in<Text>(_self).formattingAt(position).style; });
}
void FM_Text_GetDefaultStyle(const void* _self, fmx::CharacterStyle& style, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] {
        in<Text>(_self);
        in<CharacterStyle>(&style).disableAll();
    });
}
void FM_Text_SetStyle(void* _self, const fmx::CharacterStyle& style, fmx::uint32 position, fmx::uint32 size,
                      fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self).applyStyle(in<CharacterStyle>(&style), position, size); });
}
void FM_Text_RemoveStyle(void* _self, const fmx::CharacterStyle& style, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self).removeStyle(in<CharacterStyle>(&style)); });
}
void FM_Text_ResetAllStyleBuffers(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Text>(_self).removeAllStyles(); });
}
bool FM_Text_operatorEQ(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Text>(_self) == in<Text>(&that); });
}
bool FM_Text_operatorNE(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Text>(_self) != in<Text>(&that); });
}
bool FM_Text_operatorLT(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Text>(_self) < in<Text>(&that); });
}
bool FM_Text_operatorLE(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Text>(_self) <= in<Text>(&that); });
}
bool FM_Text_operatorGT(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Text>(_self) > in<Text>(&that); });
}
bool FM_Text_operatorGE(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Text>(_self) >= in<Text>(&that); });
}

} // extern "C"
