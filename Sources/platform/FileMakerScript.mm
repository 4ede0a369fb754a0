#import "platform/FileMakerScript.h"

#import "platform/BothRuntimes.h"

@implementation FileMakerScript

@synthesize script_name = _script_name;
@synthesize script_parameters = _script_parameters;
@synthesize file_name = _file_name;

- (void)dealloc {
    KST_RELEASE(_script_name);
    KST_RELEASE(_script_parameters);
    KST_RELEASE(_file_name);
    KST_SUPER_DEALLOC();
}

@end
