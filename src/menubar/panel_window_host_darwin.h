#pragma once

#include <functional>
#include <memory>

#include "base/main_loop.h"
#include "menubar/frame_pump.h"
#include "menubar/hosted_content.h"
#include "menubar/panel_window_controller.h"

namespace quillmark {

// The panel's window on macOS: a key-capable, non-activating card hosting content that is made
// afresh for every opening and destroyed on every close. While the card turns between its faces
// or a row opens it is redrawn at the display's pace (FramePump). The controller's handlers
// (resign key, Escape) are set once the controller exists. Main thread only.
class DarwinPanelWindowHost final : public PanelWindowHost {
 public:
  using ContentFactory = std::function<std::unique_ptr<HostedContent>()>;

  DarwinPanelWindowHost(ContentFactory makeContent, MainLoop& loop);
  ~DarwinPanelWindowHost() override;
  DarwinPanelWindowHost(const DarwinPanelWindowHost&) = delete;
  DarwinPanelWindowHost& operator=(const DarwinPanelWindowHost&) = delete;

  std::function<void()> onResignKey;
  std::function<void()> onCancel;

  void build() override;
  bool isVisible() const override;
  void moveTo(ScreenPoint origin) override;
  void makeKeyAndOrderFront() override;
  void destroy() override;

 private:
  struct Objects;
  ContentFactory makeContent_;
  MainLoop& loop_;
  std::unique_ptr<HostedContent> content_;
  std::unique_ptr<FramePump> pump_;
  std::unique_ptr<Objects> objects_;
  std::shared_ptr<DarwinPanelWindowHost*> lifetime_ = std::make_shared<DarwinPanelWindowHost*>(this);
};

}  // namespace quillmark
