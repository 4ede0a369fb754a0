#import "platform/RegexBridge.h"

#import "platform/BothRuntimes.h"

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

/// The limit of reports, one per ten thousand steps where the platform counts steps. It is reached before the
/// limit of time, so a slow machine gives the same result. It is also below GNUstep's own limit, which ends a
/// match without an error.
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
    // A call for all matches at once would be simpler, but it cannot be ended early.
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
