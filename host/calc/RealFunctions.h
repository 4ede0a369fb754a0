#pragma once

#include "host/values/Decimal.h"

#include <optional>

namespace host::calc {

/// A power with any exponent, right to the places that the more precise of the two numbers keeps. Nothing
/// where no real result exists (0 to a negative power, a root of a negative number) or it would reach 10^400;
/// one with a whole exponent throws std::overflow_error there. Counts as work of the calculation that runs.
std::optional<Decimal> powerOf(const Decimal& base, const Decimal& exponent);

} // namespace host::calc
