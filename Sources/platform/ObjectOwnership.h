#pragma once

/// Who owns an Objective-C object, in one wording for both compilers' rules.
///
/// On the target the compiler counts references itself (ARC). GNUstep's runtime has no such thing: there the
/// words below are the messages that ARC sends unseen.

#ifndef __OBJC__
#error "For Objective-C++ sources only"
#endif

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
