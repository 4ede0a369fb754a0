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

/// How many objects of each class plug-ins hold: those they constructed (or were handed for good) and have
/// not given back. What the host keeps for itself does not count.
struct ObjectCounts {
    std::array<std::int64_t, objectClassCount> live{};
    void add(ObjectClass which) { ++live[static_cast<std::size_t>(which)]; }
    void remove(ObjectClass which) { --live[static_cast<std::size_t>(which)]; }
    [[nodiscard]] std::int64_t total() const;
    /// "2 Text, 1 Data"; empty when nothing is live.
    [[nodiscard]] std::string describe() const;
    bool operator==(const ObjectCounts&) const = default;
    ObjectCounts operator-(const ObjectCounts& earlier) const;
};

/// The process's one.
ObjectCounts& objectCounts();

} // namespace host
