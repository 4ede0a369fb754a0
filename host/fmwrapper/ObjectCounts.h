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
    [[nodiscard]] std::int64_t total() const;
    /// A list such as "2 Text, 1 Data"; empty when no object is live.
    [[nodiscard]] std::string describe() const;
    bool operator==(const ObjectCounts&) const = default;
    ObjectCounts operator-(const ObjectCounts& earlier) const;
};

/// The object counts of the process at this moment.
ObjectCounts objectCounts();
/// Counts an object that a plug-in got (1) or gave back (-1). Plug-ins do both on any thread.
void countObject(ObjectClass which, int change);

} // namespace host
