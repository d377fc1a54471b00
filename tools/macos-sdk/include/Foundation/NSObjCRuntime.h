// Stub SDK: Foundation's integer types and enum macros.
#pragma once
#include <objc/objc.h>

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;
#define NS_ENUM(type, name) \
  enum name : type name;    \
  enum name : type
#define NS_OPTIONS(type, name) \
  enum name : type name;       \
  enum name : type
