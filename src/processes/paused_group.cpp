#include "processes/paused_group.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <set>

namespace quillmark::PausedGroupCodec {
namespace {

using nlohmann::json;

std::optional<std::int32_t> pidField(const json& entry, const char* key) {
  const auto it = entry.find(key);
  if (it == entry.end() || !it->is_number_integer()) return std::nullopt;
  const auto value = it->get<std::int64_t>();
  if (value < 2 || value > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

std::optional<PausedGroup> decodeEntry(const json& entry, std::int32_t ownGroup) {
  if (!entry.is_object()) return std::nullopt;
  const auto pgid = pidField(entry, "pgid");
  const auto leadPid = pidField(entry, "leadPid");
  if (!pgid || !leadPid || *pgid == ownGroup) return std::nullopt;
  const auto name = entry.find("name");
  const auto leadStart = entry.find("leadStart");
  const auto at = entry.find("at");
  if (name == entry.end() || !name->is_string()) return std::nullopt;
  // A negative stamp read as unsigned would be a different stamp, not a damaged one.
  if (leadStart == entry.end() || !leadStart->is_number_unsigned()) return std::nullopt;
  if (at == entry.end() || !at->is_number()) return std::nullopt;

  PausedGroup group;
  group.pgid = *pgid;
  group.leadPid = *leadPid;
  group.name = name->get<std::string>();
  group.leadStart = leadStart->get<std::uint64_t>();
  group.at = at->get<double>();
  if (const auto method = entry.find("method"); method != entry.end()) {
    if (*method == "freezer")
      group.method = PauseMethod::freezer;
    else if (*method != "signal")
      return std::nullopt;
  }
  // Only a freezer record has a unit; a stray "cgroup" on a signal record is dropped, since the
  // encoder never writes one and nothing would act on it.
  if (const auto cgroup = entry.find("cgroup");
      group.method == PauseMethod::freezer && cgroup != entry.end()) {
    if (!cgroup->is_string()) return std::nullopt;
    group.cgroup = cgroup->get<std::string>();
  }
  // A freezer record must name a unit below the root, never the root or a way out of it.
  if (group.method == PauseMethod::freezer && (group.cgroup.size() < 2 || group.cgroup.front() != '/' ||
                                               group.cgroup.find("..") != std::string::npos))
    return std::nullopt;
  if (const auto boot = entry.find("boot"); boot != entry.end()) {
    if (!boot->is_string()) return std::nullopt;
    group.boot = boot->get<std::string>();
  }
  return group;
}

}  // namespace

std::string encode(const std::vector<PausedGroup>& groups) {
  // ordered_json keeps the documented key order in the stored text.
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const auto& group : groups) {
    nlohmann::ordered_json entry = {{"pgid", group.pgid},
                                    {"leadPid", group.leadPid},
                                    {"name", group.name},
                                    {"leadStart", group.leadStart},
                                    {"at", group.at}};
    if (group.method == PauseMethod::freezer) {
      entry["method"] = "freezer";
      entry["cgroup"] = group.cgroup;
    }
    if (!group.boot.empty()) entry["boot"] = group.boot;
    list.push_back(std::move(entry));
  }
  return list.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

std::vector<PausedGroup> decode(std::string_view text, std::int32_t ownGroup) {
  const json parsed = json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (!parsed.is_array() || parsed.size() > kMaxRecords) return {};
  std::vector<PausedGroup> groups;
  std::set<std::int32_t> seen;
  for (const auto& entry : parsed) {
    auto group = decodeEntry(entry, ownGroup);
    if (group && seen.insert(group->pgid).second) groups.push_back(std::move(*group));
  }
  return groups;
}

}  // namespace quillmark::PausedGroupCodec
