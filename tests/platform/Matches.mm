#include "platform/Matches.h"

#import <Foundation/Foundation.h>

namespace {

NSString* stringFrom(const platform::Units& units) {
    const unichar nothing = 0;
    return [NSString stringWithCharacters:units.empty() ? &nothing : units.data() length:units.size()];
}

} // namespace

unsigned long matchesFoundAtOnce(const platform::Units& text, const platform::Units& pattern) {
    @autoreleasepool {
        NSString* const string = stringFrom(text);
        NSRegularExpression* const expression =
            [NSRegularExpression regularExpressionWithPattern:stringFrom(pattern) options:0 error:nullptr];
        return [[expression matchesInString:string options:0 range:NSMakeRange(0, [string length])] count];
    }
}
