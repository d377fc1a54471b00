#pragma once

// A scripted stand-in for the macOS kernel interfaces the darwin readers call (Mach host
// statistics, sysctl, getifaddrs, statfs, libproc), so those readers can be compiled for Linux
// against the stub SDK and run here. Tests fill FakeDarwinKernel, call a reader, then look at what
// the reader passed in and what it released. Single-threaded: one test at a time.

#include <ifaddrs.h>
#include <mach/mach.h>
#include <mach/mach_time.h>
#include <net/if.h>
#include <sys/mount.h>
#include <sys/proc_info.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quillmark::fake_darwin {

struct Interface {
  std::string name;
  unsigned int flags = IFF_UP;
  std::uint8_t family = AF_LINK;
  bool hasData = true;  // false: ifa_data is NULL
  std::uint32_t receivedBytes = 0;
  std::uint32_t sentBytes = 0;
};

struct Process {
  int pid = 0;
  proc_taskinfo task{};
  // What proc_pidinfo answers; by default the whole record. Below sizeof(proc_taskinfo) it is
  // the answer to the BSD and all-in-one flavours too.
  int infoResult = static_cast<int>(sizeof(proc_taskinfo));
  // The bytes proc_name copies (a NUL is added); absent makes proc_name fail with 0.
  std::optional<std::string> name;
  // What proc_pidinfo(PROC_PIDCOALITIONINFO) answers: the resource coalition's id, or absent
  // for a process whose coalition cannot be read (the call then fails).
  std::optional<std::uint64_t> coalition;
  // PROC_PIDTBSDINFO (and the first half of PROC_PIDTASKALLINFO); absent fails both with ESRCH.
  std::optional<proc_bsdinfo> bsd;
  // What proc_pidpath copies; absent makes it fail with 0.
  std::optional<std::string> path;
};

struct Kernel {
  // Mach ports.
  int hostPortsTaken = 0;
  int hostPortsReturned = 0;

  // host_statistics(HOST_CPU_LOAD_INFO).
  kern_return_t cpuLoadResult = KERN_SUCCESS;
  std::array<natural_t, CPU_STATE_MAX> cpuLoad{};
  std::optional<mach_msg_type_number_t> cpuLoadCountAnswered;  // default: what was asked
  std::vector<mach_msg_type_number_t> cpuLoadCountsAsked;

  // host_processor_info(PROCESSOR_CPU_LOAD_INFO): one array per processor; the kernel hands out
  // an allocation the caller must vm_deallocate with its exact size.
  kern_return_t processorResult = KERN_SUCCESS;
  std::vector<std::array<natural_t, CPU_STATE_MAX>> processors;
  std::optional<mach_msg_type_number_t> processorInfoCountAnswered;  // default: processors * 4
  std::map<vm_address_t, vm_size_t> liveAllocations;                 // address -> size in bytes
  std::vector<std::string> deallocationErrors;
  int deallocations = 0;

  // host_statistics64(HOST_VM_INFO64) and host_page_size.
  kern_return_t vmResult = KERN_SUCCESS;
  vm_statistics64_data_t vm{};
  std::vector<mach_msg_type_number_t> vmCountsAsked;
  kern_return_t pageSizeResult = KERN_SUCCESS;
  vm_size_t pageSize = 16384;

  // sysctlbyname: the raw bytes of each known name; others fail with ENOENT.
  std::map<std::string, std::vector<unsigned char>> sysctl;

  // getifaddrs / freeifaddrs.
  int getifaddrsResult = 0;
  std::vector<Interface> interfaces;
  int interfaceListsOut = 0;  // handed out and not yet freed

  // statfs.
  int statfsResult = 0;
  struct statfs volume {};
  std::vector<std::string> statfsPaths;

  // proc_listpids / proc_pidinfo / proc_name.
  std::vector<int> pids;
  std::optional<int> listSizeAnswer;    // the answer to the sizing call (default: (n + 20) * 4)
  std::optional<int> listFilledAnswer;  // the answer to the filling call (default: bytes copied)
  std::vector<int> listBufferSizes;     // buffersize of every call
  std::vector<Process> processes;
  std::vector<std::pair<int, int>> pidinfoCalls;  // (pid, flavour)
  std::vector<int> pidinfoSizes;
  std::vector<int> nameCalls;  // pids

  // mach_timebase_info: Apple silicon's ratio by default.
  kern_return_t timebaseResult = KERN_SUCCESS;
  mach_timebase_info_data_t timebase{125, 3};
};

// The kernel of the current test, reset by reset().
Kernel& kernel();
void reset();

// Raw bytes of a value, for Kernel::sysctl.
template <class T>
std::vector<unsigned char> bytesOf(const T& value) {
  const auto* begin = reinterpret_cast<const unsigned char*>(&value);
  return {begin, begin + sizeof value};
}

}  // namespace quillmark::fake_darwin
