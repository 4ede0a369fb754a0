#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {

enum class ObjectClass : std::uint8_t {
    quadChar,
    locale,
    text,
    color,
    characterStyle,
    fixPt,
    dateTime,
    binaryData,
    data,
    dataVect,
    rowVect,
    exprEnv
};
inline constexpr std::size_t objectClassCount = 12;

/// The number of objects of each class that plug-ins own: objects that they constructed, or received with
/// ownership, and have not destroyed. The host's own objects do not count.
struct ObjectCounts {
    std::array<std::int64_t, objectClassCount> live{};
    void add(ObjectClass which) { ++live[static_cast<std::size_t>(which)]; }
    void remove(ObjectClass which) { --live[static_cast<std::size_t>(which)]; }
    [[nodiscard]] std::int64_t total() const;
    /// A list such as "2 Text, 1 Data"; empty when no object is live.
    [[nodiscard]] std::string describe() const;
    bool operator==(const ObjectCounts&) const = default;
    ObjectCounts operator-(const ObjectCounts& earlier) const;
};

/// The object counts of the process.
ObjectCounts& objectCounts();

} // namespace host
