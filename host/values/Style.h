#pragma once

#include <cstdint>

/// The formatting of characters: font, faces, size and colour, each of which may be left to the field's
/// default.

namespace host {

struct Color {
    std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;
    bool operator==(const Color&) const = default;
};

/// Face bits; the values are the interface's (fmx::CharacterStyle).
namespace face {
inline constexpr std::uint16_t plain = 0, bold = 0x0100, italic = 0x0200, underline = 0x0400,
                               outline = 0x0800, highlight = 0x1000, condense = 0x2000, extend = 0x4000,
                               strikethrough = 0x0001, smallCaps = 0x0002, superscript = 0x0004,
                               subscript = 0x0008, uppercase = 0x0010, lowercase = 0x0020, titlecase = 0x0030,
                               wordUnderline = 0x0040, doubleUnderline = 0x0080, all = 0x7FFF;
/// Upper, lower and title case share two bits that are set and cleared together.
inline constexpr std::uint16_t caseMask = titlecase;
} // namespace face

inline constexpr std::uint16_t invalidFont = 0xFFFF;

/// Paragraph alignment, carried by every character of the paragraph.
enum class Alignment : std::uint8_t { left, center, right, full };

/// A set of traits, each enabled (it says something) or disabled (the field's default shows through).
/// A trait that is disabled holds its neutral value, so two styles that look alike are equal.
class CharacterStyle {
public:
    CharacterStyle() = default;
    /// Everything enabled; `faces` says which faces are on.
    CharacterStyle(std::uint16_t font, std::uint16_t faces, std::uint16_t size, Color color = {});

    bool operator==(const CharacterStyle&) const = default;

    [[nodiscard]] bool isAllDisabled() const { return *this == CharacterStyle{}; }
    [[nodiscard]] bool isFontEnabled() const { return fontEnabled_; }
    [[nodiscard]] bool isSizeEnabled() const { return sizeEnabled_; }
    [[nodiscard]] bool isColorEnabled() const { return colorEnabled_; }
    /// True when every bit of `faces` is enabled.
    [[nodiscard]] bool isFaceEnabled(std::uint16_t faces) const {
        return faces != 0 && (enabledFaces_ & faces) == faces;
    }
    [[nodiscard]] bool isAnyFaceEnabled() const { return enabledFaces_ != 0; }

    void enableFont() { fontEnabled_ = true; }
    void enableFace(std::uint16_t faces);
    void enableSize() { sizeEnabled_ = true; }
    void enableColor() { colorEnabled_ = true; }
    void disableFont();
    void disableFace(std::uint16_t faces);
    void disableSize();
    void disableColor();
    void disableAll() { *this = CharacterStyle{}; }

    /// invalidFont while the font is disabled.
    [[nodiscard]] std::uint16_t font() const { return font_; }
    /// The faces that are enabled and on.
    [[nodiscard]] std::uint16_t faces() const { return faces_; }
    [[nodiscard]] std::uint16_t enabledFaces() const { return enabledFaces_; }
    /// Points; 0 while the size is disabled.
    [[nodiscard]] std::uint16_t size() const { return size_; }
    [[nodiscard]] const Color& color() const { return color_; }

    /// Setting a trait enables it. setFaces changes only the faces that it turns on; plain changes all.
    void setFont(std::uint16_t font);
    void setFaces(std::uint16_t faces);
    void setSize(std::uint16_t size);
    void setColor(Color color);

    /// Lays the enabled traits of `other` over this style; what is enabled there and off is off here.
    void apply(const CharacterStyle& other);
    /// Gives the traits that `other` enables back to the field's default.
    void remove(const CharacterStyle& other);

private:
    std::uint16_t font_ = invalidFont, faces_ = 0, enabledFaces_ = 0, size_ = 0;
    Color color_{};
    bool fontEnabled_ = false, sizeEnabled_ = false, colorEnabled_ = false;
};

} // namespace host
