#pragma once

/// The project's own declarations of the part of Foundation that the plug-in calls, for the check without a Mac.
/// A build with the real SDK does not use this folder.
///
/// A missing declaration is a compile error of the check, which so finds methods that only GNUstep has. Before
/// you add a line, look the method up in Apple's documentation. It must be in iOS 16.0 or earlier.

#include <objc/NSObjCRuntime.h>
#include <objc/NSObject.h>
#include <objc/objc.h>

#include <limits.h>
#include <stddef.h>
#include <stdint.h>

#define KST_NULLABLE _Nullable
#pragma clang assume_nonnull begin

typedef unsigned short unichar;
typedef double NSTimeInterval;

typedef struct _NSRange {
    NSUInteger location;
    NSUInteger length;
} NSRange;

static inline NSRange NSMakeRange(NSUInteger location, NSUInteger length) {
    NSRange range = {location, length};
    return range;
}

static const NSInteger NSNotFound = NSIntegerMax;

@class NSArray, NSDate, NSDictionary, NSError, NSMutableArray, NSString;

extern "C" void NSLog(NSString* format, ...) __attribute__((format(__NSString__, 1, 2)));

@protocol NSCopying
@end

typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding { NSASCIIStringEncoding = 1, NSUTF8StringEncoding = 4 };

@interface NSString : NSObject <NSCopying>
+ (instancetype)string;
+ (instancetype)stringWithFormat:(NSString*)format, ... __attribute__((format(__NSString__, 1, 2)));
+ (KST_NULLABLE instancetype)stringWithUTF8String:(const char*)bytes;
+ (instancetype)stringWithCharacters:(const unichar*)characters length:(NSUInteger)length;
- (instancetype)initWithCharacters:(const unichar*)characters length:(NSUInteger)length;
- (KST_NULLABLE instancetype)initWithUTF8String:(const char*)bytes;
- (KST_NULLABLE instancetype)initWithBytes:(const void*)bytes
                                    length:(NSUInteger)length
                                  encoding:(NSStringEncoding)encoding;
- (instancetype)initWithFormat:(NSString*)format, ... __attribute__((format(__NSString__, 1, 2)));
- (NSUInteger)length;
- (unichar)characterAtIndex:(NSUInteger)index;
- (void)getCharacters:(unichar*)buffer range:(NSRange)range;
- (BOOL)isEqualToString:(NSString*)string;
- (KST_NULLABLE const char*)UTF8String __attribute__((objc_returns_inner_pointer));
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)encoding;
@end

/// The class of a literal @"…"; the compiler defines its layout.
@interface NSConstantString : NSString
@end

@interface NSNumber : NSObject <NSCopying>
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithUnsignedInteger:(NSUInteger)value;
- (NSUInteger)unsignedIntegerValue;
- (int)intValue;
@end

@interface NSArray<Element> : NSObject <NSCopying>
+ (instancetype)array;
- (NSUInteger)count;
- (Element)objectAtIndex:(NSUInteger)index;
- (KST_NULLABLE Element)firstObject;
- (KST_NULLABLE Element)lastObject;
@end

@interface NSMutableArray<Element> : NSArray <Element>
+ (instancetype)arrayWithCapacity:(NSUInteger)count;
- (void)addObject:(Element)object;
- (void)removeLastObject;
- (void)removeObjectAtIndex:(NSUInteger)index;
- (void)removeAllObjects;
@end

@interface NSDictionary<Key, Value> : NSObject <NSCopying>
- (NSUInteger)count;
- (KST_NULLABLE Value)objectForKey:(Key)key;
@end

@interface NSMutableDictionary<Key, Value> : NSDictionary <Key, Value>
+ (instancetype)dictionaryWithCapacity:(NSUInteger)count;
- (void)setObject:(Value)object forKey:(id<NSCopying>)key;
- (void)removeObjectForKey:(Key)key;
@end

@interface NSDate : NSObject <NSCopying>
+ (instancetype)date;
- (NSTimeInterval)timeIntervalSince1970;
@end

@interface NSTimeZone : NSObject <NSCopying>
+ (NSTimeZone*)localTimeZone;
+ (NSTimeZone*)systemTimeZone;
+ (void)resetSystemTimeZone;
- (NSInteger)secondsFromGMTForDate:(NSDate*)date;
@end

@interface NSError : NSObject <NSCopying>
- (NSString*)localizedDescription;
- (NSInteger)code;
@end

@interface NSException : NSObject <NSCopying>
- (NSString*)name;
- (KST_NULLABLE NSString*)reason;
@end

typedef NSUInteger NSRegularExpressionOptions;
typedef NSUInteger NSMatchingOptions;
typedef NSUInteger NSMatchingFlags;
enum : NSRegularExpressionOptions {
    NSRegularExpressionCaseInsensitive = 1 << 0,
    NSRegularExpressionDotMatchesLineSeparators = 1 << 3,
};
enum : NSMatchingOptions { NSMatchingReportProgress = 1 << 0, NSMatchingReportCompletion = 1 << 1 };
enum : NSMatchingFlags {
    NSMatchingProgress = 1 << 0,
    NSMatchingCompleted = 1 << 1,
    NSMatchingHitEnd = 1 << 2,
    NSMatchingRequiredEnd = 1 << 3,
    NSMatchingInternalError = 1 << 4,
};

@interface NSTextCheckingResult : NSObject <NSCopying>
- (NSRange)range;
- (NSUInteger)numberOfRanges;
- (NSRange)rangeAtIndex:(NSUInteger)index;
@end

@interface NSRegularExpression : NSObject <NSCopying>
+ (KST_NULLABLE NSRegularExpression*)regularExpressionWithPattern:(NSString*)pattern
                                                          options:(NSRegularExpressionOptions)options
                                                            error:(NSError* KST_NULLABLE* KST_NULLABLE)error;
- (KST_NULLABLE instancetype)initWithPattern:(NSString*)pattern
                                     options:(NSRegularExpressionOptions)options
                                       error:(NSError* KST_NULLABLE* KST_NULLABLE)error;
- (void)enumerateMatchesInString:(NSString*)string
                         options:(NSMatchingOptions)options
                           range:(NSRange)range
                      usingBlock:(void (^)(NSTextCheckingResult* KST_NULLABLE result,
                                           NSMatchingFlags flags,
                                           BOOL* stop))block;
- (NSArray<NSTextCheckingResult*>*)matchesInString:(NSString*)string
                                           options:(NSMatchingOptions)options
                                             range:(NSRange)range;
- (NSUInteger)numberOfMatchesInString:(NSString*)string
                              options:(NSMatchingOptions)options
                                range:(NSRange)range;
@end

#pragma clang assume_nonnull end
#undef KST_NULLABLE
