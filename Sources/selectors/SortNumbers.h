#pragma once

/// Sorting of a list of numbers.

#include "bridge/HostInterface.h"

/// Stores the numbers of the text's lines, the smallest first, each followed by a carriage return, as text
/// with the result's own locale.
///
/// Only a carriage return ends a line. A carriage return at the end is followed by one more, empty line. A
/// line gives the number at its beginning, after any white space, as the C library reads numbers: also
/// exponents, hexadecimal numbers, "inf" and "nan". A line that does not begin with a number gives the number
/// of the line before; the first line gives 0. Numbers are written with six significant digits. The decimal
/// point is "." in every locale of the process. Not-a-number comes after all numbers and infinity, and is
/// written "nan".
///
/// A zero character ends its line's number, as any character does that is not part of one. A failing host
/// call throws and leaves the result as it was.
void SortNumberInFMText(const fmx::Text& text, fmx::Data& result);
