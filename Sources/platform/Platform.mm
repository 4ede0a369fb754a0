#include "platform/Platform.h"

#import "platform/BothRuntimes.h"
#import "platform/FileMakerScript.h"
#import "platform/Kestrel.h"
#import "platform/RegexBridge.h"

#include <cstddef>
#include <exception>

namespace platform {
namespace {

/// An autoreleased string. On some platforms nil when the text is not well-formed.
NSString* stringFrom(const Units& units) {
    static const unichar nothing = 0;
    const unichar* const first = units.empty() ? &nothing : units.data();
    return KST_AUTORELEASE([[NSString alloc] initWithCharacters:first length:units.size()]);
}

bool resize(Units& units, std::size_t size) noexcept {
    try {
        units.resize(size);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

bool read(NSString* string, Units& units) {
    const NSUInteger length = [string length];
    if (!resize(units, length)) return false;
    if (length > 0) [string getCharacters:units.data() range:NSMakeRange(0, length)];
    return true;
}

bool assign(std::string& string, const char* value) noexcept {
    try {
        string = value;
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

bool scheduleScript(const Script& script, double seconds) noexcept {
    @autoreleasepool {
        @try {
            NSString* const name = stringFrom(script.name);
            NSString* const file = stringFrom(script.file);
            NSString* const parameter = stringFrom(script.parameter);
            if (name == nil || file == nil || parameter == nil) return false;
            [Kestrel scheduleScript:name withFileName:file withParam:parameter afterDelay:seconds];
            return true;
        } @catch (id) {
            return false;
        }
    }
}

Taken takeScript(Script& script) noexcept {
    @autoreleasepool {
        @try {
            NSMutableArray* const waiting = [Kestrel getScheduledScripts];
            if ([waiting count] == 0) return Taken::nothing;
            FileMakerScript* const last = KST_AUTORELEASE(KST_RETAIN([waiting lastObject]));
            [waiting removeLastObject];
            [Kestrel setScheduledScripts:waiting];
            const bool isRead = read(last.script_name, script.name) && read(last.file_name, script.file) &&
                                read(last.script_parameters, script.parameter);
            return isRead ? Taken::script : Taken::failed;
        } @catch (id) {
            return Taken::failed;
        }
    }
}

bool readClock(double& seconds) noexcept {
    @autoreleasepool {
        @try {
            seconds = [Kestrel getTimestamp];
            return true;
        } @catch (id) {
            return false;
        }
    }
}

Counted countMatches(const Units& text, const Units& pattern, std::string& count) noexcept {
    @autoreleasepool {
        @try {
            NSString* const textString = stringFrom(text);
            NSString* const patternString = stringFrom(pattern);
            if (textString == nil || patternString == nil) return Counted::failed;
            NSMutableDictionary* const request = [NSMutableDictionary dictionaryWithCapacity:2];
            [request setObject:textString forKey:@"param_0"];
            [request setObject:patternString forKey:@"param_1"];
            NSString* const answer = [RegexBridge patternCount:request];
            if (answer == nil) return Counted::tooLong;
            return assign(count, [answer UTF8String]) ? Counted::all : Counted::failed;
        } @catch (id) {
            return Counted::failed;
        }
    }
}

void logDelay(double seconds) noexcept {
    @autoreleasepool {
        @try {
            NSLog(@"Delay: %f", seconds);
        } @catch (id) {
            return; // a failure to log cannot be logged
        }
    }
}

void logScriptError(int error) noexcept {
    @autoreleasepool {
        @try {
            NSLog(@"Script call ended with error: %i", error);
        } @catch (id) {
            return;
        }
    }
}

} // namespace platform
