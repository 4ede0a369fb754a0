/// Part of every executable of the sanitizers' build. Objects that Foundation and its runtime keep for the
/// life of the process are not reported as leaks. The project's own objects are.

#import <Foundation/Foundation.h>

#include <csignal>
#include <sanitizer/lsan_interface.h>

/// The runtime allocates its tables of classes and methods itself; it allocates no objects.
extern "C" const char* __lsan_default_suppressions() { return "leak:libobjc.so\n"; }
extern "C" const char* __lsan_default_options() { return "print_suppressions=0"; }

/// Foundation creates some objects at the first use of a class and keeps them where the leak checker does not
/// find them. The classes that the plug-in uses are therefore used here first, with the checker disabled. The
/// signal of a closed pipe, which Foundation then ignores, stays as it is.
void useFoundationFirst() {
    struct sigaction atPipe{};
    ::sigaction(SIGPIPE, nullptr, &atPipe);
    __lsan_disable();
    @autoreleasepool {
        [[NSTimeZone localTimeZone] secondsFromGMT];
        [[NSMutableArray arrayWithCapacity:1] description];
        [[NSDate date] description];
        [NSString stringWithFormat:@"%@ %f %i", @"text", 1.0, 1];
    }
    __lsan_enable();
    ::sigaction(SIGPIPE, &atPipe, nullptr);
}
