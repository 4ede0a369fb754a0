#pragma once

#include "platform/Platform.h"

/// The number of matches that the platform's class finds in one call; 0 also for a malformed pattern.
unsigned long matchesFoundAtOnce(const platform::Units& text, const platform::Units& pattern);
