// Stub SDK: run loops and their timers.
#pragma once
#include <CoreFoundation/CFDate.h>

typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopTimer* CFRunLoopTimerRef;
typedef CFStringRef CFRunLoopMode;

typedef void (*CFRunLoopTimerCallBack)(CFRunLoopTimerRef timer, void* info);
typedef struct {
  CFIndex version;
  void* info;
  const void* (*retain)(const void* info);
  void (*release)(const void* info);
  CFStringRef (*copyDescription)(const void* info);
} CFRunLoopTimerContext;

QM_STUB_EXTERN_C_BEGIN
extern const CFRunLoopMode kCFRunLoopCommonModes;
CFRunLoopRef CFRunLoopGetMain(void);
// +1. The context is copied; release(info) runs when the timer is freed.
CFRunLoopTimerRef CFRunLoopTimerCreate(CFAllocatorRef allocator, CFAbsoluteTime fireDate,
                                       CFTimeInterval interval, CFOptionFlags flags, CFIndex order,
                                       CFRunLoopTimerCallBack callout, CFRunLoopTimerContext* context);
void CFRunLoopAddTimer(CFRunLoopRef rl, CFRunLoopTimerRef timer, CFRunLoopMode mode);
void CFRunLoopTimerInvalidate(CFRunLoopTimerRef timer);
QM_STUB_EXTERN_C_END
