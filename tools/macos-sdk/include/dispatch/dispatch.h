// Stub SDK: libdispatch as far as our code uses it. In Objective-C translation units dispatch
// objects are Objective-C objects managed by ARC; in C++ they are pointers into a class hierarchy
// released with dispatch_release.
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <sys/qos.h>

#include "_qm_stub_sdk.h"

#if defined(__OBJC__)
#include <objc/NSObject.h>
#define QM_DISPATCH_DECL(name, base) \
  @protocol OS_                      \
  ##name<OS_##base> @end             \
  typedef NSObject<OS_##name>* name##_t
@protocol OS_dispatch_object <NSObject>
@end
typedef NSObject<OS_dispatch_object>* dispatch_object_t;
#else
struct dispatch_object_s {
 private:
  dispatch_object_s();
  ~dispatch_object_s();
  dispatch_object_s(const dispatch_object_s&);
  void operator=(const dispatch_object_s&);
};
#define QM_DISPATCH_DECL(name, base)    \
  struct name##_s : public base##_s {}; \
  typedef struct name##_s* name##_t
typedef struct dispatch_object_s* dispatch_object_t;
#endif

QM_DISPATCH_DECL(dispatch_queue, dispatch_object);
QM_DISPATCH_DECL(dispatch_queue_serial, dispatch_queue);
QM_DISPATCH_DECL(dispatch_queue_main, dispatch_queue_serial);
QM_DISPATCH_DECL(dispatch_queue_attr, dispatch_object);
#undef QM_DISPATCH_DECL

typedef uint64_t dispatch_time_t;
typedef qos_class_t dispatch_qos_class_t;
typedef void (*dispatch_function_t)(void* context);

#define DISPATCH_TIME_NOW (0ull)
#define NSEC_PER_SEC 1000000000ull
#define DISPATCH_QUEUE_SERIAL NULL

QM_STUB_EXTERN_C_BEGIN
dispatch_queue_main_t dispatch_get_main_queue(void);
dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attr);
dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t attr,
                                                              dispatch_qos_class_t qos_class,
                                                              int relative_priority);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);
void dispatch_sync_f(dispatch_queue_t queue, void* context, dispatch_function_t work);
void dispatch_after_f(dispatch_time_t when, dispatch_queue_t queue, void* context, dispatch_function_t work);
#if !defined(__OBJC__)
// Under ARC the compiler manages dispatch objects; this exists only for C and C++.
void dispatch_release(dispatch_object_t object);
#endif
QM_STUB_EXTERN_C_END
