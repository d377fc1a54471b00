// This build has no tray item of its own: the StatusNotifierItem is a separate piece that replaces
// this file. Reporting "none" makes the program say so and print the status line instead, and
// `quillmark ctl open-panel` still opens the panel.
#include "app/desktop/tray_delegate.h"

namespace quillmark {

std::unique_ptr<TrayItem> makeTrayItem(LinuxMainLoop&, TrayDelegate&, std::string& error) {
  error = "this build has no StatusNotifierItem";
  return nullptr;
}

}  // namespace quillmark
