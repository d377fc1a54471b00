#pragma once

#include <string>

#include "app/frontend/bar_context.h"

namespace quillmark {

// The i3bar protocol, which i3bar and swaybar read from a status command: a header object on its
// own line, then one endless JSON array whose elements are the status line at each refresh, each
// an array of blocks. Blocks: "cpu", "memory", then "temperature" where the CPU temperature is
// known and "network" with showNetSpeed; each has "full_text", "short_text", "name" and
// "instance", and a block over its threshold is "urgent" with a red "color". Main thread only.
class I3barOutput {
 public:
  static constexpr const char* kOverColor = "#FF5555";

  // The header and the array's opening bracket, one line each: written once, first.
  [[nodiscard]] static std::string header();
  [[nodiscard]] static std::string opening() { return "["; }
  // The closing bracket, for a run that ends on purpose (--count), so the whole output parses.
  [[nodiscard]] static std::string closing() { return "]"; }

  // The blocks of one refresh as a JSON array; nextElement() prefixes every one after the first
  // with the comma that separates array elements.
  [[nodiscard]] static std::string blocks(const Monitor::Snapshot& snapshot, const BarContext& context);
  [[nodiscard]] std::string nextElement(const Monitor::Snapshot& snapshot, const BarContext& context);

 private:
  bool first_ = true;
};

}  // namespace quillmark
