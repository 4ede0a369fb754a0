// A manual reference count, which only the sources for the other runtime may have.

#import <Foundation/Foundation.h>

extern "C" __attribute__((used)) void keep(NSString* text) { [text retain]; }
