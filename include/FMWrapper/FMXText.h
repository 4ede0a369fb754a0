#pragma once

/// UTF-16 text with a style for every character. Positions and sizes are in UTF-16 units.
/// Objects live in the host. Code of a plug-in may use them while it handles a message or a function call, on
/// the host's thread. The code that constructs an object owns it; its owner class gives it back. A failing
/// call throws (see FMXClient.h).

#include "FMWrapper/FMXTextStyle.h"
#include "FMWrapper/FMXTypes.h"

#include <memory>

namespace fmx {

/// A range that ends after the text's end is cut there.
class Text {
public:
    enum Encoding {
        kEncoding_Native = 0, ///< the platform's default, which need not be UTF-8
        kEncoding_UTF8,
        kEncoding_ASCII_DOS,
        kEncoding_ASCII_Windows,
        kEncoding_ASCII_Mac, ///< Mac Roman
        kEncoding_ISO_8859_1,
        kEncoding_ShiftJIS_Mac,
        kEncoding_ShiftJIS_Win,
        kEncoding_Korean_Mac,
        kEncoding_Korean_Win,
        kEncoding_Korean_Johab,
        kEncoding_ChineseTrad_Mac,
        kEncoding_ChineseTrad_Win,
        kEncoding_ChineseSimp_Mac,
        kEncoding_ChineseSimp_Win,
        kEncoding_Cyrillic_Mac,
        kEncoding_Cyrillic_Win,
        kEncoding_ISO_8859_5,
        kEncoding_CentralEurope_Mac,
        kEncoding_EasternEurope_Win,
        kEncoding_ISO_8859_2,
        kEncoding_Turkish_Mac,
        kEncoding_Turkish_Win,
        kEncoding_ISO_8859_3,
        kEncoding_ISO_8859_9,
        kEncoding_Baltic_Win,
        kEncoding_ISO_8859_4,
        kEncoding_Arabic_Mac,
        kEncoding_Arabic_Win,
        kEncoding_ISO_8859_6,
        kEncoding_Greek_Mac,
        kEncoding_Greek_Win,
        kEncoding_ISO_8859_7,
        kEncoding_Hebrew_Mac,
        kEncoding_Hebrew_Win,
        kEncoding_ISO_8859_8,
        kEncoding_ISO_8859_15 ///< 36
    };
    /// A size that means all that follows, and a returned position that means not found.
    enum : uint32 { kSize_Invalid = 0xFFFFFFFF, kSize_End = 0xFFFFFFFF };

    uint32 GetSize() const;
    /// Zero-terminated input, here and in the next two.
    void Assign(const char* s, Encoding encoding = kEncoding_Native);
    void AssignWide(const wchar_t* s);
    void AssignUnicode(const uint16* s);
    /// Lengths are in units of the input.
    void AssignWithLength(const char* s, uint32 length, Encoding encoding = kEncoding_Native);
    void AssignWideWithLength(const wchar_t* s, uint32 length);
    void AssignUnicodeWithLength(const uint16* s, uint32 length);
    /// Writes the encoded bytes and a terminating zero, at most `buffersize` bytes in all. Bytes that do not
    /// fit are left out.
    void GetBytes(char* buffer, uint32 buffersize, uint32 position = 0, uint32 size = kSize_End,
                  Encoding encoding = kEncoding_Native) const;
    /// Writes no terminating zero and returns the number of bytes written. Hosts of version 57 and later.
    uint32 GetBytesEx(char* buffer, uint32 buffersize, uint32 position = 0, uint32 size = kSize_End,
                      Encoding encoding = kEncoding_UTF8) const;
    /// Writes no terminating zero; `s` has room for `size` units.
    void GetUnicode(uint16* s, uint32 position, uint32 size) const;
    /// These four copy or remove characters with their styles. `position` and `size` refer to the source text
    /// in SetText and AppendText, and to this text in InsertText and DeleteText.
    void SetText(const Text& other, uint32 position = 0, uint32 size = kSize_End);
    void AppendText(const Text& other, uint32 position = 0, uint32 size = kSize_End);
    void InsertText(const Text& other, uint32 position);
    void DeleteText(uint32 position, uint32 size = kSize_End);
    /// The first match at or after `position`, or, for the two Prev functions, the last at or before it;
    /// kSize_Invalid when there is none.
    uint32 Find(const Text& other, uint32 position) const;
    uint32 FindPrev(const Text& other, uint32 position) const;
    uint32 FindIgnoringCase(const Text& other, uint32 position) const;
    uint32 FindPrevIgnoringCase(const Text& other, uint32 position) const;
    /// These change this text. A character that becomes several gives all of them its style.
    void Uppercase();
    void Lowercase();
    /// Writes into the caller's style. The default style at or after the end.
    void GetStyle(CharacterStyle& style, uint32 position) const;
    void GetDefaultStyle(CharacterStyle& style) const;
    /// Sets the enabled traits in a range. The text keeps its own for disabled traits.
    void SetStyle(const CharacterStyle& style, uint32 position = 0, uint32 size = kSize_End);
    /// Removes the enabled traits from the whole text.
    void RemoveStyle(const CharacterStyle& style);
    /// Removes every style.
    void ResetAllStyleBuffers();
    /// Comparisons use the code units.
    bool operator==(const Text& that) const;
    bool operator!=(const Text& that) const;
    bool operator<(const Text& that) const;
    bool operator<=(const Text& that) const;
    bool operator>(const Text& that) const;
    bool operator>=(const Text& that) const;

    static void operator delete(void* _self);

private:
    friend class TextUniquePtr;
    Text();
    Text(const Text&);
    Text& operator=(const Text&);
};

/// Owns a Text and gives it back to the host.
class TextUniquePtr : public std::unique_ptr<Text> {
public:
    TextUniquePtr();
};

} // namespace fmx

extern "C" {

fmx::Text* FM_Text_Constructor1(fmx::_fmxcpt& _x);
void FM_Text_Delete(void* _self, fmx::_fmxcpt& _x);
fmx::uint32 FM_Text_GetSize(const void* _self, fmx::_fmxcpt& _x);
void FM_Text_Assign(void* _self, const char* s, fmx::int32 encoding, fmx::_fmxcpt& _x);
void FM_Text_AssignWide(void* _self, const wchar_t* s, fmx::_fmxcpt& _x);
void FM_Text_AssignUnicode(void* _self, const fmx::uint16* s, fmx::_fmxcpt& _x);
void FM_Text_AssignWithLength(void* _self, const char* s, fmx::uint32 length, fmx::int32 encoding,
                              fmx::_fmxcpt& _x);
void FM_Text_AssignWideWithLength(void* _self, const wchar_t* s, fmx::uint32 length, fmx::_fmxcpt& _x);
void FM_Text_AssignUnicodeWithLength(void* _self, const fmx::uint16* s, fmx::uint32 length, fmx::_fmxcpt& _x);
void FM_Text_GetBytes(const void* _self, char* buffer, fmx::uint32 buffersize, fmx::uint32 position,
                      fmx::uint32 size, fmx::int32 encoding, fmx::_fmxcpt& _x);
fmx::uint32 FM_Text_GetBytesEx(const void* _self, char* buffer, fmx::uint32 buffersize, fmx::uint32 position,
                               fmx::uint32 size, fmx::int32 encoding, fmx::_fmxcpt& _x);
void FM_Text_GetUnicode(const void* _self, fmx::uint16* s, fmx::uint32 position, fmx::uint32 size,
                        fmx::_fmxcpt& _x);
void FM_Text_SetText(void* _self, const fmx::Text& other, fmx::uint32 position, fmx::uint32 size,
                     fmx::_fmxcpt& _x);
void FM_Text_AppendText(void* _self, const fmx::Text& other, fmx::uint32 position, fmx::uint32 size,
                        fmx::_fmxcpt& _x);
void FM_Text_InsertText(void* _self, const fmx::Text& other, fmx::uint32 position, fmx::_fmxcpt& _x);
void FM_Text_DeleteText(void* _self, fmx::uint32 position, fmx::uint32 size, fmx::_fmxcpt& _x);
fmx::uint32 FM_Text_Find(const void* _self, const fmx::Text& other, fmx::uint32 position, fmx::_fmxcpt& _x);
fmx::uint32 FM_Text_FindPrev(const void* _self, const fmx::Text& other, fmx::uint32 position,
                             fmx::_fmxcpt& _x);
fmx::uint32 FM_Text_FindIgnoringCase(const void* _self, const fmx::Text& other, fmx::uint32 position,
                                     fmx::_fmxcpt& _x);
fmx::uint32 FM_Text_FindPrevIgnoringCase(const void* _self, const fmx::Text& other, fmx::uint32 position,
                                         fmx::_fmxcpt& _x);
void FM_Text_Uppercase(const void* _self, fmx::_fmxcpt& _x);
void FM_Text_Lowercase(const void* _self, fmx::_fmxcpt& _x);
void FM_Text_GetStyle(const void* _self, fmx::CharacterStyle& style, fmx::uint32 position, fmx::_fmxcpt& _x);
void FM_Text_GetDefaultStyle(const void* _self, fmx::CharacterStyle& style, fmx::_fmxcpt& _x);
void FM_Text_SetStyle(void* _self, const fmx::CharacterStyle& style, fmx::uint32 position, fmx::uint32 size,
                      fmx::_fmxcpt& _x);
void FM_Text_RemoveStyle(void* _self, const fmx::CharacterStyle& style, fmx::_fmxcpt& _x);
void FM_Text_ResetAllStyleBuffers(void* _self, fmx::_fmxcpt& _x);
bool FM_Text_operatorEQ(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x);
bool FM_Text_operatorNE(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x);
bool FM_Text_operatorLT(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x);
bool FM_Text_operatorLE(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x);
bool FM_Text_operatorGT(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x);
bool FM_Text_operatorGE(const void* _self, const fmx::Text& that, fmx::_fmxcpt& _x);
}

namespace fmx {

inline uint32 Text::GetSize() const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_GetSize(this, _x);
    _x.Check();
    return _rtn;
}
inline void Text::Assign(const char* s, Text::Encoding encoding) {
    _fmxcpt _x;
    FM_Text_Assign(this, s, static_cast<int32>(encoding), _x);
    _x.Check();
}
inline void Text::AssignWide(const wchar_t* s) {
    _fmxcpt _x;
    FM_Text_AssignWide(this, s, _x);
    _x.Check();
}
inline void Text::AssignUnicode(const uint16* s) {
    _fmxcpt _x;
    FM_Text_AssignUnicode(this, s, _x);
    _x.Check();
}
inline void Text::AssignWithLength(const char* s, uint32 length, Text::Encoding encoding) {
    _fmxcpt _x;
    FM_Text_AssignWithLength(this, s, length, static_cast<int32>(encoding), _x);
    _x.Check();
}
inline void Text::AssignWideWithLength(const wchar_t* s, uint32 length) {
    _fmxcpt _x;
    FM_Text_AssignWideWithLength(this, s, length, _x);
    _x.Check();
}
inline void Text::AssignUnicodeWithLength(const uint16* s, uint32 length) {
    _fmxcpt _x;
    FM_Text_AssignUnicodeWithLength(this, s, length, _x);
    _x.Check();
}
inline void Text::GetBytes(char* buffer, uint32 buffersize, uint32 position, uint32 size,
                           Text::Encoding encoding) const {
    _fmxcpt _x;
    FM_Text_GetBytes(this, buffer, buffersize, position, size, static_cast<int32>(encoding), _x);
    _x.Check();
}
inline uint32 Text::GetBytesEx(char* buffer, uint32 buffersize, uint32 position, uint32 size,
                               Text::Encoding encoding) const {
    _fmxcpt _x;
    const auto _rtn =
        FM_Text_GetBytesEx(this, buffer, buffersize, position, size, static_cast<int32>(encoding), _x);
    _x.Check();
    return _rtn;
}
inline void Text::GetUnicode(uint16* s, uint32 position, uint32 size) const {
    _fmxcpt _x;
    FM_Text_GetUnicode(this, s, position, size, _x);
    _x.Check();
}
inline void Text::SetText(const Text& other, uint32 position, uint32 size) {
    _fmxcpt _x;
    FM_Text_SetText(this, other, position, size, _x);
    _x.Check();
}
inline void Text::AppendText(const Text& other, uint32 position, uint32 size) {
    _fmxcpt _x;
    FM_Text_AppendText(this, other, position, size, _x);
    _x.Check();
}
inline void Text::InsertText(const Text& other, uint32 position) {
    _fmxcpt _x;
    FM_Text_InsertText(this, other, position, _x);
    _x.Check();
}
inline void Text::DeleteText(uint32 position, uint32 size) {
    _fmxcpt _x;
    FM_Text_DeleteText(this, position, size, _x);
    _x.Check();
}
inline uint32 Text::Find(const Text& other, uint32 position) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_Find(this, other, position, _x);
    _x.Check();
    return _rtn;
}
inline uint32 Text::FindPrev(const Text& other, uint32 position) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_FindPrev(this, other, position, _x);
    _x.Check();
    return _rtn;
}
inline uint32 Text::FindIgnoringCase(const Text& other, uint32 position) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_FindIgnoringCase(this, other, position, _x);
    _x.Check();
    return _rtn;
}
inline uint32 Text::FindPrevIgnoringCase(const Text& other, uint32 position) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_FindPrevIgnoringCase(this, other, position, _x);
    _x.Check();
    return _rtn;
}
inline void Text::Uppercase() {
    _fmxcpt _x;
    FM_Text_Uppercase(this, _x);
    _x.Check();
}
inline void Text::Lowercase() {
    _fmxcpt _x;
    FM_Text_Lowercase(this, _x);
    _x.Check();
}
inline void Text::GetStyle(CharacterStyle& style, uint32 position) const {
    _fmxcpt _x;
    FM_Text_GetStyle(this, style, position, _x);
    _x.Check();
}
inline void Text::GetDefaultStyle(CharacterStyle& style) const {
    _fmxcpt _x;
    FM_Text_GetDefaultStyle(this, style, _x);
    _x.Check();
}
inline void Text::SetStyle(const CharacterStyle& style, uint32 position, uint32 size) {
    _fmxcpt _x;
    FM_Text_SetStyle(this, style, position, size, _x);
    _x.Check();
}
inline void Text::RemoveStyle(const CharacterStyle& style) {
    _fmxcpt _x;
    FM_Text_RemoveStyle(this, style, _x);
    _x.Check();
}
inline void Text::ResetAllStyleBuffers() {
    _fmxcpt _x;
    FM_Text_ResetAllStyleBuffers(this, _x);
    _x.Check();
}
inline bool Text::operator==(const Text& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_operatorEQ(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool Text::operator!=(const Text& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_operatorNE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool Text::operator<(const Text& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_operatorLT(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool Text::operator<=(const Text& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_operatorLE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool Text::operator>(const Text& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_operatorGT(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool Text::operator>=(const Text& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_Text_operatorGE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline void Text::operator delete(void* _self) {
    _fmxcpt _x;
    FM_Text_Delete(_self, _x);
}
inline TextUniquePtr::TextUniquePtr() {
    _fmxcpt _x;
    reset(FM_Text_Constructor1(_x));
    _x.Check();
}

} // namespace fmx
