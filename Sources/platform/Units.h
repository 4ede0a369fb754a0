#pragma once

/// Texts on their way to the platform and back: UTF-16 units.

#include <cstddef>
#include <vector>

namespace platform {

using Units = std::vector<unsigned short>;

/// The text with U+FFFD in place of each half of a surrogate pair that stands alone.
Units wellFormed(Units units);

/// Makes the text this long; false when there is no memory for it.
[[nodiscard]] bool resize(Units& units, std::size_t size) noexcept;

} // namespace platform
