#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillmark {

// The cgroup facts process control reads from /proc and the cgroup file system, parsed from text so
// that hostile and damaged files are tested without a kernel. Never throw; malformed input gives an
// empty optional. /proc/<pid>/stat is parsed by the process scan's procfs::parsePidStat.
namespace procfs {

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
