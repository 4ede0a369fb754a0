// Reference counts by hand, which only the other runtime's sources may have.

#import <Foundation/Foundation.h>

extern "C" __attribute__((used)) void keep(NSString* text) { [text retain]; }
