// Stub SDK: process information records and flavours of proc_pidinfo.
#pragma once
#include <stdint.h>

#include "_qm_stub_sdk.h"

#define PROC_ALL_PIDS 1
#define PROC_PIDTASKINFO 4
#define PROC_PIDPATHINFO_MAXSIZE 4096
#define PROC_PIDTASKALLINFO 2
#define PROC_PIDTBSDINFO 3
#define PROC_PIDPATHINFO_SIZE 1024
#define SSTOP 4  // pbi_status of a process stopped by a signal

#define MAXCOMLEN 16

struct proc_bsdinfo {
  uint32_t pbi_flags;
  uint32_t pbi_status;
  uint32_t pbi_xstatus;
  uint32_t pbi_pid;
  uint32_t pbi_ppid;
  uint32_t pbi_uid;
  uint32_t pbi_gid;
  uint32_t pbi_ruid;
  uint32_t pbi_rgid;
  uint32_t pbi_svuid;
  uint32_t pbi_svgid;
  uint32_t rfu_1;
  char pbi_comm[MAXCOMLEN];
  char pbi_name[2 * MAXCOMLEN];
  uint32_t pbi_nfiles;
  uint32_t pbi_pgid;
  uint32_t pbi_pjobc;
  uint32_t e_tdev;
  uint32_t e_tpgid;
  int32_t pbi_nice;
  uint64_t pbi_start_tvsec;
  uint64_t pbi_start_tvusec;
};

// Times are in Mach absolute time units, sizes in bytes.
struct proc_taskinfo {
  uint64_t pti_virtual_size;
  uint64_t pti_resident_size;
  uint64_t pti_total_user;
  uint64_t pti_total_system;
  uint64_t pti_threads_user;
  uint64_t pti_threads_system;
  int32_t pti_policy;
  int32_t pti_faults;
  int32_t pti_pageins;
  int32_t pti_cow_faults;
  int32_t pti_messages_sent;
  int32_t pti_messages_received;
  int32_t pti_syscalls_mach;
  int32_t pti_syscalls_unix;
  int32_t pti_csw;
  int32_t pti_threadnum;
  int32_t pti_numrunning;
  int32_t pti_priority;
};

struct proc_taskallinfo {
  struct proc_bsdinfo pbsd;
  struct proc_taskinfo ptinfo;
};

QM_STUB_STATIC_ASSERT(sizeof(struct proc_bsdinfo) == 136, "proc_bsdinfo is 136 bytes");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_bsdinfo, pbi_comm) == 48, "pbi_comm at 48");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_bsdinfo, pbi_name) == 64, "pbi_name at 64");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_bsdinfo, pbi_pgid) == 100, "pbi_pgid at 100");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_bsdinfo, pbi_start_tvsec) == 120, "start time at 120");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_bsdinfo, pbi_status) == 4, "status at 4");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_bsdinfo, pbi_ppid) == 16, "parent at 16");
QM_STUB_STATIC_ASSERT(sizeof(struct proc_taskinfo) == 96, "proc_taskinfo is 96 bytes");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_taskinfo, pti_resident_size) == 8, "resident at 8");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_taskinfo, pti_total_user) == 16, "user time at 16");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_taskinfo, pti_total_system) == 24, "system time at 24");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_taskinfo, pti_threadnum) == 84, "thread count at 84");
QM_STUB_STATIC_ASSERT(sizeof(struct proc_taskallinfo) == 232, "proc_taskallinfo is 232 bytes");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(struct proc_taskallinfo, ptinfo) == 136, "ptinfo at 136");

// The coalitions a process belongs to: [0] is its resource coalition, [1] its jetsam coalition.
#define PROC_PIDCOALITIONINFO 20
struct proc_pidcoalitioninfo {
  uint64_t coalition_id[2];
  uint64_t reserved1;
  uint64_t reserved2;
  uint64_t reserved3;
};
QM_STUB_STATIC_ASSERT(sizeof(struct proc_pidcoalitioninfo) == 40, "proc_pidcoalitioninfo is 40 bytes");
