// Stub SDK: attributed strings, as far as text input hands them over.
#pragma once
#include <objc/NSObject.h>

#ifdef __OBJC__
#pragma clang assume_nonnull begin
@class NSString;
typedef NSString* NSAttributedStringKey;

@interface NSAttributedString : NSObject
@property(readonly, copy) NSString* string;
@end
#pragma clang assume_nonnull end
#endif
