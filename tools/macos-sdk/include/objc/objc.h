// Stub SDK: the Objective-C basic types (arm64: BOOL is bool).
#pragma once

typedef struct objc_class* Class;
typedef struct objc_object* id;
typedef struct objc_selector* SEL;
typedef bool BOOL;
#define YES __objc_yes
#define NO __objc_no
#ifndef nil
#ifdef __cplusplus
#define nil nullptr
#else
#define nil ((void*)0)
#endif
#endif
