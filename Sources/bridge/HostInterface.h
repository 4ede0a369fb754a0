#pragma once

/// The host's interface, which the sources include here alone. Its headers want an order: in the vendor's SDK
/// FMXCalcEngine.h uses what FMXTypes.h declares, and includes nothing that does.

#include "FMWrapper/FMXExtern.h"
#include "FMWrapper/FMXTypes.h"

#include "FMWrapper/FMXBinaryData.h"
#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXDateTime.h"
#include "FMWrapper/FMXFixPt.h"
#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXTextStyle.h"

namespace fmx {

/// The names that older releases had for these owners; the current ones know the "UniquePtr" names alone.
using TextAutoPtr = TextUniquePtr;
using DataAutoPtr = DataUniquePtr;

} // namespace fmx
