#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Bytes to UTF-16 and back, in the encodings of the interface and some more. Unpaired surrogates and bytes
/// that mean nothing become the replacement character (U+FFFD, "?" where the encoding lacks it); nothing here
/// fails.

namespace host {

enum class Encoding : std::int32_t {
    native,
    utf8,
    asciiDos,
    asciiWindows,
    asciiMac,
    iso8859_1,
    shiftJisMac,
    shiftJisWin,
    koreanMac,
    koreanWin,
    koreanJohab,
    chineseTraditionalMac,
    chineseTraditionalWin,
    chineseSimplifiedMac,
    chineseSimplifiedWin,
    cyrillicMac,
    cyrillicWin,
    iso8859_5,
    centralEuropeMac,
    easternEuropeWin,
    iso8859_2,
    turkishMac,
    turkishWin,
    iso8859_3,
    iso8859_9,
    balticWin,
    iso8859_4,
    arabicMac,
    arabicWin,
    iso8859_6,
    greekMac,
    greekWin,
    iso8859_7,
    hebrewMac,
    hebrewWin,
    iso8859_8,
    iso8859_15,
    // The interface has no numbers for these.
    gb18030,
    eucKr,
    big5
};
/// Numbers that the interface does not name are taken for native.
Encoding encodingFromNumber(std::int32_t number);

/// The encoding that `native` means in this process; Mac Roman (asciiMac) at the start. It is never `native`
/// itself.
void setNativeEncoding(Encoding encoding);
Encoding nativeEncoding();

std::u16string decode(std::string_view bytes, Encoding encoding);
std::string encode(std::u16string_view units, Encoding encoding);
/// Encodes into at most `capacity` bytes, cut at a byte (also inside a character); gives the bytes written.
std::size_t encodeInto(std::u16string_view units, Encoding encoding, char* out, std::size_t capacity);

inline std::u16string fromUtf8(std::string_view bytes) { return decode(bytes, Encoding::utf8); }
inline std::string toUtf8(std::u16string_view units) { return encode(units, Encoding::utf8); }

} // namespace host
