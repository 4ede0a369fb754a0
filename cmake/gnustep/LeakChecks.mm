/// Part of every executable of the sanitizers' build: what Foundation and its runtime keep for the life of
/// the process is no leak of ours. Our own objects still count.

#import <Foundation/Foundation.h>

#include <sanitizer/lsan_interface.h>

/// The runtime's tables of classes and methods: allocated by the runtime itself, as objects never are.
extern "C" const char* __lsan_default_suppressions() { return "leak:libobjc.so\n"; }
extern "C" const char* __lsan_default_options() { return "print_suppressions=0"; }

/// Foundation makes some objects when a class is first used, and keeps them where the leak checker cannot
/// see them: the classes that the plug-in leads to are used here first, unseen.
void useFoundationFirst() {
    __lsan_disable();
    @autoreleasepool {
        [[NSTimeZone localTimeZone] secondsFromGMT];
        [[NSMutableArray arrayWithCapacity:1] description];
        [[NSDate date] description];
        [NSString stringWithFormat:@"%@ %f %i", @"text", 1.0, 1];
    }
    __lsan_enable();
}
