#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sampling/linux/kept_open_file.h"
#include "sampling/linux/proc_parsers.h"
#include "sampling/system_counters.h"

namespace quillmark {

// The Linux system counters: /proc/stat, /proc/meminfo, /proc/net/dev with /sys/class/net, zram's
// mm_stat and statvfs of the home folder. The three files read every tick are kept open and
// re-read in place. `root` is the folder that holds proc/ and sys/ ("/" in production, a fake
// tree in tests). Used on the monitor's queue only.
class LinuxSystemCounters final : public SystemCounters {
 public:
  explicit LinuxSystemCounters(std::string root = "/");

  [[nodiscard]] CPUReading readCPU() override;
  [[nodiscard]] std::optional<MemorySample> readMemory() override;
  [[nodiscard]] std::optional<NetCounters> readNetworkBytes() override;
  [[nodiscard]] DiskSpace readDiskSpace() override;
  [[nodiscard]] std::optional<double> readBootTime() override;
  [[nodiscard]] std::string lastReadError() const override { return lastError_; }

  // The breakdown from meminfo and the bytes held by zram pools; absent without MemTotal.
  [[nodiscard]] static std::optional<MemorySample> memorySample(const procfs::MemInfo& info,
                                                                std::uint64_t zramBytes);

 private:
  struct Interface {
    std::string name;
    bool physical = false;
    bool up = false;
    bool seen = false;
    std::uint64_t lastRx = 0;
    std::uint64_t lastTx = 0;
    std::optional<KeptOpenFile> flags;
  };

  Interface makeInterface(std::string_view name) const;
  static bool readUp(Interface& interface);
  std::uint64_t zramBytes();
  void findZramDevices();

  // Reads a kept file, noting why it failed.
  std::optional<std::string_view> readNoting(KeptOpenFile& file);

  std::string root_;
  std::string lastError_;
  KeptOpenFile stat_;
  KeptOpenFile meminfo_;
  KeptOpenFile netDev_;
  std::vector<Interface> interfaces_;
  std::vector<procfs::NetDevEntry> netDevEntries_;
  std::uint64_t netReads_ = 0;
  std::vector<KeptOpenFile> zramStats_;
  std::uint64_t memoryReads_ = 0;
};

}  // namespace quillmark
