#pragma once

#import <Foundation/Foundation.h>

/// The clock, and the queue of delayed scripts. Everything here runs on the main thread, with the main
/// dispatch queue and the host's idle messages. So the queue has no lock.
///
/// Scripts stay queued until an idle message takes them out, also over a shutdown and a new start. A queued
/// script cannot be cancelled. At the end of the process the queue is lost; no code runs for it.
@interface Kestrel : NSObject

/// FileMakerScript objects in the order in which they were queued; nil before the first one.
+ (NSMutableArray*)getScheduledScripts;
+ (void)setScheduledScripts:(NSMutableArray*)scripts;

/// Local date and time in seconds since 0001-01-01 00:00:00, the host's epoch, with fractions.
+ (double)getTimestamp;

/// Queues a script when the delay is over, and returns at once. The host's next idle message starts the
/// script. See delayInNanoseconds for delays that are negative, huge or no number.
+ (void)scheduleScript:(NSString*)name
          withFileName:(NSString*)file
             withParam:(NSString*)param
            afterDelay:(double)seconds;

@end
