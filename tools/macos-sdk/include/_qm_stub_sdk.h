// Common definitions of Quillmark's stub macOS SDK (not an Apple header; the name says so).
//
// The stub declares only what our darwin sources call. It serves two builds on Linux:
//  - the syntax check, which compiles every darwin file as the Mac build would see it;
//  - the fake-kernel tests, which compile the C-interface readers for Linux and link them with a
//    scripted kernel (QM_STUB_SDK_FAKE_KERNEL defined).
// In the second build a few functions share their name with a glibc function of a different
// shape (getifaddrs, freeifaddrs, statfs) or one the runtime itself leans on (dlsym); those are
// renamed here so that the fake never interposes the C library.
#pragma once

#ifdef __cplusplus
#define QM_STUB_EXTERN_C_BEGIN extern "C" {
#define QM_STUB_EXTERN_C_END }
#else
#define QM_STUB_EXTERN_C_BEGIN
#define QM_STUB_EXTERN_C_END
#endif

#if defined(__cplusplus)
#define QM_STUB_STATIC_ASSERT(cond, msg) static_assert(cond, msg)
#else
#define QM_STUB_STATIC_ASSERT(cond, msg) _Static_assert(cond, msg)
#endif

#ifdef QM_STUB_SDK_FAKE_KERNEL
#define getifaddrs qm_fake_getifaddrs
#define freeifaddrs qm_fake_freeifaddrs
#define statfs qm_fake_statfs
#define dlsym qm_fake_dlsym
#endif
