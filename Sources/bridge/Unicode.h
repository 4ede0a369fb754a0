#pragma once

/// Unicode arithmetic: UTF-8 and UTF-16, both ways. Nothing here needs the host.

#include <string>
#include <string_view>
#include <vector>

/// A text as UTF-16 units, of the type that the host and the platform have for them.
using Units = std::vector<unsigned short>;

/// Appends UTF-8 as UTF-16. Each malformed sequence becomes one U+FFFD.
void appendUtf16(Units& units, std::string_view utf8);
/// UTF-8 as UTF-16, by the same rule.
Units utf16FromUtf8(std::string_view utf8);

/// The bytes of UTF-8 without an incomplete last character, as the host leaves it when it cuts a text.
std::string_view withoutCutCharacter(std::string_view utf8);

/// UTF-16 as UTF-8. Each surrogate without its other half becomes U+FFFD.
std::string utf8FromUtf16(std::u16string_view units);

/// The text with U+FFFD in place of each surrogate without its other half.
Units wellFormed(Units units);
