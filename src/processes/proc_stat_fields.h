#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillmark {

// The Linux /proc facts process control reads, parsed from text so that hostile and damaged
// files are tested without a kernel. Never throw; malformed input gives an empty optional.
namespace procfs {

// The fields of /proc/<pid>/stat that the detail reader and the start-time guard use (1-based
// field numbers of proc(5)).
struct StatFields {
  char state = '?';              // 3
  std::int32_t ppid = 0;         // 4
  std::int32_t pgrp = 0;         // 5
  std::int32_t ttyNr = 0;        // 7, 0 without a controlling terminal
  std::int32_t tpgid = -1;       // 8, the terminal's foreground group
  std::uint64_t utimeTicks = 0;  // 14
  std::uint64_t stimeTicks = 0;  // 15
  std::int64_t threads = 0;      // 20
  std::uint64_t startTicks = 0;  // 22, clock ticks after boot
  std::uint64_t vsizeBytes = 0;  // 23
};
// comm (field 2) may hold spaces and parentheses: the fields start after the last ')'.
[[nodiscard]] std::optional<StatFields> parseStatFields(std::string_view text);

// The unified-hierarchy line ("0::/path") of /proc/<pid>/cgroup.
[[nodiscard]] std::optional<std::string> parseUnifiedCgroup(std::string_view text);

// cgroup.events: the value of its "frozen" key.
[[nodiscard]] std::optional<bool> parseFrozenEvent(std::string_view text);

// The mount point of the first cgroup2 file system in /proc/self/mountinfo.
[[nodiscard]] std::optional<std::string> parseCgroup2Mount(std::string_view mountinfo);

// An application unit systemd starts for a desktop launch: the last component of a cgroup path
// of the form app[-<launcher>]-<AppID>-<random>.scope or app[-<launcher>]-<AppID>@<random>.service.
struct AppUnit {
  std::string unit;   // "app-gnome-org.gnome.Terminal-4213.scope"
  std::string appId;  // "org.gnome.Terminal", systemd's \x2d escapes undone
};
[[nodiscard]] std::optional<AppUnit> parseAppUnit(std::string_view cgroupPath);

}  // namespace procfs
}  // namespace quillmark
