#pragma once

#import <Foundation/Foundation.h>

/// The platform's regular expressions, in ICU's grammar, without options. Main thread.
@interface RegexBridge : NSObject

/// The number of matches of the pattern, at key "param_1", in the text, at key "param_0", in decimal. "0"
/// also when the pattern is malformed. nil when the search takes too long and was ended: after ten million
/// steps, or after two seconds on a platform that reports its steps too rarely.
+ (NSString*)patternCount:(NSDictionary*)request;

@end
