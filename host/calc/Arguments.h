#pragma once

#include "host/values/Data.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace host::calc {

using Arguments = std::span<const DataRef>;

/// A count or position as calculations give it: the whole part of a number, held within what a text can have.
inline std::int64_t whole(const DataRef& value) {
    constexpr std::int64_t bound = 0x7FFFFFFF;
    return std::clamp<std::int64_t>(value->asNumber().toInt64(), -bound, bound);
}

} // namespace host::calc
