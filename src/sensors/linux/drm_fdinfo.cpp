#include "sensors/linux/drm_fdinfo.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <set>

#include "sensors/linux/sysfs_text.h"

namespace quillmark {
namespace {

std::optional<std::uint64_t> leadingNumber(std::string_view text) {
  text = SysfsText::trimmed(text);
  std::uint64_t value = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || stop == text.data()) return std::nullopt;
  return value;
}

std::vector<std::string> numericEntries(const std::string& folder) {
  std::vector<std::string> names;
  DIR* dir = ::opendir(folder.c_str());
  if (!dir) return names;
  while (const dirent* entry = ::readdir(dir)) {
    if (entry->d_name[0] >= '0' && entry->d_name[0] <= '9') names.emplace_back(entry->d_name);
  }
  ::closedir(dir);
  return names;
}

}  // namespace

std::optional<DrmClientUsage> parseDrmFdinfo(std::string_view text) {
  DrmClientUsage usage;
  bool hasClient = false;
  while (!text.empty()) {
    const auto end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || !line.starts_with("drm-")) continue;
    const std::string_view key = line.substr(0, colon);
    const std::string_view value = line.substr(colon + 1);
    if (key == "drm-pdev") {
      usage.pdev = SysfsText::trimmed(value);
    } else if (key == "drm-client-id") {
      if (const auto id = leadingNumber(value)) usage.clientId = *id, hasClient = true;
    } else if (key.starts_with("drm-engine-capacity-")) {
      continue;
    } else if (key.starts_with("drm-engine-")) {
      if (const auto ns = leadingNumber(value)) usage.engineNs[std::string(key.substr(11))] = *ns;
    } else if (key.starts_with("drm-total-cycles-")) {
      if (const auto n = leadingNumber(value)) usage.totalCycles[std::string(key.substr(17))] = *n;
    } else if (key.starts_with("drm-cycles-")) {
      if (const auto n = leadingNumber(value)) usage.cycles[std::string(key.substr(11))] = *n;
    }
  }
  if (!hasClient) return std::nullopt;
  return usage;
}

std::vector<DrmClientUsage> scanDrmClients(const std::string& root) {
  std::vector<DrmClientUsage> clients;
  std::set<std::pair<std::string, std::uint64_t>> seen;
  const std::string proc = (root.empty() ? std::string() : root) + "/proc/";
  char link[256];
  for (const auto& pid : numericEntries(proc)) {
    const std::string fdFolder = proc + pid + "/fd/";
    for (const auto& fd : numericEntries(fdFolder)) {
      const ssize_t n = ::readlink((fdFolder + fd).c_str(), link, sizeof link - 1);
      if (n <= 0 ||
          std::string_view(link, static_cast<std::size_t>(n)).find("/dev/dri/") == std::string_view::npos)
        continue;
      const auto text = SysfsText::readFile(proc + pid + "/fdinfo/" + fd);
      const auto usage = text ? parseDrmFdinfo(*text) : std::nullopt;
      if (usage && seen.emplace(usage->pdev, usage->clientId).second) clients.push_back(*usage);
    }
  }
  return clients;
}

std::map<std::string, double> DrmBusyTracker::update(const std::vector<DrmClientUsage>& clients, double now) {
  std::map<std::string, double> busy;
  const double elapsed = previousAt_ ? now - *previousAt_ : 0;
  // Per pdev and engine: the busy nanoseconds, and for cycle-counting drivers the cycles and the
  // GPU's own cycle count over the same span.
  std::map<std::string, std::map<std::string, double>> ns, cycles, total;
  std::map<std::pair<std::string, std::uint64_t>, DrmClientUsage> current;
  for (const auto& client : clients) {
    const auto key = std::make_pair(client.pdev, client.clientId);
    current[key] = client;
    const auto before = previous_.find(key);
    if (before == previous_.end()) continue;
    const auto gained = [](const std::map<std::string, std::uint64_t>& now_,
                           const std::map<std::string, std::uint64_t>& then,
                           std::map<std::string, double>& into, bool keepLargest) {
      for (const auto& [engine, value] : now_) {
        const auto old = then.find(engine);
        if (old == then.end() || value < old->second) continue;
        const double delta = static_cast<double>(value - old->second);
        double& slot = into[engine];
        slot = keepLargest ? std::max(slot, delta) : slot + delta;
      }
    };
    auto& deviceNs = ns[client.pdev];
    gained(client.engineNs, before->second.engineNs, deviceNs, false);
    gained(client.cycles, before->second.cycles, cycles[client.pdev], false);
    gained(client.totalCycles, before->second.totalCycles, total[client.pdev], true);
    busy.emplace(client.pdev, 0.0);
  }
  for (auto& [pdev, load] : busy) {
    if (elapsed > 0) {
      for (const auto& [engine, value] : ns[pdev]) load = std::max(load, value / (elapsed * 1e9) * 100.0);
    }
    for (const auto& [engine, value] : cycles[pdev]) {
      const double span = total[pdev][engine];
      if (span > 0) load = std::max(load, value / span * 100.0);
    }
    load = std::clamp(load, 0.0, 100.0);
  }
  previous_ = std::move(current);
  previousAt_ = now;
  return busy;
}

}  // namespace quillmark
