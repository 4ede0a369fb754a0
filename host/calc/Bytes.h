#pragma once

#include "host/values/Data.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Values as bytes, for the functions that encode, digest and encrypt.

namespace host::calc {

/// The bytes of a container's file (of its first stream where it holds no file); of any other value the text
/// in UTF-8. Counts as work by their number.
std::string bytesOf(const Data& value);

/// A container that holds one file.
DataRef fileResult(std::u16string name, std::string_view bytes);
/// A text of ASCII characters; throws error 1200 for one that would be too long.
DataRef asciiResult(std::string_view text);

/// Two hexadecimal digits a byte, in capitals, without blanks.
std::string hexText(std::string_view bytes);

/// Base64 in lines of `lineSize` characters that each end with CR LF; 0: without line ends.
std::string base64Text(std::string_view bytes, std::size_t lineSize);
/// The last line of the OpenPGP form of Base64: "=" and the CRC-24 of the bytes.
std::string checksumText(std::string_view bytes);
/// Reads Base64 with or without line ends, "=" at the end and a checksum line. std::nullopt for a text that
/// is no Base64 or differs from its checksum.
std::optional<std::string> bytesOfBase64(const Data& value);

/// The line length of MIME's Base64.
inline constexpr std::size_t kBase64Line = 76;

} // namespace host::calc
