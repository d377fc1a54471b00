#include "processes/process_detail_reader.h"

#include "processes/process_os.h"
#include "processes/termination.h"

namespace quillmark::ProcessDetailReader {

std::optional<std::uint64_t> startTime(std::int32_t pid) {
  return StartTimeSource::platform().startTime(pid);
}

bool isKillable(std::int32_t pid, std::string_view name) {
  return ProcessTerminator::shared().isKillable(pid, name);
}

bool terminate(std::int32_t pid) { return ProcessTerminator::shared().terminate(pid); }

}  // namespace quillmark::ProcessDetailReader
