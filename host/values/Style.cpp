#include "host/values/Style.h"

namespace host {

namespace {

/// The case bits are one trait: what touches one of them touches both.
std::uint16_t wholeTraits(std::uint16_t faces) {
    return (faces & face::caseMask) != 0 ? faces | face::caseMask : faces;
}

} // namespace

CharacterStyle::CharacterStyle(std::uint16_t font, std::uint16_t faces, std::uint16_t size, Color color) {
    setFont(font);
    setFaces(faces);
    enabledFaces_ = face::all;
    setSize(size);
    setColor(color);
}

void CharacterStyle::enableFace(std::uint16_t faces) { enabledFaces_ |= faces & face::all; }

void CharacterStyle::disableFont() {
    fontEnabled_ = false;
    font_ = invalidFont;
}

void CharacterStyle::disableFace(std::uint16_t faces) {
    faces = wholeTraits(faces);
    enabledFaces_ &= static_cast<std::uint16_t>(~faces);
    faces_ &= static_cast<std::uint16_t>(~faces);
}

void CharacterStyle::disableSize() {
    sizeEnabled_ = false;
    size_ = 0;
}

void CharacterStyle::disableColor() {
    colorEnabled_ = false;
    color_ = {};
}

void CharacterStyle::setFont(std::uint16_t font) {
    font_ = font;
    fontEnabled_ = true;
}

void CharacterStyle::setFaces(std::uint16_t faces) {
    faces_ = faces & face::all;
    enabledFaces_ = faces_ == face::plain ? face::all : enabledFaces_ | faces_;
}

void CharacterStyle::setSize(std::uint16_t size) {
    size_ = size;
    sizeEnabled_ = true;
}

void CharacterStyle::setColor(Color color) {
    color_ = color;
    colorEnabled_ = true;
}

void CharacterStyle::apply(const CharacterStyle& other) {
    if (other.fontEnabled_) setFont(other.font_);
    if (other.sizeEnabled_) setSize(other.size_);
    if (other.colorEnabled_) setColor(other.color_);
    disableFace(other.enabledFaces_);
    enabledFaces_ |= other.faces_;
    faces_ |= other.faces_;
}

void CharacterStyle::remove(const CharacterStyle& other) {
    if (other.fontEnabled_) disableFont();
    if (other.sizeEnabled_) disableSize();
    if (other.colorEnabled_) disableColor();
    disableFace(other.enabledFaces_);
}

} // namespace host
