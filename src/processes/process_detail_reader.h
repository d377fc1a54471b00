#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "settings/format.h"  // cpuTimeString and relativeTime of this namespace

namespace quillmark {

// The facts shown for an expanded process row. Value type.
struct ProcessDetail {
  std::int32_t pid = 0;
  std::string name;  // the caller's fallback name
  std::string path;  // the executable, or "—" when it cannot be read
  std::uint64_t residentBytes = 0;
  std::uint64_t virtualBytes = 0;
  std::uint64_t cpuUserTime = 0;    // nanoseconds
  std::uint64_t cpuSystemTime = 0;  // nanoseconds
  std::int32_t threadCount = 0;
  std::optional<double> startDate;  // Unix seconds, with the platform's sub-second precision
  std::int32_t parentPid = 0;
};

// Reads the detail of one process and supplies the start stamp that guards pause, resume and
// termination against pid reuse. Stateless apart from lazily read constants (timebase, clock
// ticks, boot time). Main thread.
namespace ProcessDetailReader {

inline constexpr std::string_view kNoPath = "\u2014";

// Absent when the process has exited or may not be inspected.
[[nodiscard]] std::optional<ProcessDetail> read(std::int32_t pid, std::string_view fallbackName);
// The platform's exact start stamp (StartTimeSource::platform()).
[[nodiscard]] std::optional<std::uint64_t> startTime(std::int32_t pid);
// The shared terminator's checks and action.
[[nodiscard]] bool isKillable(std::int32_t pid, std::string_view name);
bool terminate(std::int32_t pid);

}  // namespace ProcessDetailReader
}  // namespace quillmark
