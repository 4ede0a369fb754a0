#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class CharacterStyle {
public:
    class Color;
    typedef unsigned short Face;
    typedef unsigned short FontID;
    typedef unsigned short FontSize;
    typedef unsigned short FontScript;
    enum { kInvalidFont = 0xFFFF, kRoman = 0 };
    enum {
        kFace_Plain = 0x0000,
        kFace_Bold = 0x0100,
        kFace_Italic = 0x0200,
        kFace_Underline = 0x0400,
        kFace_Outline = 0x0800,
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
        kFace_DoubleUnderline = 0x0080,
        kFace_AllStyles = 0x7FFF
    };
    void EnableFont();
    void EnableFace(Face);
    void EnableSize();
    void EnableColor();
    void DisableFont();
    void DisableFace(Face);
    void DisableAllFaces();
    void DisableSize();
    void DisableColor();
    void DisableAll();
    bool IsAllDisabled() const;
    bool IsFontEnabled() const;
    bool IsFaceEnabled(Face) const;
    bool IsAnyFaceEnabled() const;
    bool IsSizeEnabled() const;
    bool IsColorEnabled() const;
    void SetFontInformation(FontID, Face, FontSize);
    void GetFontInformation(FontID&, Face&, FontSize&);
    void SetFont(FontID);
    void SetFace(Face);
    void SetSize(FontSize);
    void SetColor(const Color&);
    FontID GetFont() const;
    Face GetFace() const;
    FontSize GetSize() const;
    const Color& GetColor() const;
    const CharacterStyle& operator=(const CharacterStyle&);
    bool operator==(const CharacterStyle&) const;
    bool operator!=(const CharacterStyle&) const;
    CharacterStyle() = delete;
    CharacterStyle(const CharacterStyle&) = delete;
    ~CharacterStyle() = default;
    static void operator delete(void*);
};

class CharacterStyle::Color {
public:
    void SetRed(unsigned char);
    void SetGreen(unsigned char);
    void SetBlue(unsigned char);
    void SetAlpha(unsigned char);
    unsigned char GetRed() const;
    unsigned char GetGreen() const;
    unsigned char GetBlue() const;
    unsigned char GetAlpha() const;
    const Color& operator=(const Color&);
    bool operator==(const Color&) const;
    bool operator!=(const Color&) const;
    static const Color& White();
    static const Color& Black();
    Color() = delete;
    Color(const Color&) = delete;
    ~Color() = default;
    static void operator delete(void*);
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
