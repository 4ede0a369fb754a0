#pragma once

/// Sorting of a list of numbers.

#include "bridge/HostInterface.h"

/// Stores the numbers of the text's lines, the smallest first, each with a carriage return behind it, as text
/// with the result's own locale.
///
/// Carriage returns alone end lines, and one at the end leaves an empty line behind it. A line gives the
/// number that it begins with, after any white space, as the C library reads numbers: also exponents,
/// hexadecimal ones, "inf" and "nan". A line that begins with none gives the number of the line before, the
/// first line 0. Numbers are written with six significant digits. The decimal point is "." whatever the
/// process's locale. What is not a number comes behind all numbers, infinity included, and is written "nan".
///
/// A zero character ends its line's number like any other. Failing host calls travel as exceptions and leave
/// the result as it was.
void SortNumberInFMText(const fmx::Text& text, fmx::Data& result);
