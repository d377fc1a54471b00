#pragma once

namespace quillmark {

// The two preferences the terminal front end honours, from the shared settings store (which has
// already checked the stored values).
[[nodiscard]] double frontEndRefreshInterval();
[[nodiscard]] bool frontEndShowNetSpeed();

}  // namespace quillmark
