#pragma once

/// The style of characters.
/// Objects live in the host. Code of a plug-in may use them while it handles a message or a function call, on
/// the host's thread. The code that constructs an object owns it; its owner class gives it back. A failing
/// call throws (see FMXClient.h).

#include "FMWrapper/FMXClient.h"
#include "FMWrapper/FMXExtern.h"

#include <memory>

namespace fmx {

/// A style sets each trait of characters (enabled) or leaves it to the field's default (disabled). A new
/// style has all traits disabled. A Set method also enables its trait.
class CharacterStyle {
public:
    class Color;

    typedef unsigned short Face;
    typedef unsigned short FontID;
    typedef unsigned short FontSize; ///< points
    typedef unsigned short FontScript;
    enum { kInvalidFont = 0xFFFF, kRoman = 0 };
    /// Faces are bits. Shadow is the bit of the host's HighlightYellow; Titlecase is both case bits.
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

    /// Enabling a trait sets no value for it.
    void EnableFont();
    void EnableFace(Face face);
    void EnableSize();
    void EnableColor();
    void DisableFont();
    void DisableFace(Face face);
    void DisableAllFaces();
    void DisableSize();
    void DisableColor();
    void DisableAll();
    /// A face that is several bits is enabled when all of them are.
    bool IsAllDisabled() const;
    bool IsFontEnabled() const;
    bool IsFaceEnabled(Face face) const;
    bool IsAnyFaceEnabled() const;
    bool IsSizeEnabled() const;
    bool IsColorEnabled() const;
    void SetFontInformation(FontID font, Face face, FontSize size);
    void GetFontInformation(FontID& font, Face& face, FontSize& size);
    void SetFont(FontID font);
    void SetFace(Face face);
    void SetSize(FontSize size);
    void SetColor(const Color& color);
    /// Font numbers belong to a file (see Data::GetFontID); kInvalidFont while the font is disabled.
    FontID GetFont() const;
    Face GetFace() const;
    FontSize GetSize() const;
    /// Valid until the style is changed or deleted.
    const Color& GetColor() const;
    const CharacterStyle& operator=(const CharacterStyle& that);
    bool operator==(const CharacterStyle& that) const;
    bool operator!=(const CharacterStyle& that) const;

    static void operator delete(void* _self);

private:
    friend class CharacterStyleUniquePtr;
    CharacterStyle();
    CharacterStyle(const CharacterStyle&);
};

/// A colour; channels run from 0 to 255, and an alpha of 255 is opaque.
class CharacterStyle::Color {
public:
    typedef unsigned short ColorChannel16;

    void SetRed(unsigned char value);
    void SetGreen(unsigned char value);
    void SetBlue(unsigned char value);
    void SetAlpha(unsigned char value);
    unsigned char GetRed() const;
    unsigned char GetGreen() const;
    unsigned char GetBlue() const;
    unsigned char GetAlpha() const;
    /// The channels with 16 bits: 255 is 65535.
    ColorChannel16 GetRedUpsample() const;
    ColorChannel16 GetGreenUpsample() const;
    ColorChannel16 GetBlueUpsample() const;
    ColorChannel16 GetAlphaUpsample() const;
    const Color& operator=(const Color& that);
    bool operator==(const Color& that) const;
    bool operator!=(const Color& that) const;
    static const Color& White();
    static const Color& Black();

    static void operator delete(void* _self);

private:
    friend class ColorUniquePtr;
    Color();
    Color(const Color&);
};

/// Owns a CharacterStyle and gives it back to the host.
class CharacterStyleUniquePtr : public std::unique_ptr<CharacterStyle> {
public:
    CharacterStyleUniquePtr();
    CharacterStyleUniquePtr(CharacterStyle::FontID font, CharacterStyle::Face face,
                            CharacterStyle::FontSize size,
                            const CharacterStyle::Color& color = CharacterStyle::Color::Black());
    explicit CharacterStyleUniquePtr(const CharacterStyle& that);
};

/// Owns a CharacterStyle::Color and gives it back to the host.
class ColorUniquePtr : public std::unique_ptr<CharacterStyle::Color> {
public:
    ColorUniquePtr();
    ColorUniquePtr(unsigned char red, unsigned char green, unsigned char blue, unsigned char alpha = 255);
    explicit ColorUniquePtr(const CharacterStyle::Color& that);
};

} // namespace fmx

extern "C" {

fmx::CharacterStyle* FM_CharacterStyle_Constructor1(fmx::_fmxcpt& _x);
fmx::CharacterStyle* FM_CharacterStyle_Constructor2(fmx::CharacterStyle::FontID font,
                                                    fmx::CharacterStyle::Face face,
                                                    fmx::CharacterStyle::FontSize size,
                                                    const fmx::CharacterStyle::Color& color,
                                                    fmx::_fmxcpt& _x);
fmx::CharacterStyle* FM_CharacterStyle_Constructor3(const fmx::CharacterStyle& that, fmx::_fmxcpt& _x);
void FM_CharacterStyle_Delete(void* _self, fmx::_fmxcpt& _x);
void FM_CharacterStyle_EnableFont(void* _self, fmx::_fmxcpt& _x);
void FM_CharacterStyle_EnableFace(void* _self, fmx::CharacterStyle::Face face, fmx::_fmxcpt& _x);
void FM_CharacterStyle_EnableSize(void* _self, fmx::_fmxcpt& _x);
void FM_CharacterStyle_EnableColor(void* _self, fmx::_fmxcpt& _x);
void FM_CharacterStyle_DisableFont(void* _self, fmx::_fmxcpt& _x);
void FM_CharacterStyle_DisableFace(void* _self, fmx::CharacterStyle::Face face, fmx::_fmxcpt& _x);
void FM_CharacterStyle_DisableAllFaces(void* _self, fmx::_fmxcpt& _x);
void FM_CharacterStyle_DisableSize(void* _self, fmx::_fmxcpt& _x);
void FM_CharacterStyle_DisableColor(void* _self, fmx::_fmxcpt& _x);
void FM_CharacterStyle_DisableAll(void* _self, fmx::_fmxcpt& _x);
bool FM_CharacterStyle_IsAllDisabled(const void* _self, fmx::_fmxcpt& _x);
bool FM_CharacterStyle_IsFontEnabled(const void* _self, fmx::_fmxcpt& _x);
bool FM_CharacterStyle_IsFaceEnabled(const void* _self, fmx::CharacterStyle::Face face, fmx::_fmxcpt& _x);
bool FM_CharacterStyle_IsAnyFaceEnabled(const void* _self, fmx::_fmxcpt& _x);
bool FM_CharacterStyle_IsSizeEnabled(const void* _self, fmx::_fmxcpt& _x);
bool FM_CharacterStyle_IsColorEnabled(const void* _self, fmx::_fmxcpt& _x);
void FM_CharacterStyle_SetFontInformation(void* _self, fmx::CharacterStyle::FontID font,
                                          fmx::CharacterStyle::Face face, fmx::CharacterStyle::FontSize size,
                                          fmx::_fmxcpt& _x);
void FM_CharacterStyle_GetFontInformation(void* _self, fmx::CharacterStyle::FontID& font,
                                          fmx::CharacterStyle::Face& face,
                                          fmx::CharacterStyle::FontSize& size, fmx::_fmxcpt& _x);
void FM_CharacterStyle_SetFont(void* _self, fmx::CharacterStyle::FontID font, fmx::_fmxcpt& _x);
void FM_CharacterStyle_SetFace(void* _self, fmx::CharacterStyle::Face face, fmx::_fmxcpt& _x);
void FM_CharacterStyle_SetSize(void* _self, fmx::CharacterStyle::FontSize size, fmx::_fmxcpt& _x);
void FM_CharacterStyle_SetColor(void* _self, const fmx::CharacterStyle::Color& color, fmx::_fmxcpt& _x);
fmx::CharacterStyle::FontID FM_CharacterStyle_GetFont(const void* _self, fmx::_fmxcpt& _x);
fmx::CharacterStyle::Face FM_CharacterStyle_GetFace(const void* _self, fmx::_fmxcpt& _x);
fmx::CharacterStyle::FontSize FM_CharacterStyle_GetSize(const void* _self, fmx::_fmxcpt& _x);
const fmx::CharacterStyle::Color* FM_CharacterStyle_GetColor(const void* _self, fmx::_fmxcpt& _x);
const fmx::CharacterStyle* FM_CharacterStyle_operatorAS(void* _self, const fmx::CharacterStyle& that,
                                                        fmx::_fmxcpt& _x);
bool FM_CharacterStyle_operatorEQ(const void* _self, const fmx::CharacterStyle& that, fmx::_fmxcpt& _x);
bool FM_CharacterStyle_operatorNE(const void* _self, const fmx::CharacterStyle& that, fmx::_fmxcpt& _x);

fmx::CharacterStyle::Color* FM_Color_Constructor1(fmx::_fmxcpt& _x);
fmx::CharacterStyle::Color* FM_Color_Constructor2(unsigned char red, unsigned char green, unsigned char blue,
                                                  unsigned char alpha, fmx::_fmxcpt& _x);
fmx::CharacterStyle::Color* FM_Color_Constructor3(const fmx::CharacterStyle::Color& that, fmx::_fmxcpt& _x);
void FM_Color_Delete(void* _self, fmx::_fmxcpt& _x);
void FM_Color_SetRed(void* _self, unsigned char value, fmx::_fmxcpt& _x);
void FM_Color_SetGreen(void* _self, unsigned char value, fmx::_fmxcpt& _x);
void FM_Color_SetBlue(void* _self, unsigned char value, fmx::_fmxcpt& _x);
void FM_Color_SetAlpha(void* _self, unsigned char value, fmx::_fmxcpt& _x);
unsigned char FM_Color_GetRed(const void* _self, fmx::_fmxcpt& _x);
unsigned char FM_Color_GetGreen(const void* _self, fmx::_fmxcpt& _x);
unsigned char FM_Color_GetBlue(const void* _self, fmx::_fmxcpt& _x);
unsigned char FM_Color_GetAlpha(const void* _self, fmx::_fmxcpt& _x);
fmx::CharacterStyle::Color::ColorChannel16 FM_Color_GetRedUpsample(const void* _self, fmx::_fmxcpt& _x);
fmx::CharacterStyle::Color::ColorChannel16 FM_Color_GetGreenUpsample(const void* _self, fmx::_fmxcpt& _x);
fmx::CharacterStyle::Color::ColorChannel16 FM_Color_GetBlueUpsample(const void* _self, fmx::_fmxcpt& _x);
fmx::CharacterStyle::Color::ColorChannel16 FM_Color_GetAlphaUpsample(const void* _self, fmx::_fmxcpt& _x);
const fmx::CharacterStyle::Color* FM_Color_operatorAS(void* _self, const fmx::CharacterStyle::Color& that,
                                                      fmx::_fmxcpt& _x);
bool FM_Color_operatorEQ(const void* _self, const fmx::CharacterStyle::Color& that, fmx::_fmxcpt& _x);
bool FM_Color_operatorNE(const void* _self, const fmx::CharacterStyle::Color& that, fmx::_fmxcpt& _x);
const fmx::CharacterStyle::Color* FM_Color_White();
const fmx::CharacterStyle::Color* FM_Color_Black();
}

namespace fmx {

inline void CharacterStyle::EnableFont() {
    _fmxcpt _x;
    FM_CharacterStyle_EnableFont(this, _x);
    _x.Check();
}
inline void CharacterStyle::EnableFace(Face face) {
    _fmxcpt _x;
    FM_CharacterStyle_EnableFace(this, face, _x);
    _x.Check();
}
inline void CharacterStyle::EnableSize() {
    _fmxcpt _x;
    FM_CharacterStyle_EnableSize(this, _x);
    _x.Check();
}
inline void CharacterStyle::EnableColor() {
    _fmxcpt _x;
    FM_CharacterStyle_EnableColor(this, _x);
    _x.Check();
}
inline void CharacterStyle::DisableFont() {
    _fmxcpt _x;
    FM_CharacterStyle_DisableFont(this, _x);
    _x.Check();
}
inline void CharacterStyle::DisableFace(Face face) {
    _fmxcpt _x;
    FM_CharacterStyle_DisableFace(this, face, _x);
    _x.Check();
}
inline void CharacterStyle::DisableAllFaces() {
    _fmxcpt _x;
    FM_CharacterStyle_DisableAllFaces(this, _x);
    _x.Check();
}
inline void CharacterStyle::DisableSize() {
    _fmxcpt _x;
    FM_CharacterStyle_DisableSize(this, _x);
    _x.Check();
}
inline void CharacterStyle::DisableColor() {
    _fmxcpt _x;
    FM_CharacterStyle_DisableColor(this, _x);
    _x.Check();
}
inline void CharacterStyle::DisableAll() {
    _fmxcpt _x;
    FM_CharacterStyle_DisableAll(this, _x);
    _x.Check();
}
inline bool CharacterStyle::IsAllDisabled() const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_IsAllDisabled(this, _x);
    _x.Check();
    return _rtn;
}
inline bool CharacterStyle::IsFontEnabled() const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_IsFontEnabled(this, _x);
    _x.Check();
    return _rtn;
}
inline bool CharacterStyle::IsFaceEnabled(Face face) const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_IsFaceEnabled(this, face, _x);
    _x.Check();
    return _rtn;
}
inline bool CharacterStyle::IsAnyFaceEnabled() const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_IsAnyFaceEnabled(this, _x);
    _x.Check();
    return _rtn;
}
inline bool CharacterStyle::IsSizeEnabled() const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_IsSizeEnabled(this, _x);
    _x.Check();
    return _rtn;
}
inline bool CharacterStyle::IsColorEnabled() const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_IsColorEnabled(this, _x);
    _x.Check();
    return _rtn;
}
inline void CharacterStyle::SetFontInformation(FontID font, Face face, FontSize size) {
    _fmxcpt _x;
    FM_CharacterStyle_SetFontInformation(this, font, face, size, _x);
    _x.Check();
}
inline void CharacterStyle::GetFontInformation(FontID& font, Face& face, FontSize& size) {
    _fmxcpt _x;
    FM_CharacterStyle_GetFontInformation(this, font, face, size, _x);
    _x.Check();
}
inline void CharacterStyle::SetFont(FontID font) {
    _fmxcpt _x;
    FM_CharacterStyle_SetFont(this, font, _x);
    _x.Check();
}
inline void CharacterStyle::SetFace(Face face) {
    _fmxcpt _x;
    FM_CharacterStyle_SetFace(this, face, _x);
    _x.Check();
}
inline void CharacterStyle::SetSize(FontSize size) {
    _fmxcpt _x;
    FM_CharacterStyle_SetSize(this, size, _x);
    _x.Check();
}
inline void CharacterStyle::SetColor(const Color& color) {
    _fmxcpt _x;
    FM_CharacterStyle_SetColor(this, color, _x);
    _x.Check();
}
inline CharacterStyle::FontID CharacterStyle::GetFont() const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_GetFont(this, _x);
    _x.Check();
    return _rtn;
}
inline CharacterStyle::Face CharacterStyle::GetFace() const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_GetFace(this, _x);
    _x.Check();
    return _rtn;
}
inline CharacterStyle::FontSize CharacterStyle::GetSize() const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_GetSize(this, _x);
    _x.Check();
    return _rtn;
}
inline const CharacterStyle::Color& CharacterStyle::GetColor() const {
    _fmxcpt _x;
    const auto* _rtn = FM_CharacterStyle_GetColor(this, _x);
    _x.Check();
    return *_rtn;
}
inline const CharacterStyle& CharacterStyle::operator=(const CharacterStyle& that) {
    _fmxcpt _x;
    FM_CharacterStyle_operatorAS(this, that, _x);
    _x.Check();
    return *this;
}
inline bool CharacterStyle::operator==(const CharacterStyle& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_operatorEQ(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool CharacterStyle::operator!=(const CharacterStyle& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_CharacterStyle_operatorNE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline void CharacterStyle::operator delete(void* _self) {
    _fmxcpt _x;
    FM_CharacterStyle_Delete(_self, _x);
}
inline CharacterStyleUniquePtr::CharacterStyleUniquePtr() {
    _fmxcpt _x;
    reset(FM_CharacterStyle_Constructor1(_x));
    _x.Check();
}
inline CharacterStyleUniquePtr::CharacterStyleUniquePtr(CharacterStyle::FontID font,
                                                        CharacterStyle::Face face,
                                                        CharacterStyle::FontSize size,
                                                        const CharacterStyle::Color& color) {
    _fmxcpt _x;
    reset(FM_CharacterStyle_Constructor2(font, face, size, color, _x));
    _x.Check();
}
inline CharacterStyleUniquePtr::CharacterStyleUniquePtr(const CharacterStyle& that) {
    _fmxcpt _x;
    reset(FM_CharacterStyle_Constructor3(that, _x));
    _x.Check();
}

inline void CharacterStyle::Color::SetRed(unsigned char value) {
    _fmxcpt _x;
    FM_Color_SetRed(this, value, _x);
    _x.Check();
}
inline void CharacterStyle::Color::SetGreen(unsigned char value) {
    _fmxcpt _x;
    FM_Color_SetGreen(this, value, _x);
    _x.Check();
}
inline void CharacterStyle::Color::SetBlue(unsigned char value) {
    _fmxcpt _x;
    FM_Color_SetBlue(this, value, _x);
    _x.Check();
}
inline void CharacterStyle::Color::SetAlpha(unsigned char value) {
    _fmxcpt _x;
    FM_Color_SetAlpha(this, value, _x);
    _x.Check();
}
inline unsigned char CharacterStyle::Color::GetRed() const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_GetRed(this, _x);
    _x.Check();
    return _rtn;
}
inline unsigned char CharacterStyle::Color::GetGreen() const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_GetGreen(this, _x);
    _x.Check();
    return _rtn;
}
inline unsigned char CharacterStyle::Color::GetBlue() const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_GetBlue(this, _x);
    _x.Check();
    return _rtn;
}
inline unsigned char CharacterStyle::Color::GetAlpha() const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_GetAlpha(this, _x);
    _x.Check();
    return _rtn;
}
inline CharacterStyle::Color::ColorChannel16 CharacterStyle::Color::GetRedUpsample() const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_GetRedUpsample(this, _x);
    _x.Check();
    return _rtn;
}
inline CharacterStyle::Color::ColorChannel16 CharacterStyle::Color::GetGreenUpsample() const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_GetGreenUpsample(this, _x);
    _x.Check();
    return _rtn;
}
inline CharacterStyle::Color::ColorChannel16 CharacterStyle::Color::GetBlueUpsample() const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_GetBlueUpsample(this, _x);
    _x.Check();
    return _rtn;
}
inline CharacterStyle::Color::ColorChannel16 CharacterStyle::Color::GetAlphaUpsample() const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_GetAlphaUpsample(this, _x);
    _x.Check();
    return _rtn;
}
inline const CharacterStyle::Color& CharacterStyle::Color::operator=(const Color& that) {
    _fmxcpt _x;
    FM_Color_operatorAS(this, that, _x);
    _x.Check();
    return *this;
}
inline bool CharacterStyle::Color::operator==(const Color& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_operatorEQ(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool CharacterStyle::Color::operator!=(const Color& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_Color_operatorNE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline const CharacterStyle::Color& CharacterStyle::Color::White() { return *FM_Color_White(); }
inline const CharacterStyle::Color& CharacterStyle::Color::Black() { return *FM_Color_Black(); }
inline void CharacterStyle::Color::operator delete(void* _self) {
    _fmxcpt _x;
    FM_Color_Delete(_self, _x);
}
inline ColorUniquePtr::ColorUniquePtr() {
    _fmxcpt _x;
    reset(FM_Color_Constructor1(_x));
    _x.Check();
}
inline ColorUniquePtr::ColorUniquePtr(unsigned char red, unsigned char green, unsigned char blue,
                                      unsigned char alpha) {
    _fmxcpt _x;
    reset(FM_Color_Constructor2(red, green, blue, alpha, _x));
    _x.Check();
}
inline ColorUniquePtr::ColorUniquePtr(const CharacterStyle::Color& that) {
    _fmxcpt _x;
    reset(FM_Color_Constructor3(that, _x));
    _x.Check();
}

} // namespace fmx
