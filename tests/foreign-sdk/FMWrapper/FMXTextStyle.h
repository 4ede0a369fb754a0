#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class CharacterStyle : public Opaque {
public:
    class Color;
    typedef unsigned short Face;
    typedef unsigned short FontID;
    typedef unsigned short FontSize;
    typedef unsigned short FontScript;
    enum { kRoman = 0 };
    enum {
        kFace_Bold = 0x0100,
        kFace_Italic = 0x0200,
        kFace_Underline = 0x0400,
        kFace_Shadow = 0x1000,
        kFace_Condense = 0x2000,
        kFace_Extend = 0x4000,
        kFace_Strikethrough = 0x0001,
        kFace_SmallCaps = 0x0002,
        kFace_Superscript = 0x0004,
        kFace_Subscript = 0x0008,
        kFace_Uppercase = 0x0010,
        kFace_Lowercase = 0x0020,
        kFace_Titlecase = 0x0030,
        kFace_WordUnderline = 0x0040,
        kFace_DoubleUnderline = 0x0080
    };
    bool IsAllDisabled() const;
    bool IsSizeEnabled() const;
    bool IsColorEnabled() const;
    FontID GetFont() const;
    Face GetFace() const;
    FontSize GetSize() const;
    const Color& GetColor() const;
    const CharacterStyle& operator=(const CharacterStyle&);
    bool operator==(const CharacterStyle&) const;
    bool operator!=(const CharacterStyle&) const;
};

class CharacterStyle::Color : public Opaque {
public:
    unsigned char GetRed() const;
    unsigned char GetGreen() const;
    unsigned char GetBlue() const;
    unsigned char GetAlpha() const;
    const Color& operator=(const Color&);
    bool operator==(const Color&) const;
    bool operator!=(const Color&) const;
    static const Color& White();
    static const Color& Black();
};

class CharacterStyleUniquePtr : public std::unique_ptr<CharacterStyle> {
public:
    CharacterStyleUniquePtr();
    CharacterStyleUniquePtr(CharacterStyle::FontID, CharacterStyle::Face, CharacterStyle::FontSize,
                            const CharacterStyle::Color& = CharacterStyle::Color::Black());
    CharacterStyleUniquePtr(const CharacterStyle&);
};
class ColorUniquePtr : public std::unique_ptr<CharacterStyle::Color> {
public:
    ColorUniquePtr();
    ColorUniquePtr(unsigned char, unsigned char, unsigned char, unsigned char = 255);
    ColorUniquePtr(const CharacterStyle::Color&);
};

} // namespace fmx
