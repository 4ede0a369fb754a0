#pragma once

/// All that is not the same in Objective-C++ on the target and elsewhere, where GNUstep stands in for Apple's
/// classes: who owns an object, what a block tells a regular expression, and where local time comes from.
/// Sources that need one of these take it from here, and have no conditions of their own.

#ifndef __OBJC__
#error "For Objective-C++ sources only"
#endif

#import <Foundation/Foundation.h>

#ifdef GNUSTEP_BASE_VERSION
#include "platform/LocalTime.h"
#endif

/// Who owns an object, in one wording. On the target the compiler counts references itself (ARC). GNUstep's
/// runtime has no such thing: there the words below are the messages that ARC sends unseen.
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

/// A strong reference with the life of a C++ object. Where the blocks runtime knows nothing of Objective-C,
/// it still copies and destroys the C++ objects that a block captures: what a block needs later goes into
/// one of these.
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

/// What a block that is told of a match under way answers in `stop`. GNUstep hands it to ICU as it is, and
/// ICU asks whether to go on.
inline constexpr BOOL kGoOn = YES;
inline constexpr BOOL kGiveUp = NO;

/// Seconds by which local time is ahead of GMT, summer time included, in the zone of this moment. GNUstep's
/// local zone is the machine's; it pays no heed to TZ, as everything else here does.
inline double localOffset(NSDate* now) {
    return localOffset(static_cast<time_t>([now timeIntervalSince1970]));
}

#else

inline constexpr BOOL kGoOn = NO;
inline constexpr BOOL kGiveUp = YES;

inline double localOffset(NSDate* now) {
    [NSTimeZone resetSystemTimeZone]; // it is remembered otherwise, over a journey as well
    return static_cast<double>([[NSTimeZone localTimeZone] secondsFromGMTForDate:now]);
}

#endif

} // namespace platform
