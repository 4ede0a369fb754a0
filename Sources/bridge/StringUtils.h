#pragma once

/// Small helpers for texts and strings. They keep nothing between calls. A failing host call throws.

#include "bridge/HostInterface.h"
#include "bridge/Unicode.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The carriage return, which ends the lines of the host's texts.
inline constexpr fmx::uint16 kReturn = 0x000D;

/// The first `size` bytes of the text in an encoding, padded with zeros. The cut may lie within a character.
std::string bytesFromFMText(const fmx::Text& text, std::size_t size,
                            fmx::Text::Encoding encoding = fmx::Text::kEncoding_UTF8);

/// The first 2 × (UTF-16 units) bytes of the text as UTF-8, without zero bytes. Only a text with characters
/// of three bytes can be cut, at its end.
std::string StringFromFmText(const fmx::Text& text);
/// The same; an owner without a text gives an empty string.
std::string StringFromFmText(const fmx::TextAutoPtr& text);

/// The text's UTF-16 units from first to last.
Units unitsFromFMText(const fmx::Text& text);
/// The text becomes these units, without any style. Without units the text stays as it is.
void assignUnits(fmx::Text& text, const Units& units);

/// The length in the host's type. Throws std::length_error when it does not fit.
fmx::uint32 hostLength(std::size_t length);

/// True when the text has no units.
bool isEmpty(const fmx::Text& text);
/// True when the text is exactly "all".
bool isAll(const fmx::Text& text);
/// True when the text is exactly one blank; other white space does not count.
bool isSpace(const fmx::Text& text);

/// A copy with every byte lower-cased by the C library's rule for single bytes.
std::string toLower(std::string s);

/// True when there is at least one byte and all are "0" to "9".
bool is_number(const std::string& s);

/// Takes the first piece, and the delimiter after it, from the front of `rest`.
std::string_view takePiece(std::string_view& rest, std::string_view delimiter);

/// The pieces between occurrences of the delimiter. A leading delimiter gives an empty first piece, a
/// trailing one no piece; an empty string has no pieces. An empty delimiter occurs nowhere.
std::vector<std::string> split(const std::string& s, const std::string& delimiter);

/// The pieces between occurrences of one character; a trailing separator gives no piece.
std::vector<std::string> explode(const std::string& s, char separator);

/// The index of the first equal element, -1 when there is none.
int indexOfStringInVector(const std::string& s, const std::vector<std::string>& strings);
