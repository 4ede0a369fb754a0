#pragma once

#include "platform/Units.h"

/// The matches that the platform's class finds in one call; 0 also when the pattern is malformed.
unsigned long matchesFoundAtOnce(const platform::Units& text, const platform::Units& pattern);
