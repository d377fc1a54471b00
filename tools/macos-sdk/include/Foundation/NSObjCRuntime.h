// Stub SDK: Foundation's integer types and enum macros.
#pragma once
#include <objc/objc.h>

typedef long NSInteger;
#define NS_ENUM(type, name) \
  enum name : type name;    \
  enum name : type

typedef unsigned long NSUInteger;
// Option sets are the plain integer type in C++, so that members can be or-ed together.
#define NS_OPTIONS(type, name) \
  type name;                   \
  enum : type
static const NSInteger NSNotFound = 0x7fffffffffffffffL;
