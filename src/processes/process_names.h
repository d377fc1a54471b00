#pragma once

#include <span>
#include <string_view>

namespace quillmark {

// The names of processes that process control must leave alone, as tables per platform, and the
// name matching both checks use. Names are compared exactly and case-sensitively. Stateless.
namespace ProcessNames {

// The text before the first space, empty pieces skipped ("  Window Server" -> "Window"); the
// whole name when it has no space.
[[nodiscard]] std::string_view firstWord(std::string_view name);

// Applications whose pause would freeze the desktop itself (macOS: exactly the 15 system
// processes; Linux: init, the display server and compositors, session and login managers, D-Bus,
// the audio server, and Quillmark).
extern const std::span<const std::string_view> kDarwinPauseBlocked;
extern const std::span<const std::string_view> kLinuxPauseBlocked;
// Processes that may never be terminated (macOS: exactly these 8; Linux: the same desktop core as
// above, since ending any of them ends or breaks the session).
extern const std::span<const std::string_view> kDarwinProtected;
extern const std::span<const std::string_view> kLinuxProtected;

// This platform's tables (picked by the _linux/_darwin variant).
[[nodiscard]] std::span<const std::string_view> pauseBlocked();
[[nodiscard]] std::span<const std::string_view> protectedFromTermination();

// The first word or the whole name is in the pause table (this platform's by default).
[[nodiscard]] bool isPauseBlocked(std::string_view name,
                                  std::span<const std::string_view> table = pauseBlocked());
// The first word is in the termination table.
[[nodiscard]] bool isProtected(std::string_view name,
                               std::span<const std::string_view> table = protectedFromTermination());

}  // namespace ProcessNames
}  // namespace quillmark
