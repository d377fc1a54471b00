#pragma once

#include <string>

#include "sampling/monitor.h"

namespace quillmark {

// One applied snapshot as a single JSON line (no trailing newline) with every Snapshot field;
// absent values are null. Processes are listed as the scan produced them. `unixTime` stamps the
// line so status bars and scripts can line readings up.
[[nodiscard]] std::string snapshotJson(const Monitor::Snapshot& snapshot, double unixTime);

}  // namespace quillmark
