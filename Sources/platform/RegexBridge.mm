#import "platform/RegexBridge.h"

#import "platform/BothRuntimes.h"

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

/// Where the platform reports after a fixed number of steps, ten thousand, these are reached first, and the
/// answer is the same on a slow machine. They are fewer than those after which GNUstep gives a match up
/// without a word.
constexpr unsigned kMostReports = 1'000;
constexpr std::chrono::seconds kMostTime{2};

} // namespace

@implementation RegexBridge

+ (NSString*)patternCount:(NSDictionary*)request {
    NSString* const text = [request objectForKey:@"param_0"];
    NSRegularExpression* const expression =
        [NSRegularExpression regularExpressionWithPattern:[request objectForKey:@"param_1"]
                                                  options:0
                                                    error:nullptr];
    if (expression == nil) return @"0";

    __block int count = 0;
    __block unsigned reports = 0;
    __block BOOL isGivenUp = NO;
    const Clock::time_point end = Clock::now() + kMostTime;
    // Finding all matches in one call would be simpler, but nothing ends it.
    [expression enumerateMatchesInString:text
                                 options:NSMatchingReportProgress
                                   range:NSMakeRange(0, [text length])
                              usingBlock:^(NSTextCheckingResult* match, NSMatchingFlags flags, BOOL* stop) {
                                if (match != nil) {
                                    ++count;
                                } else if ((flags & NSMatchingProgress) != 0) {
                                    isGivenUp = isGivenUp || ++reports > kMostReports || Clock::now() > end;
                                    *stop = isGivenUp ? platform::kGiveUp : platform::kGoOn;
                                }
                              }];
    return isGivenUp ? nil : [NSString stringWithFormat:@"%i", count];
}

@end
