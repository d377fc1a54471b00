// Stub SDK: Foundation's integer types and enum macros.
#pragma once
#include <objc/objc.h>

typedef long NSInteger;
#define NS_ENUM(type, name) \
  enum name : type name;    \
  enum name : type
