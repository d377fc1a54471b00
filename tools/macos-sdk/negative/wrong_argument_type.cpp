// A count passed as size_t where Mach expects a 32-bit mach_msg_type_number_t: the kernel would
// read and write only half of it. The check must refuse it.
// expect: no matching function for call to 'host_statistics64'|cannot initialize a parameter of type
// 'mach_msg_type_number_t \*'
#include <mach/mach.h>

#include <cstddef>

bool readMemory(vm_statistics64_data_t& stats) {
#ifdef QM_NEGATIVE_FAULT
  std::size_t count = sizeof(stats) / sizeof(integer_t);
#else
  mach_msg_type_number_t count = HOST_VM_INFO64_COUNT;
#endif
  return host_statistics64(mach_host_self(), HOST_VM_INFO64, reinterpret_cast<host_info64_t>(&stats),
                           &count) == KERN_SUCCESS;
}
