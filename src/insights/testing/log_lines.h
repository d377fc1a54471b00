#pragma once

#include <string>
#include <string_view>

#include "base/file_util.h"
#include "base/paths.h"

namespace quillmark::testing {

// How many lines of the test run's log contain text; tests compare counts before and after.
inline int logLinesWith(std::string_view text) {
  const std::string log = readWholeFile(logFilePath()).value_or("");
  int count = 0;
  for (std::size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) ++count;
  return count;
}

}  // namespace quillmark::testing
