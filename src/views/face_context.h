#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "views/panel_actions.h"
#include "views/panel_model.h"
#include "views/spring.h"
#include "views/theme.h"

namespace quillmark {

// The panel's own view state, kept across rebuilds of the faces: sort, search, the expanded row,
// a pending confirmation. (Which face shows is the shell's PanelFlipState.) Main thread only.
struct PanelState {
  struct PendingProcess {
    std::int32_t pid = 0;
    std::string name;
  };
  PanelModel::SortMode sortMode = PanelModel::SortMode::cpu;
  std::string searchText;
  bool showSearch = false;
  std::optional<std::int32_t> expandedPid;
  std::optional<PendingProcess> pendingPause;
  std::optional<PendingProcess> pendingKill;
  Spring expand{0, 0, 0, 0.22, 0.85};
};

// What a face builder is handed: the model to show, the state it may change (then it calls
// `changed`, and the root rebuilds at the next frame), the operations, and the skin's look.
struct FaceContext {
  const PanelModel& model;
  PanelState& state;
  PanelActions& actions;
  const Theme& theme;
  std::function<void()> changed;
  std::function<void(bool)> flipTo;  // true shows the settings face
  std::function<void(const std::string&)> copy;
};

}  // namespace quillmark
