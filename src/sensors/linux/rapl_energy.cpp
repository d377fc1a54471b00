#include "sensors/linux/rapl_energy.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "sensors/linux/sysfs_text.h"

namespace quillmark {
namespace {

namespace fs = std::filesystem;

constexpr double kMinimumInterval = 0.5;

// Top-level zones only ("intel-rapl:0", not its "intel-rapl:0:0" core/uncore/dram parts, which
// the package already contains), and only packages: psys covers the whole platform and would
// count the packages twice.
bool isPackageZone(const fs::path& zone) {
  const std::string name = zone.filename().string();
  const auto colon = name.find(':');
  if (colon == std::string::npos || name.find(':', colon + 1) != std::string::npos) return false;
  const auto label = SysfsText::readFile((zone / "name").string());
  return label && SysfsText::trimmed(*label).starts_with("package");
}

}  // namespace

RaplEnergy::RaplEnergy(std::string root, std::function<double()> now)
    : root_(std::move(root)), now_(std::move(now)) {}

void RaplEnergy::discover() {
  zones_.clear();
  previousAt_.reset();
  const fs::path base = fs::path(root_.empty() ? "/" : root_) / "sys/class/powercap";
  std::error_code error;
  std::vector<fs::path> found;
  for (fs::directory_iterator it(base, error), end; !error && it != end; it.increment(error)) {
    if (isPackageZone(it->path())) found.push_back(it->path());
  }
  std::sort(found.begin(), found.end());
  for (const auto& path : found) {
    Zone zone;
    zone.energy = std::make_unique<SysfsAttribute>((path / "energy_uj").string());
    // Root-only counters open and fail here: such a zone is not offered at all.
    const auto first = zone.energy->read();
    if (!first || !SysfsText::integer(*first)) continue;
    const auto range = SysfsText::readFile((path / "max_energy_range_uj").string());
    if (const auto value = range ? SysfsText::integer(*range) : std::nullopt; value && *value > 0)
      zone.range = static_cast<std::uint64_t>(*value);
    zones_.push_back(std::move(zone));
  }
}

std::vector<ProcessSample> RaplEnergy::rows(const std::vector<ProcessSample>& processes, bool& lost) {
  std::vector<ProcessSample> rows;
  if (zones_.empty()) return rows;
  const double at = now_();
  std::uint64_t microjoules = 0;
  bool complete = true;
  for (auto& zone : zones_) {
    const auto text = zone.energy->read();
    const auto value = text ? SysfsText::integer(*text) : std::nullopt;
    if (!value || *value < 0) {
      lost = true;
      complete = false;
      continue;
    }
    const auto current = static_cast<std::uint64_t>(*value);
    if (zone.previous) {
      if (current >= *zone.previous) {
        microjoules += current - *zone.previous;
      } else if (zone.range > 0 && *zone.previous <= zone.range) {
        microjoules += zone.range - *zone.previous + current + 1;
      }
    }
    zone.previous = current;
  }
  const bool first = !previousAt_;
  const double elapsed = first ? 0 : at - *previousAt_;
  previousAt_ = at;
  if (first || !complete) microjoules = 0;
  const double watts = elapsed > kMinimumInterval ? static_cast<double>(microjoules) / 1e6 / elapsed : 0.0;

  double totalCPU = 0;
  for (const auto& p : processes) totalCPU += std::max(p.cpuPercent, 0.0);
  std::map<std::int32_t, double> kept;
  for (const auto& p : processes) {
    const double share = totalCPU > 0 ? std::max(p.cpuPercent, 0.0) / totalCPU : 0.0;
    double& nanojoules = kept[p.pid];
    nanojoules = cumulativeNanojoules_[p.pid] + static_cast<double>(microjoules) * 1000.0 * share;
    if (share <= 0 && nanojoules <= 0) continue;
    rows.push_back(ProcessSample{p.pid, p.name, watts * share, static_cast<std::uint64_t>(nanojoules)});
  }
  // Only processes still running keep their totals.
  cumulativeNanojoules_ = std::move(kept);
  return rows;
}

}  // namespace quillmark
