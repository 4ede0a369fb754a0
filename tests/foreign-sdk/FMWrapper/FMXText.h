#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class CharacterStyle;
class Text {
public:
    enum Encoding {
        kEncoding_Native = 0,
        kEncoding_UTF8,
        kEncoding_ASCII_DOS,
        kEncoding_ASCII_Windows,
        kEncoding_ASCII_Mac,
        kEncoding_ISO_8859_1,
        kEncoding_ShiftJIS_Mac,
        kEncoding_ShiftJIS_Win
    };
    enum : uint32 { kSize_Invalid = 0xFFFFFFFF, kSize_End = 0xFFFFFFFF };
    uint32 GetSize() const;
    void Assign(const char*, Encoding = kEncoding_Native);
    void AssignWide(const wchar_t*);
    void AssignUnicode(const uint16*);
    void AssignWithLength(const char*, uint32, Encoding = kEncoding_Native);
    void AssignWideWithLength(const wchar_t*, uint32);
    void AssignUnicodeWithLength(const uint16*, uint32);
    void GetBytes(char*, uint32, uint32 = 0, uint32 = kSize_End, Encoding = kEncoding_Native) const;
    uint32 GetBytesEx(char*, uint32, uint32 = 0, uint32 = kSize_End, Encoding = kEncoding_UTF8) const;
    void GetUnicode(uint16*, uint32, uint32) const;
    void SetText(const Text&, uint32 = 0, uint32 = kSize_End);
    void AppendText(const Text&, uint32 = 0, uint32 = kSize_End);
    void InsertText(const Text&, uint32);
    void DeleteText(uint32, uint32 = kSize_End);
    uint32 Find(const Text&, uint32) const;
    uint32 FindPrev(const Text&, uint32) const;
    uint32 FindIgnoringCase(const Text&, uint32) const;
    uint32 FindPrevIgnoringCase(const Text&, uint32) const;
    void Uppercase();
    void Lowercase();
    void GetStyle(CharacterStyle&, uint32) const;
    void GetDefaultStyle(CharacterStyle&) const;
    void SetStyle(const CharacterStyle&, uint32 = 0, uint32 = kSize_End);
    void RemoveStyle(const CharacterStyle&);
    void ResetAllStyleBuffers();
    bool operator==(const Text&) const;
    bool operator!=(const Text&) const;
    bool operator<(const Text&) const;
    bool operator<=(const Text&) const;
    bool operator>(const Text&) const;
    bool operator>=(const Text&) const;
    Text() = delete;
    Text(const Text&) = delete;
    void operator=(const Text&) = delete;
    ~Text() = default;
    static void operator delete(void*);
};

class TextUniquePtr : public std::unique_ptr<Text> {
public:
    TextUniquePtr();
};

} // namespace fmx
