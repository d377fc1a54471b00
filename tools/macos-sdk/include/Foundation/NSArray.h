// Stub SDK: immutable arrays (and what the @[...] literal needs).
#pragma once
#include <Foundation/NSObjCRuntime.h>
#include <objc/NSObject.h>

#ifdef __OBJC__
#pragma clang assume_nonnull begin
@interface NSArray<__covariant ObjectType> : NSObject
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nonnull])objects count:(NSUInteger)count;
@property(readonly) NSUInteger count;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)index;
@end
#pragma clang assume_nonnull end
#endif
