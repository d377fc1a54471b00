// Stub SDK: boxed numbers (the represented objects of menu items).
#pragma once
#include <objc/NSObject.h>

#ifdef __OBJC__
#pragma clang assume_nonnull begin
@interface NSNumber : NSObject
+ (NSNumber*)numberWithDouble:(double)value;
@property(readonly) double doubleValue;
@end
#pragma clang assume_nonnull end
#endif
