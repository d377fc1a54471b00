#pragma once

#include <functional>
#include <memory>

#include "base/main_loop.h"
#include "menubar/hosted_content.h"

namespace quillmark {

// Paints a hosted content at the display's pace, and only while it moves: every repaint the
// content asks for goes to `redraw` at once, and while the content is animating (it reads its own
// clock when painted) another redraw follows every kFrameSeconds until it has settled. Installs
// itself as the content's requestRepaint and hands `redraw` back when destroyed. Main thread
// only; the content must outlive the pump, and a frame pending at destruction is dropped.
class FramePump {
 public:
  static constexpr double kFrameSeconds = 1.0 / 60;

  FramePump(MainLoop& loop, HostedContent& content, std::function<void()> redraw);
  ~FramePump();
  FramePump(const FramePump&) = delete;
  FramePump& operator=(const FramePump&) = delete;

  [[nodiscard]] bool running() const { return scheduled_; }

 private:
  void changed();
  void schedule();

  MainLoop& loop_;
  HostedContent& content_;
  std::function<void()> redraw_;
  bool scheduled_ = false;
  std::shared_ptr<FramePump*> lifetime_ = std::make_shared<FramePump*>(this);
};

}  // namespace quillmark
