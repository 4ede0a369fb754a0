#pragma once

#import <Foundation/Foundation.h>

/// The clock, and the queue of scripts that start on their own. Everything here happens on the main thread,
/// where the main dispatch queue runs and the host sends its idle messages; the queue has no lock.
///
/// Scripts stay queued until an idle message takes them out, over a shutdown and a new start as well. There
/// is no cancelling. When the process ends they are simply gone: the queue is given up with the process, no
/// code of ours runs then.
@interface Kestrel : NSObject

/// FileMakerScript objects in the order in which they were queued; nil before the first one.
+ (NSMutableArray*)getScheduledScripts;
+ (void)setScheduledScripts:(NSMutableArray*)scripts;

/// Local date and time in seconds since 0001-01-01 00:00:00, the host's epoch, with fractions.
+ (double)getTimestamp;

/// Queues a script once the delay is over, and returns at once. Nothing is started here: the host's next
/// idle message does that. What delays mean that are no usual number is said at delayInNanoseconds.
+ (void)scheduleScript:(NSString*)name
          withFileName:(NSString*)file
             withParam:(NSString*)param
            afterDelay:(double)seconds;

@end
