#include "sensors/linux/gpu_reader_linux.h"

#include <algorithm>
#include <filesystem>

#include "sensors/linux/sysfs_text.h"

namespace quillmark {
namespace {

namespace fs = std::filesystem;

std::unique_ptr<SysfsAttribute> keep(const fs::path& file) {
  std::error_code error;
  if (!fs::exists(file, error)) return nullptr;
  return std::make_unique<SysfsAttribute>(file.string());
}

// "card0" yes; "card0-eDP-1" (a connector) and "renderD128" no.
bool isCard(const std::string& name) {
  return name.size() > 4 && name.starts_with("card") &&
         std::all_of(name.begin() + 4, name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::optional<std::int64_t> number(const std::unique_ptr<SysfsAttribute>& file, bool& hasRead, bool& lost) {
  if (!file) return std::nullopt;
  const auto text = file->read();
  if (!text && hasRead) lost = true;
  if (text) hasRead = true;
  return text ? SysfsText::integer(*text) : std::nullopt;
}

}  // namespace

std::optional<GPUSample> busiestGPU(const std::vector<GPUListing>& gpus) {
  const GPUListing* busiest = nullptr;
  for (const auto& gpu : gpus) {
    if (gpu.busyPercent && (!busiest || *gpu.busyPercent > *busiest->busyPercent)) busiest = &gpu;
  }
  if (!busiest) return std::nullopt;
  GPUSample sample;
  sample.deviceUtil = std::clamp(*busiest->busyPercent, 0.0, 100.0);
  sample.allocBytes = busiest->memoryUsedBytes;
  sample.coreCount = busiest->coreCount;
  return sample;
}

LinuxGPUReader::LinuxGPUReader(std::string root, std::string nvmlPath, std::function<double()> now)
    : root_(std::move(root)), now_(std::move(now)), nvml_(std::move(nvmlPath)) {}

void LinuxGPUReader::discover() {
  cards_.clear();
  nvidiaCards_.clear();
  const fs::path base = fs::path(root_.empty() ? "/" : root_);
  std::error_code error;
  std::vector<fs::path> found;
  for (fs::directory_iterator it(base / "sys/class/drm", error), end; !error && it != end;
       it.increment(error)) {
    if (isCard(it->path().filename().string())) found.push_back(it->path());
  }
  std::sort(found.begin(), found.end());
  nvidiaDriver_ = fs::exists(base / "proc/driver/nvidia", error);
  for (const auto& path : found) {
    const fs::path device = path / "device";
    Card card;
    card.name = path.filename().string();
    card.driver = fs::read_symlink(device / "driver", error).filename().string();
    if (error) card.driver.clear();
    card.runtimeStatus = keep(device / "power/runtime_status");
    if (card.driver == "nvidia") {
      nvidiaDriver_ = true;
      // Read through NVML, which knows more than sysfs does.
      nvidiaCards_.emplace_back(card.name, std::move(card.runtimeStatus));
      continue;
    }
    card.busy = keep(device / "gpu_busy_percent");
    card.pdev = fs::canonical(device, error).filename().string();
    card.useFdinfo = !card.busy && !error;
    card.vramUsed = keep(device / "mem_info_vram_used");
    card.vramTotal = keep(device / "mem_info_vram_total");
    for (const auto& hwmon : fs::directory_iterator(device / "hwmon", error)) {
      card.temperature = keep(hwmon.path() / "temp1_input");
      break;
    }
    cards_.push_back(std::move(card));
  }
}

std::vector<GPUListing> LinuxGPUReader::read(bool& lost) {
  std::vector<GPUListing> gpus;
  // Walking every process's descriptors costs a little, so only for a GPU that needs it.
  const bool wantFdinfo =
      std::any_of(cards_.begin(), cards_.end(), [](const Card& c) { return c.useFdinfo; });
  const auto fdinfoBusy =
      wantFdinfo ? fdinfo_.update(scanDrmClients(root_), now_()) : std::map<std::string, double>{};
  for (auto& card : cards_) {
    GPUListing gpu;
    gpu.name = card.name;
    gpu.driver = card.driver;
    if (card.runtimeStatus) {
      const auto status = card.runtimeStatus->read();
      gpu.suspended = status && SysfsText::trimmed(*status) == "suspended";
    }
    if (!gpu.suspended) {
      if (const auto busy = number(card.busy, card.hasRead, lost))
        gpu.busyPercent = static_cast<double>(*busy);
      if (const auto found = fdinfoBusy.find(card.pdev); card.useFdinfo && found != fdinfoBusy.end())
        gpu.busyPercent = found->second;
      if (const auto used = number(card.vramUsed, card.hasRead, lost); used && *used >= 0)
        gpu.memoryUsedBytes = static_cast<std::uint64_t>(*used);
      if (const auto total = number(card.vramTotal, card.hasRead, lost); total && *total >= 0)
        gpu.memoryTotalBytes = static_cast<std::uint64_t>(*total);
      if (card.temperature) {
        const auto text = card.temperature->read();
        gpu.temperatureC = text ? SysfsText::milliCelsius(*text) : std::nullopt;
      }
    }
    gpus.push_back(std::move(gpu));
  }
  bool allAsleep = !nvidiaCards_.empty();
  for (auto& [name, status] : nvidiaCards_) {
    const auto text = status ? status->read() : std::nullopt;
    allAsleep = allAsleep && text && SysfsText::trimmed(*text) == "suspended";
  }
  if (allAsleep) {
    for (const auto& entry : nvidiaCards_) {
      GPUListing gpu;
      gpu.name = entry.first;
      gpu.driver = "nvidia";
      gpu.suspended = true;
      gpus.push_back(std::move(gpu));
    }
  } else if (nvidiaDriver_ && nvml_.load()) {
    auto nvidia = nvml_.read();
    std::move(nvidia.begin(), nvidia.end(), std::back_inserter(gpus));
  }
  return gpus;
}

}  // namespace quillmark
