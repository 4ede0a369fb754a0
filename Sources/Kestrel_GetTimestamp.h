#pragma once

/// The platform's clock.

/// Local date and time in seconds since 0001-01-01 00:00:00, with fractions, in the zone of this moment.
/// Throws std::runtime_error when the clock cannot be read.
double getTimestamp();
