// Stub SDK: file-system statistics (the 64-bit-inode layout, the only one on arm64).
#pragma once
#include <stdint.h>

#include "_qm_stub_sdk.h"

#define MFSTYPENAMELEN 16

struct statfs {
  uint32_t f_bsize;  // fundamental block size
  int32_t f_iosize;
  uint64_t f_blocks;  // blocks in the file system
  uint64_t f_bfree;   // free blocks
  uint64_t f_bavail;  // free blocks available to an unprivileged user
  uint64_t f_files;
  uint64_t f_ffree;
  struct {
    int32_t val[2];
  } f_fsid;
  unsigned int f_owner;
  uint32_t f_type;
  uint32_t f_flags;
  uint32_t f_fssubtype;
  char f_fstypename[MFSTYPENAMELEN];
  char f_mntonname[1024];
  char f_mntfromname[1024];
  uint32_t f_flags_ext;
  uint32_t f_reserved[7];
};
QM_STUB_STATIC_ASSERT(sizeof(struct statfs) == 2168, "statfs is 2168 bytes");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct statfs, f_blocks) == 8, "f_blocks at 8");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct statfs, f_bavail) == 24, "f_bavail at 24");

QM_STUB_EXTERN_C_BEGIN
int statfs(const char* path, struct statfs* buf);
QM_STUB_EXTERN_C_END
