#import "platform/Kestrel.h"

#import "platform/BothRuntimes.h"
#import "platform/FileMakerScript.h"

#include "platform/Delay.h"
#include "platform/LocalTime.h"

#include <dispatch/dispatch.h>

/// Held for the life of the process.
static NSMutableArray* _scheduledScripts = nil;

namespace {

/// A hint, not a limit.
constexpr NSUInteger kExpectedScripts = 1000;

/// The end of a delay. Exceptions stop here, because the main queue belongs to the host.
void append(NSString* name, NSString* file, NSString* param) {
    @autoreleasepool {
        @try {
            if ([Kestrel getScheduledScripts] == nil)
                [Kestrel setScheduledScripts:[NSMutableArray arrayWithCapacity:kExpectedScripts]];
            NSLog(@"%@", [Kestrel getScheduledScripts]);
            FileMakerScript* const script = KST_AUTORELEASE([[FileMakerScript alloc] init]);
            script.script_name = name;
            script.file_name = file;
            script.script_parameters = param;
            [[Kestrel getScheduledScripts] addObject:script];
            NSLog(@"%@", [Kestrel getScheduledScripts]);
        } @catch (id exception) {
            NSLog(@"Script lost: %@", exception);
        }
    }
}

} // namespace

@implementation Kestrel

+ (NSMutableArray*)getScheduledScripts {
    return _scheduledScripts;
}

+ (void)setScheduledScripts:(NSMutableArray*)scripts {
    NSMutableArray* const former = _scheduledScripts;
    _scheduledScripts = KST_RETAIN(scripts);
    KST_RELEASE(former);
}

+ (double)getTimestamp {
    NSDate* const now = [NSDate date];
    return
        [now timeIntervalSince1970] + platform::localOffset(now) + platform::kSecondsFromHostEpochToUnixEpoch;
}

+ (void)scheduleScript:(NSString*)name
          withFileName:(NSString*)file
             withParam:(NSString*)param
            afterDelay:(double)seconds {
    const auto delay = platform::delayInNanoseconds(seconds);
    if (!delay) return;
    const dispatch_time_t deadline = dispatch_time(DISPATCH_TIME_NOW, *delay);
    if (deadline == DISPATCH_TIME_FOREVER) return; // the queue takes no block that never runs
    const StrongReference<NSString> keptName(name);
    const StrongReference<NSString> keptFile(file);
    const StrongReference<NSString> keptParam(param);
    dispatch_after(deadline, dispatch_get_main_queue(), ^{
      append(keptName.get(), keptFile.get(), keptParam.get());
    });
}

@end
