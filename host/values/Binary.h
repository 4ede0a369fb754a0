#pragma once

#include "host/values/Text.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace host {

/// Four bytes that name a stream's kind or a plug-in.
struct QuadChar {
    std::array<unsigned char, 4> bytes{};
    auto operator<=>(const QuadChar&) const = default;
};

/// The kind of the stream that holds a file's own bytes.
inline constexpr QuadChar kFileStream{{'F', 'I', 'L', 'E'}};

/// A container's value: a file name and byte streams, each under a kind of its own, in the order they were
/// added.
class Binary {
public:
    struct Stream {
        QuadChar type;
        std::vector<std::byte> bytes;
        bool operator==(const Stream&) const = default;
    };

    [[nodiscard]] const std::vector<Stream>& streams() const { return streams_; }
    /// The index of a kind, -1 when absent.
    [[nodiscard]] int indexOf(const QuadChar& type) const;
    /// Adds a stream or replaces the one of that kind.
    void add(const QuadChar& type, std::span<const std::byte> bytes);
    bool remove(const QuadChar& type);
    void clear() { streams_.clear(); }
    [[nodiscard]] std::size_t totalSize() const;
    /// The bytes of the file, of the first stream where there is no file; none without a stream.
    [[nodiscard]] std::span<const std::byte> fileBytes() const;

    [[nodiscard]] const Text& fileName() const { return fileName_; }
    void setFileName(Text name) { fileName_ = std::move(name); }

    bool operator==(const Binary&) const = default;

private:
    Text fileName_;
    std::vector<Stream> streams_;
};

} // namespace host
