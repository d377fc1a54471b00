#pragma once

#include <optional>
#include <string_view>

#include "sampling/samples.h"

namespace quillmark {

// The processes keeping the Mac or its display awake, from the power-management assertions held
// per process: pid -> the blocking assertion types it holds, in the system's order, duplicates
// kept. Assertions of routine system daemons are left out. Stateless; the monitor's queue.
class AssertionsReader {
 public:
  AssertionsReader() = delete;

  [[nodiscard]] static AssertionMap readSleepBlockers();

  // Whether an assertion of this type, held by a process of this name (absent when the entry
  // has none), is listed.
  [[nodiscard]] static bool counts(std::string_view type, std::optional<std::string_view> processName);
};

}  // namespace quillmark
