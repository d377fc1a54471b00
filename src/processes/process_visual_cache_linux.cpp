#include <unistd.h>

#include <array>
#include <cstdlib>

#include "base/file_util.h"
#include "processes/cgroup_parsers.h"
#include "processes/desktop_entries.h"
#include "processes/process_visual_cache.h"

namespace quillmark {
namespace {

// The application of a pid: the systemd app unit it runs in names its .desktop entry; without
// one, the entry whose Exec runs the same executable. Command-line tools have neither.
class DesktopVisualSource final : public VisualSource {
 public:
  explicit DesktopVisualSource(std::string language) : entries_(xdgDataDirectories(), std::move(language)) {}

  ProcessVisual lookup(std::int32_t pid, std::string_view fallbackName) override {
    const std::string dir = "/proc/" + std::to_string(pid) + "/";
    std::optional<DesktopEntry> entry;
    if (const auto cgroups = readWholeFile(dir + "cgroup"))
      if (const auto path = procfs::parseUnifiedCgroup(*cgroups))
        if (const auto unit = procfs::parseAppUnit(*path)) entry = entries_.byAppId(unit->appId);
    if (!entry) entry = entries_.byExecutable(executableName(dir));
    if (!entry) return {std::string(fallbackName), std::nullopt};
    return {entry->name, findIcon(entry->icon, entries_.dataDirs())};
  }

 private:
  static std::string executableName(const std::string& dir) {
    std::array<char, 4096> buffer{};
    const ssize_t length = ::readlink((dir + "exe").c_str(), buffer.data(), buffer.size() - 1);
    if (length <= 0) return {};
    std::string path(buffer.data(), static_cast<std::size_t>(length));
    if (path.ends_with(" (deleted)")) path.resize(path.size() - 10);
    return path.substr(path.rfind('/') + 1);
  }

  DesktopEntries entries_;
};

std::string messagesLanguage() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
    if (const char* value = std::getenv(name); value && *value) return value;
  return {};
}

}  // namespace

std::unique_ptr<VisualSource> VisualSource::makePlatform() {
  return std::make_unique<DesktopVisualSource>(messagesLanguage());
}

}  // namespace quillmark
