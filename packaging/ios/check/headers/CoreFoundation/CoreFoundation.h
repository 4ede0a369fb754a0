#pragma once

/// The part of CoreFoundation that the plug-in names, for the check without a Mac. See Foundation.h beside it.

typedef struct __CFRunLoopTimer* CFRunLoopTimerRef;
