#include "app/shell/hosted_panel.h"

namespace quillmark {

HostedPanel::HostedPanel(const PanelServices::Services& services, TextMeasurer& measurer, Shell shell)
    : services_(services), content_(services_, measurer, shell.chrome), shell_(std::move(shell)) {
  content_.requestRepaint = [this] {
    if (requestRepaint) requestRepaint();
  };
  content_.root().copyToClipboard = [this](const std::string& text) {
    if (writeClipboard) writeClipboard(text);
  };
  services_.onModel([this](const PanelModel& model) { content_.root().setModel(model); });
}

HostedPanel::~HostedPanel() {
  if (holding_ && shell_.setDialogHold) shell_.setDialogHold(false);
}

bool HostedPanel::updateHold(bool used) {
  const PanelState& state = content_.root().state();
  const bool hold = state.pendingPause.has_value() || state.pendingKill.has_value();
  if (hold != holding_) {
    holding_ = hold;
    if (shell_.setDialogHold) shell_.setDialogHold(hold);
  }
  return used;
}

bool HostedPanel::pointer(const PointerEvent& event) { return updateHold(content_.pointer(event)); }
bool HostedPanel::scroll(const ScrollEvent& event) { return updateHold(content_.scroll(event)); }
bool HostedPanel::editKey(EditKey key, const KeyModifiers& modifiers) {
  return updateHold(content_.editKey(key, modifiers));
}
bool HostedPanel::text(const TextInput& input) { return updateHold(content_.text(input)); }

bool HostedPanel::clipboard(ClipboardCommand command) {
  return content_.root().key(ViewKeyEvent(command == ClipboardCommand::cut ? Key::cut : Key::copy));
}

}  // namespace quillmark
