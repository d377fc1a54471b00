#include "sampling/testing/fake_darwin_kernel.h"

#include <libproc.h>
#include <sys/sysctl.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace quillmark::fake_darwin {
namespace {

constexpr mach_port_t kHostPort = 0x1103;

Kernel& state() {
  static Kernel instance;
  return instance;
}

// One getifaddrs result: the linked entries and everything they point at, in one allocation
// that freeifaddrs gives back.
struct InterfaceList {
  std::vector<ifaddrs> entries;
  std::vector<std::string> names;
  std::vector<sockaddr> addresses;
  std::vector<if_data> data;
};

}  // namespace

Kernel& kernel() { return state(); }
void reset() { state() = Kernel{}; }

}  // namespace quillmark::fake_darwin

using quillmark::fake_darwin::InterfaceList;
using quillmark::fake_darwin::state;

extern "C" {

mach_port_t mach_task_self_ = 0x0203;

mach_port_t mach_host_self(void) {
  ++state().hostPortsTaken;
  return quillmark::fake_darwin::kHostPort;
}

kern_return_t mach_port_deallocate(ipc_space_t task, mach_port_name_t name) {
  if (task != mach_task_self_ || name != quillmark::fake_darwin::kHostPort) return KERN_INVALID_ARGUMENT;
  ++state().hostPortsReturned;
  return KERN_SUCCESS;
}

kern_return_t host_statistics(host_t host, host_flavor_t flavor, host_info_t out,
                              mach_msg_type_number_t* count) {
  auto& k = state();
  if (host != quillmark::fake_darwin::kHostPort || flavor != HOST_CPU_LOAD_INFO) return KERN_INVALID_ARGUMENT;
  k.cpuLoadCountsAsked.push_back(*count);
  if (k.cpuLoadResult != KERN_SUCCESS) return k.cpuLoadResult;
  if (*count < HOST_CPU_LOAD_INFO_COUNT) return KERN_FAILURE;
  std::memcpy(out, k.cpuLoad.data(), sizeof(host_cpu_load_info_data_t));
  *count = k.cpuLoadCountAnswered.value_or(HOST_CPU_LOAD_INFO_COUNT);
  return KERN_SUCCESS;
}

kern_return_t host_statistics64(host_t host, host_flavor_t flavor, host_info64_t out,
                                mach_msg_type_number_t* count) {
  auto& k = state();
  if (host != quillmark::fake_darwin::kHostPort || flavor != HOST_VM_INFO64) return KERN_INVALID_ARGUMENT;
  k.vmCountsAsked.push_back(*count);
  if (k.vmResult != KERN_SUCCESS) return k.vmResult;
  // Like the kernel: copy at most what the caller said it has room for.
  const std::size_t room = std::min<std::size_t>(*count * sizeof(integer_t), sizeof k.vm);
  std::memcpy(out, &k.vm, room);
  *count = static_cast<mach_msg_type_number_t>(room / sizeof(integer_t));
  return KERN_SUCCESS;
}

kern_return_t host_page_size(host_t host, vm_size_t* size) {
  if (host != quillmark::fake_darwin::kHostPort) return KERN_INVALID_ARGUMENT;
  if (state().pageSizeResult != KERN_SUCCESS) return state().pageSizeResult;
  *size = state().pageSize;
  return KERN_SUCCESS;
}

kern_return_t host_processor_info(host_t host, processor_flavor_t flavor, natural_t* processorCount,
                                  processor_info_array_t* info, mach_msg_type_number_t* infoCount) {
  auto& k = state();
  if (host != quillmark::fake_darwin::kHostPort || flavor != PROCESSOR_CPU_LOAD_INFO)
    return KERN_INVALID_ARGUMENT;
  if (k.processorResult != KERN_SUCCESS) return k.processorResult;
  const auto count = k.processorInfoCountAnswered.value_or(
      static_cast<mach_msg_type_number_t>(k.processors.size() * CPU_STATE_MAX));
  auto* array = new integer_t[count == 0 ? 1 : count]();
  for (std::size_t i = 0; i < k.processors.size() && (i + 1) * CPU_STATE_MAX <= count; ++i) {
    std::memcpy(array + i * CPU_STATE_MAX, k.processors[i].data(), sizeof(processor_cpu_load_info_data_t));
  }
  const auto address = reinterpret_cast<vm_address_t>(array);
  k.liveAllocations[address] = count * sizeof(integer_t);
  *processorCount = static_cast<natural_t>(k.processors.size());
  *info = array;
  *infoCount = count;
  return KERN_SUCCESS;
}

kern_return_t vm_deallocate(vm_map_t task, vm_address_t address, vm_size_t size) {
  auto& k = state();
  ++k.deallocations;
  if (task != mach_task_self_) k.deallocationErrors.push_back("not our task");
  const auto it = k.liveAllocations.find(address);
  if (it == k.liveAllocations.end()) {
    k.deallocationErrors.push_back("unknown address");
    return KERN_INVALID_ARGUMENT;
  }
  if (it->second != size) {
    k.deallocationErrors.push_back("size " + std::to_string(size) + " for " + std::to_string(it->second));
  }
  delete[] reinterpret_cast<integer_t*>(address);
  k.liveAllocations.erase(it);
  return KERN_SUCCESS;
}

int sysctlbyname(const char* name, void* oldp, size_t* oldlenp, void* newp, size_t newlen) {
  if (newp || newlen) return errno = EPERM, -1;
  const auto it = state().sysctl.find(name);
  if (it == state().sysctl.end()) return errno = ENOENT, -1;
  const auto& value = it->second;
  if (!oldp) return *oldlenp = value.size(), 0;
  if (*oldlenp < value.size()) return errno = ENOMEM, -1;
  std::memcpy(oldp, value.data(), value.size());
  *oldlenp = value.size();
  return 0;
}

int getifaddrs(struct ifaddrs** list) {
  auto& k = state();
  if (k.getifaddrsResult != 0) return errno = k.getifaddrsResult, -1;
  auto owner = std::make_unique<InterfaceList>();
  const std::size_t n = k.interfaces.size();
  owner->entries.resize(n + 1);  // entry n is never linked; it only anchors the owner pointer
  owner->names.reserve(n);
  owner->addresses.resize(n);
  owner->data.resize(n);
  for (std::size_t i = 0; i < n; ++i) {
    const auto& scripted = k.interfaces[i];
    owner->names.push_back(scripted.name);
    owner->addresses[i] = sockaddr{};
    owner->addresses[i].sa_len = sizeof(sockaddr);
    owner->addresses[i].sa_family = scripted.family;
    owner->data[i] = if_data{};
    owner->data[i].ifi_ibytes = scripted.receivedBytes;
    owner->data[i].ifi_obytes = scripted.sentBytes;
    ifaddrs& entry = owner->entries[i];
    entry.ifa_next = i + 1 < n ? &owner->entries[i + 1] : nullptr;
    entry.ifa_name = owner->names.back().data();
    entry.ifa_flags = scripted.flags;
    entry.ifa_addr = &owner->addresses[i];
    entry.ifa_data = scripted.hasData ? &owner->data[i] : nullptr;
  }
  owner->entries[n].ifa_data = owner.get();
  ++k.interfaceListsOut;
  // An empty list is a NULL head, as on the Mac; the owner is then released right away.
  if (n == 0) {
    *list = nullptr;
    --k.interfaceListsOut;
    return 0;
  }
  *list = &owner.release()->entries[0];
  return 0;
}

void freeifaddrs(struct ifaddrs* list) {
  if (!list) return;
  // The anchor entry after the last one holds the owner (entries is contiguous).
  ifaddrs* last = list;
  while (last->ifa_next) last = last->ifa_next;
  delete static_cast<InterfaceList*>((last + 1)->ifa_data);
  --state().interfaceListsOut;
}

int statfs(const char* path, struct statfs* buf) {
  state().statfsPaths.emplace_back(path);
  if (state().statfsResult != 0) return errno = state().statfsResult, -1;
  *buf = state().volume;
  return 0;
}

int proc_listpids(uint32_t type, uint32_t typeinfo, void* buffer, int buffersize) {
  auto& k = state();
  k.listBufferSizes.push_back(buffersize);
  if (type != PROC_ALL_PIDS || typeinfo != 0) return errno = EINVAL, 0;
  const int all = static_cast<int>(k.pids.size() * sizeof(int));
  if (!buffer) return k.listSizeAnswer.value_or(all + 20 * static_cast<int>(sizeof(int)));
  const int copied = std::min(all, buffersize);
  std::memcpy(buffer, k.pids.data(), static_cast<std::size_t>(copied));
  return k.listFilledAnswer.value_or(copied);
}

int proc_pidinfo(int pid, int flavor, uint64_t arg, void* buffer, int buffersize) {
  auto& k = state();
  k.pidinfoCalls.emplace_back(pid, flavor);
  k.pidinfoSizes.push_back(buffersize);
  if (flavor == PROC_PIDCOALITIONINFO && arg == 0) {
    if (buffersize < static_cast<int>(sizeof(proc_pidcoalitioninfo))) return errno = ENOMEM, 0;
    for (const auto& process : k.processes) {
      if (process.pid != pid || !process.coalition) continue;
      proc_pidcoalitioninfo info{};
      info.coalition_id[0] = *process.coalition;
      std::memcpy(buffer, &info, sizeof info);
      return static_cast<int>(sizeof info);
    }
    return errno = ESRCH, 0;
  }
  if (arg != 0) return errno = EINVAL, 0;
  if (flavor == PROC_PIDTBSDINFO || flavor == PROC_PIDTASKALLINFO) {
    const int size =
        static_cast<int>(flavor == PROC_PIDTBSDINFO ? sizeof(proc_bsdinfo) : sizeof(proc_taskallinfo));
    if (buffersize < size) return errno = ENOMEM, 0;
    for (const auto& process : k.processes) {
      if (process.pid != pid || !process.bsd) continue;
      if (process.infoResult <= 0) return errno = ESRCH, 0;
      if (process.infoResult < static_cast<int>(sizeof(proc_taskinfo))) return process.infoResult;
      proc_taskallinfo all{*process.bsd, process.task};
      std::memcpy(buffer, &all, static_cast<std::size_t>(size));
      return size;
    }
    return errno = ESRCH, 0;
  }
  if (flavor != PROC_PIDTASKINFO) return errno = EINVAL, 0;
  if (buffersize < static_cast<int>(sizeof(proc_taskinfo))) return errno = ENOMEM, 0;
  for (const auto& process : k.processes) {
    if (process.pid != pid) continue;
    if (process.infoResult <= 0) return errno = ESRCH, 0;
    std::memcpy(buffer, &process.task, std::min<std::size_t>(sizeof process.task, process.infoResult));
    return process.infoResult;
  }
  return errno = ESRCH, 0;
}

int proc_name(int pid, void* buffer, uint32_t buffersize) {
  auto& k = state();
  k.nameCalls.push_back(pid);
  if (buffersize < 32) return errno = ENOMEM, 0;
  for (const auto& process : k.processes) {
    if (process.pid != pid || !process.name) continue;
    const std::size_t length = std::min<std::size_t>(process.name->size(), buffersize - 1);
    std::memcpy(buffer, process.name->data(), length);
    static_cast<char*>(buffer)[length] = '\0';
    return static_cast<int>(length);
  }
  return errno = ESRCH, 0;
}

int proc_pidpath(int pid, void* buffer, uint32_t buffersize) {
  if (buffersize < PROC_PIDPATHINFO_SIZE || buffersize > PROC_PIDPATHINFO_MAXSIZE) return errno = ENOMEM, 0;
  for (const auto& process : state().processes) {
    if (process.pid != pid || !process.path) continue;
    const std::size_t length = std::min<std::size_t>(process.path->size(), buffersize - 1);
    std::memcpy(buffer, process.path->data(), length);
    static_cast<char*>(buffer)[length] = '\0';
    return static_cast<int>(length);
  }
  return errno = ESRCH, 0;
}

kern_return_t mach_timebase_info(mach_timebase_info_t info) {
  if (state().timebaseResult != KERN_SUCCESS) return state().timebaseResult;
  *info = state().timebase;
  return KERN_SUCCESS;
}

}  // extern "C"
