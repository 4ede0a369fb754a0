#pragma once

#import <Foundation/Foundation.h>

/// The platform's regular expressions, in ICU's grammar, without options. Main thread.
@interface RegexBridge : NSObject

/// How often the pattern, under "param_1", is found in the text, under "param_0", in decimal: "0" also when
/// the pattern is malformed. nil when looking takes too long and was given up: after ten million steps,
/// or two seconds where the platform does not tell of its steps often enough.
+ (NSString*)patternCount:(NSDictionary*)request;

@end
