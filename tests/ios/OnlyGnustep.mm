// A method that GNUstep adds to Foundation's class.

#import <Foundation/Foundation.h>

extern "C" __attribute__((used)) NSString* withoutBlanks(NSString* text) {
    return [text stringByReplacingString:@" " withString:@""];
}
