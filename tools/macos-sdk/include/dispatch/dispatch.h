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
QM_DISPATCH_DECL(dispatch_source, dispatch_object);
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
// Blocks, and the signal and timer sources (the fan helper daemon's event loop; the sources
// themselves are declared below). Only where the compiler has blocks: the fake-kernel tests
// build darwin readers with g++, which has none.
#if defined(__BLOCKS__)
typedef void (^dispatch_block_t)(void);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
void dispatch_sync(dispatch_queue_t queue, dispatch_block_t block);
__attribute__((noreturn)) void dispatch_main(void);
extern const struct dispatch_source_type_s _dispatch_source_type_signal;
extern const struct dispatch_source_type_s _dispatch_source_type_timer;
#define DISPATCH_SOURCE_TYPE_SIGNAL (&_dispatch_source_type_signal)
#define DISPATCH_SOURCE_TYPE_TIMER (&_dispatch_source_type_timer)
void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t _Nullable handler);
void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, uint64_t interval, uint64_t leeway);
#endif
#if !defined(__OBJC__)
// Under ARC the compiler manages dispatch objects; this exists only for C and C++.
void dispatch_release(dispatch_object_t object);
#endif
QM_STUB_EXTERN_C_END

// Dispatch sources, as far as the memory-pressure source uses them.
typedef const struct dispatch_source_type_s* dispatch_source_type_t;
typedef unsigned long dispatch_source_memorypressure_flags_t;
#define DISPATCH_MEMORYPRESSURE_NORMAL 0x01
#define DISPATCH_MEMORYPRESSURE_WARN 0x02
#define DISPATCH_MEMORYPRESSURE_CRITICAL 0x04
QM_STUB_EXTERN_C_BEGIN
extern const struct dispatch_source_type_s _dispatch_source_type_memorypressure;
#define DISPATCH_SOURCE_TYPE_MEMORYPRESSURE (&_dispatch_source_type_memorypressure)
dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle, uintptr_t mask,
                                         dispatch_queue_t queue);
void dispatch_set_context(dispatch_object_t object, void* context);
void dispatch_source_set_event_handler_f(dispatch_source_t source, dispatch_function_t handler);
uintptr_t dispatch_source_get_data(dispatch_source_t source);
void dispatch_source_cancel(dispatch_source_t source);
void dispatch_resume(dispatch_object_t object);
QM_STUB_EXTERN_C_END
