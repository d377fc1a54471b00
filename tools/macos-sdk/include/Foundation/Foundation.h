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
@property(readonly) NSUInteger length;
@end

typedef NSString* NSNotificationName;
typedef NSString* NSErrorDomain;

@interface NSNotification : NSObject
@property(readonly, copy) NSNotificationName name;
@property(nullable, readonly, strong) id object;
@end

@interface NSError : NSObject
@property(readonly, copy) NSErrorDomain domain;
@property(readonly) NSInteger code;
@property(readonly, copy) NSString* localizedDescription;
@end

#pragma clang assume_nonnull end
#endif
