#include "host/values/Picture.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace host {

namespace {

using Bytes = std::span<const std::byte>;

std::uint32_t number(Bytes bytes, std::size_t at, std::size_t size, bool isBigEndian) {
    std::uint32_t result = 0;
    for (std::size_t i = 0; i < size; ++i)
        result = result << 8U | static_cast<std::uint32_t>(bytes[at + (isBigEndian ? i : size - 1 - i)]);
    return result;
}

/// A format with the size at a fixed place: width, then height.
struct Format {
    std::string_view start;
    std::size_t place, digits; ///< bytes of each of the two numbers
    bool isBigEndian;
};
using namespace std::string_view_literals;
constexpr std::array formats{Format{"\x89PNG\r\n\x1A\n"sv, 16, 4, true}, Format{"GIF8"sv, 6, 2, false}};

/// A JPEG file is a row of segments: 0xFF, a marker, the size of the rest, the rest. One of the markers
/// "start of frame" has the picture's size in it.
PictureSize jpegSize(Bytes file) {
    constexpr std::size_t frameBytes = 9;
    for (std::size_t at = 2; at + frameBytes <= file.size();) {
        const auto marker = number(file, at + 1, 1, true);
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (number(file, at, 1, true) != 0xFF) break;
        if (isFrame) return {.width = number(file, at + 7, 2, true), .height = number(file, at + 5, 2, true)};
        at += 2 + number(file, at + 2, 2, true);
    }
    return {};
}

} // namespace

PictureSize pictureSizeOf(Bytes file) {
    const auto startsWith = [&](std::string_view start) {
        return file.size() >= start.size() &&
               std::equal(start.begin(), start.end(), file.begin(),
                          [](char left, std::byte right) { return static_cast<std::byte>(left) == right; });
    };
    if (startsWith("\xFF\xD8"sv)) return jpegSize(file);
    for (const Format& format : formats)
        if (startsWith(format.start) && file.size() >= format.place + 2 * format.digits)
            return {.width = number(file, format.place, format.digits, format.isBigEndian),
                    .height = number(file, format.place + format.digits, format.digits, format.isBigEndian)};
    return {};
}

} // namespace host
