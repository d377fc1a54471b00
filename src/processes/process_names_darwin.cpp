#include "processes/process_names.h"

namespace quillmark::ProcessNames {

std::span<const std::string_view> pauseBlocked() { return kDarwinPauseBlocked; }
std::span<const std::string_view> protectedFromTermination() { return kDarwinProtected; }

}  // namespace quillmark::ProcessNames
