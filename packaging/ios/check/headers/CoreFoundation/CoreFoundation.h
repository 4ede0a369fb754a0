#pragma once

/// The part of CoreFoundation that the plug-in uses, for the check without a Mac; see Foundation.h.

typedef struct __CFRunLoopTimer* CFRunLoopTimerRef;
