#pragma once

namespace quillmark {

// The two preferences the terminal front end honours, read from the stored settings.
[[nodiscard]] double frontEndRefreshInterval();
[[nodiscard]] bool frontEndShowNetSpeed();

}  // namespace quillmark
