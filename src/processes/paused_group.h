#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmark {

// How a paused application was frozen: its process group stopped with SIGSTOP, or (Linux) the
// cgroup of its systemd unit frozen, which also holds members in other process groups and spares
// the shell's job control.
enum class PauseMethod { signal, freezer };

// One application that Quillmark froze. The start stamp of leadPid is what proves, before any
// signal, that the pid and its group still belong to the process we froze. Value type; any thread.
struct PausedGroup {
  std::int32_t pgid = 0;     // process group that was stopped (≥ 2)
  std::int32_t leadPid = 0;  // the group leader when it was alive at pause time, else the chosen pid
  std::string name;          // kernel short name of leadPid, else the name the caller gave
  // Exact start stamp of leadPid in the start-time source's unit (whole seconds since 1970 on
  // macOS, clock ticks since boot on Linux); compared for equality only, never as a float.
  std::uint64_t leadStart = 0;
  double at = 0;  // when it was paused, seconds since 2001-01-01 UTC
  PauseMethod method = PauseMethod::signal;
  std::string cgroup;  // freezer only: the unit's cgroup path below the cgroup2 root
  std::string boot;    // the boot the stamp belongs to (Linux boot id); empty where not tracked

  bool operator==(const PausedGroup&) const = default;
};

// The stored form of the paused list (defaults key "pausedGroups"): a JSON array of objects with
// the keys "pgid", "leadPid", "name", "leadStart", "at" and, where they differ from the default,
// "method", "cgroup", "boot". Records written before those three existed still load.
namespace PausedGroupCodec {

inline constexpr std::string_view kDefaultsKey = "pausedGroups";
// More records than this is a damaged or hostile value, not anything we wrote.
inline constexpr std::size_t kMaxRecords = 256;

[[nodiscard]] std::string encode(const std::vector<PausedGroup>& groups);

// Never throws. Text that is not a JSON array, or holds more than kMaxRecords entries, gives an
// empty list. Entries of the wrong shape, with a pid or group ≤ 1, in ownGroup, or repeating an
// earlier pgid are dropped. ownGroup ≤ 0 means "no group to exclude".
[[nodiscard]] std::vector<PausedGroup> decode(std::string_view text, std::int32_t ownGroup);

}  // namespace PausedGroupCodec
}  // namespace quillmark
