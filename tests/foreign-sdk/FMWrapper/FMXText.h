#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class CharacterStyle;
class Text : public Opaque {
public:
    enum Encoding { kEncoding_Native = 0, kEncoding_UTF8 = 1, kEncoding_ASCII_Mac = 4 };
    enum : uint32 { kSize_Invalid = 0xFFFFFFFF, kSize_End = 0xFFFFFFFF };
    uint32 GetSize() const;
    void Assign(const char*, Encoding = kEncoding_Native);
    void AssignUnicode(const uint16*);
    void AssignWithLength(const char*, uint32, Encoding = kEncoding_Native);
    void AssignUnicodeWithLength(const uint16*, uint32);
    void GetBytes(char*, uint32, uint32 = 0, uint32 = kSize_End, Encoding = kEncoding_Native) const;
    void GetUnicode(uint16*, uint32, uint32) const;
    void SetText(const Text&, uint32 = 0, uint32 = kSize_End);
    void AppendText(const Text&, uint32 = 0, uint32 = kSize_End);
    void InsertText(const Text&, uint32);
    void DeleteText(uint32, uint32 = kSize_End);
    uint32 Find(const Text&, uint32) const;
    uint32 FindIgnoringCase(const Text&, uint32) const;
    void Lowercase();
    void GetStyle(CharacterStyle&, uint32) const;
    void SetStyle(const CharacterStyle&, uint32 = 0, uint32 = kSize_End);
    bool operator==(const Text&) const;
    bool operator!=(const Text&) const;
    bool operator<(const Text&) const;
    bool operator<=(const Text&) const;
    bool operator>(const Text&) const;
    bool operator>=(const Text&) const;
};

class TextUniquePtr : public std::unique_ptr<Text> {
public:
    TextUniquePtr();
};

} // namespace fmx
