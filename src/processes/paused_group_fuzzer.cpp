// libFuzzer target: "pausedGroups" is read back from a settings file anyone can edit, and every
// record it yields is a process that may be signalled. Whatever the text, each decoded record must
// name a group and a leader above 1 outside our own group, and encoding it must decode to the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "processes/paused_group.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quillmark;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  constexpr std::int32_t kOwnGroup = 4242;
  const auto groups = PausedGroupCodec::decode(text, kOwnGroup);
  if (groups.size() > PausedGroupCodec::kMaxRecords) std::abort();
  for (const auto& group : groups)
    if (group.pgid < 2 || group.leadPid < 2 || group.pgid == kOwnGroup) std::abort();
  // Names may hold invalid UTF-8, which the encoder replaces; the rest must survive the trip.
  const auto again = PausedGroupCodec::decode(PausedGroupCodec::encode(groups), kOwnGroup);
  if (again.size() != groups.size()) std::abort();
  for (std::size_t i = 0; i < groups.size(); ++i)
    if (again[i].pgid != groups[i].pgid || again[i].leadStart != groups[i].leadStart ||
        again[i].method != groups[i].method || again[i].cgroup != groups[i].cgroup)
      std::abort();
  return 0;
}
