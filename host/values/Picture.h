#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace host {

/// A picture's size in pixels; 0 for bytes that are no picture.
struct PictureSize {
    std::uint32_t width = 0, height = 0;
};
/// Reads the head of a PNG, GIF or JPEG file.
PictureSize pictureSizeOf(std::span<const std::byte> file);

} // namespace host
