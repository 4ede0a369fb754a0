#pragma once

#include "host/values/Text.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace host {

/// Four bytes that name a stream's kind or a plug-in.
struct QuadChar {
    std::array<unsigned char, 4> bytes{};
    auto operator<=>(const QuadChar&) const = default;
};

/// The kinds of the streams that hold a file's own bytes, its name (as UTF-8), and a picture's width and
/// height (two numbers of 16 bits, the higher byte first).
inline constexpr QuadChar kFileStream{{'F', 'I', 'L', 'E'}}, kNameStream{{'F', 'N', 'A', 'M'}},
    kSizeStream{{'S', 'I', 'Z', 'E'}};

/// A container's value: a file name and byte streams, each under a kind of its own, in the order they were
/// added. For plug-ins the name is a stream too, the last one.
class Binary {
public:
    struct Stream {
        QuadChar type;
        std::vector<std::byte> bytes;
        bool operator==(const Stream&) const = default;
    };

    /// The streams without the name.
    [[nodiscard]] const std::vector<Stream>& streams() const { return streams_; }
    /// The number of streams, the name included.
    [[nodiscard]] std::size_t count() const { return (hasName() ? 1 : 0) + streams_.size(); }
    /// A stream, the name included; throws std::out_of_range.
    [[nodiscard]] const Stream& at(std::size_t index) const;
    /// The index of a kind, the name included; -1 when absent.
    [[nodiscard]] int indexOf(const QuadChar& type) const;
    /// Adds a stream or replaces the one of that kind. The name's stream gives the file its name.
    void add(const QuadChar& type, std::span<const std::byte> bytes);
    /// Adds a file under the kind that its bytes have: "PNGf", "JPEG" (with the picture's size), "GIFf", "PDF
    /// ", or else "FILE".
    void addFile(std::span<const std::byte> bytes);
    bool remove(const QuadChar& type);
    void clear() { *this = {}; }
    [[nodiscard]] std::size_t totalSize() const; ///< of all streams, the name included
    /// The bytes of the file, of the first stream where there is no file; none without a stream.
    [[nodiscard]] std::span<const std::byte> fileBytes() const;

    [[nodiscard]] const Text& fileName() const { return fileName_; }
    void setFileName(Text name);

    /// Begins a stream that comes in pieces, of a kind or (nothing) of the kind that its bytes will have.
    /// Gives the number under which it goes on. It is no part of the value until it is finished.
    std::uint32_t begin(std::optional<QuadChar> type);
    /// False for a number under which nothing was begun.
    bool append(std::uint32_t number, std::span<const std::byte> bytes);
    bool finish(std::uint32_t number);

    /// Name and streams are the same.
    bool operator==(const Binary& other) const {
        return fileName_ == other.fileName_ && streams_ == other.streams_;
    }

private:
    struct Unfinished {
        std::optional<QuadChar> type;
        std::vector<std::byte> bytes;
    };

    [[nodiscard]] bool hasName() const { return !nameStream_.bytes.empty(); }

    Text fileName_;
    Stream nameStream_{kNameStream, {}};
    std::vector<Stream> streams_;
    std::map<std::uint32_t, Unfinished> unfinished_;
    std::uint32_t lastNumber_ = 0;
};

} // namespace host
