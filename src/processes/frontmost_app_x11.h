#pragma once

#include <memory>
#include <optional>
#include <string>

#include "processes/process_os.h"

struct _XDisplay;  // Xlib's Display, kept out of this header

namespace quillmark {

// The front application on an X11 display: the window manager's _NET_ACTIVE_WINDOW on the root
// window, mapped to the pid of the client that created it through the X-Resource extension (the
// server's own record, unlike _NET_WM_PID, which clients may omit or fake). On a Wayland session
// the property only follows X11 windows, so there the source stays off. Main thread only.
class X11FrontmostApp final : public FrontmostAppSource {
 public:
  // displayName empty: $DISPLAY. Without a display, on Wayland, or without X-Resource, every
  // answer is "none".
  explicit X11FrontmostApp(const std::string& displayName = {});
  ~X11FrontmostApp() override;
  X11FrontmostApp(const X11FrontmostApp&) = delete;
  X11FrontmostApp& operator=(const X11FrontmostApp&) = delete;

  [[nodiscard]] bool connected() const { return display_ != nullptr; }
  std::optional<std::int32_t> frontmostPid() override;
  // Asks the window manager to activate the window last seen in front for pid.
  void activate(std::int32_t pid) override;

  // True where an X11 answer about the front window cannot be trusted (a Wayland session).
  [[nodiscard]] static bool isWaylandSession();

 private:
  _XDisplay* display_ = nullptr;
  unsigned long activeAtom_ = 0;
  unsigned long lastWindow_ = 0;
  std::int32_t lastPid_ = -1;
};

}  // namespace quillmark
