#pragma once

#include <functional>
#include <memory>

#include "base/main_loop.h"
#include "menubar/first_run_tip_window.h"
#include "menubar/hosted_content.h"

namespace quillmark {

// The first-run card on macOS: a card like the panel's, shown without taking key status, hosting
// the tip view. The factory receives what the tip's button must call; that call runs on the next
// turn of the loop, since it destroys the very view whose button was clicked. Main thread only.
class DarwinFirstRunTipHost final : public FirstRunTipHost {
 public:
  using ContentFactory = std::function<std::unique_ptr<HostedContent>(std::function<void()> onDismiss)>;

  DarwinFirstRunTipHost(ContentFactory makeContent, MainLoop& loop, std::function<void()> onDismiss);
  ~DarwinFirstRunTipHost() override;
  DarwinFirstRunTipHost(const DarwinFirstRunTipHost&) = delete;
  DarwinFirstRunTipHost& operator=(const DarwinFirstRunTipHost&) = delete;

  bool build() override;
  void show(ScreenPoint origin) override;
  void dismiss() override;

 private:
  struct Objects;
  ContentFactory makeContent_;
  MainLoop& loop_;
  std::function<void()> onDismiss_;
  std::unique_ptr<HostedContent> content_;
  std::unique_ptr<Objects> objects_;
};

}  // namespace quillmark
