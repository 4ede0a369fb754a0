#pragma once

/// The host's interface. All sources include it from here, because its headers need an order: in the vendor's
/// SDK, FMXCalcEngine.h uses declarations of FMXTypes.h without including it.

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

/// The names of these owners in older releases. Current releases have the "UniquePtr" names only.
using TextAutoPtr = TextUniquePtr;
using DataAutoPtr = DataUniquePtr;

} // namespace fmx
