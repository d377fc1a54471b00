// Stub SDK: the 64-bit VM statistics record returned by host_statistics64(HOST_VM_INFO64).
#pragma once
#include <mach/mach_types.h>

struct __attribute__((aligned(8))) vm_statistics64 {
  natural_t free_count;
  natural_t active_count;
  natural_t inactive_count;
  natural_t wire_count;
  uint64_t zero_fill_count;
  uint64_t reactivations;
  uint64_t pageins;
  uint64_t pageouts;
  uint64_t faults;
  uint64_t cow_faults;
  uint64_t lookups;
  uint64_t hits;
  uint64_t purges;
  natural_t purgeable_count;
  natural_t speculative_count;
  uint64_t decompressions;
  uint64_t compressions;
  uint64_t swapins;
  uint64_t swapouts;
  natural_t compressor_page_count;
  natural_t throttled_count;
  natural_t external_page_count;
  natural_t internal_page_count;
  uint64_t total_uncompressed_pages_in_compressor;
};
typedef struct vm_statistics64 vm_statistics64_data_t;
#define HOST_VM_INFO64_COUNT ((mach_msg_type_number_t)(sizeof(vm_statistics64_data_t) / sizeof(integer_t)))

QM_STUB_STATIC_ASSERT(sizeof(vm_statistics64_data_t) == 152, "vm_statistics64 is 152 bytes");
QM_STUB_STATIC_ASSERT(__alignof__(vm_statistics64_data_t) == 8, "vm_statistics64 is 8-aligned");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(vm_statistics64_data_t, wire_count) == 12, "wire_count at 12");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(vm_statistics64_data_t, purgeable_count) == 88,
                      "purgeable_count at 88");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(vm_statistics64_data_t, compressor_page_count) == 128,
                      "compressor at 128");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(vm_statistics64_data_t, external_page_count) == 136,
                      "external at 136");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(vm_statistics64_data_t, internal_page_count) == 140,
                      "internal at 140");
QM_STUB_STATIC_ASSERT(__builtin_offsetof(vm_statistics64_data_t, total_uncompressed_pages_in_compressor) ==
                          144,
                      "uncompressed total at 144");
