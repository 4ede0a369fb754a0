#pragma once

#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>

namespace host::calc {

using Arguments = std::span<const DataRef>;

/// The whole part of a number as a count or a position: held within the sizes that a text can have.
inline std::int64_t whole(const DataRef& value) {
    constexpr std::int64_t bound = 0x7FFFFFFF;
    return std::clamp<std::int64_t>(value->asNumber().toInt64(), -bound, bound);
}

/// A function of numbers, dates and times that passes on the "?" of an argument.
template<DataRef (*function)(Arguments)>
DataRef ofValid(Arguments arguments) {
    const auto isValid = [](const DataRef& value) { return value->isValid(); };
    return std::all_of(arguments.begin(), arguments.end(), isValid) ? function(arguments) : questionMark();
}

inline DataRef optionalResult(const std::optional<Decimal>& number) {
    return number ? numberResult(*number) : questionMark();
}

} // namespace host::calc
