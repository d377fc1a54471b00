#include "processes/process_names.h"

namespace quillmark::ProcessNames {

std::span<const std::string_view> pauseBlocked() { return kLinuxPauseBlocked; }
std::span<const std::string_view> protectedFromTermination() { return kLinuxProtected; }

}  // namespace quillmark::ProcessNames
