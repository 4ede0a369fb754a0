#pragma once

/// The differences of Objective-C++ on the target and elsewhere, where GNUstep replaces Apple's classes: the
/// ownership of objects, the value that ends a regular expression's search, and the source of local time.
/// Sources take them from here and have no conditions of their own.

#ifndef __OBJC__
#error "For Objective-C++ sources only"
#endif

#import <Foundation/Foundation.h>

#ifdef GNUSTEP_BASE_VERSION
#include "platform/LocalTime.h"
#endif

/// The ownership of objects, written once for both. On the target the compiler counts references (ARC).
/// GNUstep's runtime does not, so there these macros are the messages that ARC sends.
#if __has_feature(objc_arc)
#define KST_RETAIN(object) (object)
#define KST_RELEASE(object) ((void)(object))
#define KST_AUTORELEASE(object) (object)
/// Ends a dealloc method.
#define KST_SUPER_DEALLOC() ((void)0)
#else
#define KST_RETAIN(object) [(object) retain]
#define KST_RELEASE(object) [(object) release]
#define KST_AUTORELEASE(object) [(object) autorelease]
#define KST_SUPER_DEALLOC() [super dealloc]
#endif

/// A strong reference with the lifetime of a C++ object. A blocks runtime without Objective-C does not retain
/// objects that a block captures, but it copies and destroys C++ objects. So objects for a block are captured
/// in one of these.
template<typename Object>
class StrongReference {
public:
    explicit StrongReference(Object* object) : object_(KST_RETAIN(object)) {}
    StrongReference(const StrongReference& other) : object_(KST_RETAIN(other.object_)) {}
    StrongReference& operator=(const StrongReference&) = delete;
    ~StrongReference() { KST_RELEASE(object_); }

    [[nodiscard]] Object* get() const { return object_; }

private:
    Object* object_;
};

namespace platform {

#ifdef GNUSTEP_BASE_VERSION

/// The values for `stop` in a block that receives the progress of a match. GNUstep passes the value to ICU
/// unchanged, where true means to continue.
inline constexpr BOOL kGoOn = YES;
inline constexpr BOOL kGiveUp = NO;

/// Seconds by which local time is ahead of GMT, summer time included, in the current zone. The C library is
/// asked, because GNUstep's local zone ignores the environment variable TZ.
inline double localOffset(NSDate* now) {
    return localOffset(static_cast<time_t>([now timeIntervalSince1970]));
}

#else

inline constexpr BOOL kGoOn = NO;
inline constexpr BOOL kGiveUp = YES;

inline double localOffset(NSDate* now) {
    [NSTimeZone resetSystemTimeZone]; // otherwise the zone is cached, also over a journey
    return static_cast<double>([[NSTimeZone localTimeZone] secondsFromGMTForDate:now]);
}

#endif

} // namespace platform
