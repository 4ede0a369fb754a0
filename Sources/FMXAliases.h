#pragma once

/// The names that older releases of the host's SDK had for its owners; the current ones know the
/// "UniquePtr" names alone.

#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXText.h"

namespace fmx {

using TextAutoPtr = TextUniquePtr;
using DataAutoPtr = DataUniquePtr;

} // namespace fmx
