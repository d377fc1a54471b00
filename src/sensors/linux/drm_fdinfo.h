#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillmark {

// One DRM client as /proc/<pid>/fdinfo/<fd> describes it (i915, xe, amdgpu, msm, panfrost...).
struct DrmClientUsage {
  std::string pdev;                               // drm-pdev: the GPU's PCI address, "0000:00:02.0"
  std::uint64_t clientId = 0;                     // drm-client-id: several descriptors may share one client
  std::map<std::string, std::uint64_t> engineNs;  // drm-engine-<name>: busy time in ns
  std::map<std::string, std::uint64_t> cycles;    // drm-cycles-<name> (xe)
  std::map<std::string, std::uint64_t> totalCycles;  // drm-total-cycles-<name> (xe)
  bool operator==(const DrmClientUsage&) const = default;
};

// The client a fdinfo text describes; absent when it is not a DRM descriptor or names no client.
// Unknown keys and malformed values are skipped. Pure; any thread.
[[nodiscard]] std::optional<DrmClientUsage> parseDrmFdinfo(std::string_view text);

// Every DRM client of the processes whose descriptors we may read (our own without privileges),
// each (pdev, client id) once. `root` is "" for the real machine or a fixture tree.
[[nodiscard]] std::vector<DrmClientUsage> scanDrmClients(const std::string& root);

// Whole-GPU load from the clients' engine time: per engine, the busy time every client gained
// since the last update over the wall time that passed; the GPU's load is its busiest engine,
// 0-100. Clients seen only once, and counters that went backwards, add nothing. It misses work
// the kernel does for no client and clients we may not read, so it is a lower bound.
// One thread (the monitor's queue).
class DrmBusyTracker {
 public:
  // Busy percent by pdev, for GPUs with a client in both this update and the last; `now` in s.
  [[nodiscard]] std::map<std::string, double> update(const std::vector<DrmClientUsage>& clients, double now);

 private:
  std::map<std::pair<std::string, std::uint64_t>, DrmClientUsage> previous_;
  std::optional<double> previousAt_;
};

}  // namespace quillmark
