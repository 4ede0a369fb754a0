#include "FMWrapper/FMXTextStyle.h"

#include "host/fmwrapper/Gate.h"
#include "host/values/Style.h"

using host::CharacterStyle;
using host::Color;
using host::ObjectClass;
using host::bridge::in;
namespace gate = host::gate;

namespace {

using Channel16 = fmx::CharacterStyle::Color::ColorChannel16;

/// 0 to 255 as 0 to 65535.
unsigned upsampled(unsigned char channel) { return channel * 0x101U; }

} // namespace

extern "C" {

fmx::CharacterStyle* FM_CharacterStyle_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::CharacterStyle, ObjectClass::characterStyle>(
        _x, [&] { return CharacterStyle{}; });
}
fmx::CharacterStyle* FM_CharacterStyle_Constructor2(fmx::CharacterStyle::FontID font,
                                                    fmx::CharacterStyle::Face face,
                                                    fmx::CharacterStyle::FontSize size,
                                                    const fmx::CharacterStyle::Color& color,
                                                    fmx::_fmxcpt& _x) {
    return gate::construct<fmx::CharacterStyle, ObjectClass::characterStyle>(
        _x, [&] { return CharacterStyle(font, face, size, in<Color>(&color)); });
}
fmx::CharacterStyle* FM_CharacterStyle_Constructor3(const fmx::CharacterStyle& that, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::CharacterStyle, ObjectClass::characterStyle>(
        _x, [&] { return CharacterStyle(in<CharacterStyle>(&that)); });
}
void FM_CharacterStyle_Delete(void* _self, fmx::_fmxcpt& _x) {
    gate::destroy<CharacterStyle, ObjectClass::characterStyle>(_self, _x);
}
void FM_CharacterStyle_EnableFont(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).enableFont(); });
}
void FM_CharacterStyle_EnableFace(void* _self, fmx::CharacterStyle::Face face, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).enableFace(face); });
}
void FM_CharacterStyle_EnableSize(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).enableSize(); });
}
void FM_CharacterStyle_EnableColor(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).enableColor(); });
}
void FM_CharacterStyle_DisableFont(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).disableFont(); });
}
void FM_CharacterStyle_DisableFace(void* _self, fmx::CharacterStyle::Face face, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).disableFace(face); });
}
void FM_CharacterStyle_DisableAllFaces(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).disableFace(host::face::all); });
}
void FM_CharacterStyle_DisableSize(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).disableSize(); });
}
void FM_CharacterStyle_DisableColor(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).disableColor(); });
}
void FM_CharacterStyle_DisableAll(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).disableAll(); });
}
bool FM_CharacterStyle_IsAllDisabled(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<CharacterStyle>(_self).isAllDisabled(); });
}
bool FM_CharacterStyle_IsFontEnabled(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<CharacterStyle>(_self).isFontEnabled(); });
}
bool FM_CharacterStyle_IsFaceEnabled(const void* _self, fmx::CharacterStyle::Face face, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<CharacterStyle>(_self).isFaceEnabled(face); });
}
bool FM_CharacterStyle_IsAnyFaceEnabled(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<CharacterStyle>(_self).isAnyFaceEnabled(); });
}
bool FM_CharacterStyle_IsSizeEnabled(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<CharacterStyle>(_self).isSizeEnabled(); });
}
bool FM_CharacterStyle_IsColorEnabled(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<CharacterStyle>(_self).isColorEnabled(); });
}
void FM_CharacterStyle_SetFontInformation(void* _self, fmx::CharacterStyle::FontID font,
                                          fmx::CharacterStyle::Face face, fmx::CharacterStyle::FontSize size,
                                          fmx::_fmxcpt& _x) {
    gate::call(_x, [&] {
        auto& style = in<CharacterStyle>(_self);
        style.setFont(font);
        style.setFaces(face);
        style.setSize(size);
    });
}
void FM_CharacterStyle_GetFontInformation(void* _self, fmx::CharacterStyle::FontID& font,
                                          fmx::CharacterStyle::Face& face,
                                          fmx::CharacterStyle::FontSize& size, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] {
        const auto& style = in<CharacterStyle>(_self);
        auto& fontOut = in<fmx::CharacterStyle::FontID>(&font);
        auto& faceOut = in<fmx::CharacterStyle::Face>(&face);
        in<fmx::CharacterStyle::FontSize>(&size) = style.size();
        fontOut = style.font();
        faceOut = style.faces();
    });
}
void FM_CharacterStyle_SetFont(void* _self, fmx::CharacterStyle::FontID font, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).setFont(font); });
}
void FM_CharacterStyle_SetFace(void* _self, fmx::CharacterStyle::Face face, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).setFaces(face); });
}
void FM_CharacterStyle_SetSize(void* _self, fmx::CharacterStyle::FontSize size, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).setSize(size); });
}
void FM_CharacterStyle_SetColor(void* _self, const fmx::CharacterStyle::Color& color, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<CharacterStyle>(_self).setColor(in<Color>(&color)); });
}
fmx::CharacterStyle::FontID FM_CharacterStyle_GetFont(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, static_cast<fmx::CharacterStyle::FontID>(0), [&] {
        return static_cast<fmx::CharacterStyle::FontID>(in<CharacterStyle>(_self).font());
    });
}
fmx::CharacterStyle::Face FM_CharacterStyle_GetFace(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, static_cast<fmx::CharacterStyle::Face>(0), [&] {
        return static_cast<fmx::CharacterStyle::Face>(in<CharacterStyle>(_self).faces());
    });
}
fmx::CharacterStyle::FontSize FM_CharacterStyle_GetSize(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, static_cast<fmx::CharacterStyle::FontSize>(0), [&] {
        return static_cast<fmx::CharacterStyle::FontSize>(in<CharacterStyle>(_self).size());
    });
}
const fmx::CharacterStyle::Color* FM_CharacterStyle_GetColor(const void* _self, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::CharacterStyle::Color, Color>(
        _x, [&]() -> const Color& { return in<CharacterStyle>(_self).color(); });
}
const fmx::CharacterStyle* FM_CharacterStyle_operatorAS(void* _self, const fmx::CharacterStyle& that,
                                                        fmx::_fmxcpt& _x) {
    return gate::assign<CharacterStyle>(_x, _self, that);
}
bool FM_CharacterStyle_operatorEQ(const void* _self, const fmx::CharacterStyle& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<CharacterStyle>(_self) == in<CharacterStyle>(&that); });
}
bool FM_CharacterStyle_operatorNE(const void* _self, const fmx::CharacterStyle& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<CharacterStyle>(_self) != in<CharacterStyle>(&that); });
}

fmx::CharacterStyle::Color* FM_Color_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::CharacterStyle::Color, ObjectClass::color>(_x, [&] { return Color{}; });
}
fmx::CharacterStyle::Color* FM_Color_Constructor2(unsigned char red, unsigned char green, unsigned char blue,
                                                  unsigned char alpha, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::CharacterStyle::Color, ObjectClass::color>(
        _x, [&] { return Color{red, green, blue, alpha}; });
}
fmx::CharacterStyle::Color* FM_Color_Constructor3(const fmx::CharacterStyle::Color& that, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::CharacterStyle::Color, ObjectClass::color>(
        _x, [&] { return Color(in<Color>(&that)); });
}
void FM_Color_Delete(void* _self, fmx::_fmxcpt& _x) { gate::destroy<Color, ObjectClass::color>(_self, _x); }
void FM_Color_SetRed(void* _self, unsigned char value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Color>(_self).red = value; });
}
void FM_Color_SetGreen(void* _self, unsigned char value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Color>(_self).green = value; });
}
void FM_Color_SetBlue(void* _self, unsigned char value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Color>(_self).blue = value; });
}
void FM_Color_SetAlpha(void* _self, unsigned char value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Color>(_self).alpha = value; });
}
unsigned char FM_Color_GetRed(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, static_cast<unsigned char>(0),
                      [&] { return static_cast<unsigned char>(in<Color>(_self).red); });
}
unsigned char FM_Color_GetGreen(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, static_cast<unsigned char>(0),
                      [&] { return static_cast<unsigned char>(in<Color>(_self).green); });
}
unsigned char FM_Color_GetBlue(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, static_cast<unsigned char>(0),
                      [&] { return static_cast<unsigned char>(in<Color>(_self).blue); });
}
unsigned char FM_Color_GetAlpha(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, static_cast<unsigned char>(0),
                      [&] { return static_cast<unsigned char>(in<Color>(_self).alpha); });
}
fmx::CharacterStyle::Color::ColorChannel16 FM_Color_GetRedUpsample(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<Channel16>(_x, [&] { return upsampled(in<Color>(_self).red); });
}
fmx::CharacterStyle::Color::ColorChannel16 FM_Color_GetGreenUpsample(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<Channel16>(_x, [&] { return upsampled(in<Color>(_self).green); });
}
fmx::CharacterStyle::Color::ColorChannel16 FM_Color_GetBlueUpsample(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<Channel16>(_x, [&] { return upsampled(in<Color>(_self).blue); });
}
fmx::CharacterStyle::Color::ColorChannel16 FM_Color_GetAlphaUpsample(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<Channel16>(_x, [&] { return upsampled(in<Color>(_self).alpha); });
}
const fmx::CharacterStyle::Color* FM_Color_operatorAS(void* _self, const fmx::CharacterStyle::Color& that,
                                                      fmx::_fmxcpt& _x) {
    return gate::assign<Color>(_x, _self, that);
}
bool FM_Color_operatorEQ(const void* _self, const fmx::CharacterStyle::Color& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Color>(_self) == in<Color>(&that); });
}
bool FM_Color_operatorNE(const void* _self, const fmx::CharacterStyle::Color& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Color>(_self) != in<Color>(&that); });
}
const fmx::CharacterStyle::Color* FM_Color_White() {
    static const Color white{255, 255, 255, 255};
    return &host::bridge::out<fmx::CharacterStyle::Color>(white);
}
const fmx::CharacterStyle::Color* FM_Color_Black() {
    static const Color black{};
    return &host::bridge::out<fmx::CharacterStyle::Color>(black);
}

} // extern "C"
