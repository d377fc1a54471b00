#include "processes/cgroup_parsers.h"

#include <charconv>
#include <vector>

namespace quillmark::procfs {
namespace {

// Splits on runs of spaces.
std::vector<std::string_view> fields(std::string_view text) {
  std::vector<std::string_view> out;
  std::size_t at = 0;
  while (at < text.size()) {
    const auto start = text.find_first_not_of(" \n", at);
    if (start == std::string_view::npos) break;
    auto end = text.find_first_of(" \n", start);
    if (end == std::string_view::npos) end = text.size();
    out.push_back(text.substr(start, end - start));
    at = end;
  }
  return out;
}

}  // namespace

std::optional<std::string> parseUnifiedCgroup(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    auto end = text.find('\n', at);
    if (end == std::string_view::npos) end = text.size();
    const auto line = text.substr(at, end - at);
    if (line.starts_with("0::/")) return std::string(line.substr(3));
    at = end + 1;
  }
  return std::nullopt;
}

std::optional<bool> parseFrozenEvent(std::string_view text) {
  std::size_t key = text.starts_with("frozen ") ? 0 : text.find("\nfrozen ");
  if (key == std::string_view::npos) return std::nullopt;
  if (text[key] == '\n') ++key;
  const auto value = text.substr(key + 7, 2);
  if (value == "1" || value == "1\n") return true;
  if (value == "0" || value == "0\n") return false;
  return std::nullopt;
}

std::optional<std::string> parseCgroup2Mount(std::string_view mountinfo) {
  std::size_t at = 0;
  while (at < mountinfo.size()) {
    auto end = mountinfo.find('\n', at);
    if (end == std::string_view::npos) end = mountinfo.size();
    const auto parts = fields(mountinfo.substr(at, end - at));
    at = end + 1;
    // id parent major:minor root mountpoint options [optional...] - fstype source super-options
    for (std::size_t i = 5; i + 1 < parts.size(); ++i) {
      if (parts[i] != "-") continue;
      // A mount point with a space is written as \040; such mounts are not ours to guess at.
      if (parts[i + 1] == "cgroup2" && parts[4].find('\\') == std::string_view::npos)
        return std::string(parts[4]);
      break;
    }
  }
  return std::nullopt;
}

std::optional<AppUnit> parseAppUnit(std::string_view cgroupPath) {
  const auto slash = cgroupPath.rfind('/');
  const auto unit = slash == std::string_view::npos ? cgroupPath : cgroupPath.substr(slash + 1);
  if (!unit.starts_with("app-")) return std::nullopt;
  std::string_view body = unit.substr(4);
  if (body.ends_with(".scope")) {
    body.remove_suffix(6);
    const auto dash = body.rfind('-');  // the random part
    if (dash == std::string_view::npos) return std::nullopt;
    body = body.substr(0, dash);
  } else if (body.ends_with(".service")) {
    body.remove_suffix(8);
    body = body.substr(0, body.find('@'));
  } else {
    return std::nullopt;
  }
  // A dash systemd left unescaped separates the launcher; the app id's own dashes are \x2d.
  if (const auto dash = body.find('-'); dash != std::string_view::npos) body = body.substr(dash + 1);
  std::string appId;
  for (std::size_t i = 0; i < body.size(); ++i) {
    unsigned value = 0;
    if (body[i] == '\\' && i + 3 < body.size() && body[i + 1] == 'x' &&
        std::from_chars(body.data() + i + 2, body.data() + i + 4, value, 16).ptr == body.data() + i + 4) {
      appId.push_back(static_cast<char>(value));
      i += 3;
    } else {
      appId.push_back(body[i]);
    }
  }
  if (appId.empty()) return std::nullopt;
  return AppUnit{std::string(unit), appId};
}

}  // namespace quillmark::procfs
