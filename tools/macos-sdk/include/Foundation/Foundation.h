// Stub SDK: the Foundation classes our Objective-C++ code sends messages to.
#pragma once
#include <CoreFoundation/CoreFoundation.h>
#include <Foundation/NSObjCRuntime.h>
#include <objc/NSObject.h>

#ifdef __OBJC__
#pragma clang assume_nonnull begin

@interface NSString : NSObject
+ (nullable instancetype)stringWithUTF8String:(const char*)nullTerminatedCString;
@property(nullable, readonly) const char* UTF8String __attribute__((objc_returns_inner_pointer));
@end

@interface NSNotification : NSObject
@end

@interface NSError : NSObject
@property(readonly, copy) NSString* localizedDescription;
@end

#pragma clang assume_nonnull end
#endif
