#pragma once

#import <Foundation/Foundation.h>

/// A script that waits for the host's next idle message.
@interface FileMakerScript : NSObject {
    NSString* _script_name;
    NSString* _script_parameters;
    NSString* _file_name;
}

@property(nonatomic, strong) NSString* script_name;
/// The script parameter, as text.
@property(nonatomic, strong) NSString* script_parameters;
/// The name of the script's file, as Get ( FileName ) gives it.
@property(nonatomic, strong) NSString* file_name;

@end
