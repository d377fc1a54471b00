#pragma once

#include <functional>
#include <memory>

#include "app/desktop/gtk_card_window_linux.h"
#include "base/main_loop.h"
#include "menubar/first_run_tip_window.h"

namespace quillmark {

// The first-run card's window on Linux: a GtkCardWindow that appears in front without taking the
// keyboard, its content made by the factory with the dismissal it should call. Main thread only.
class GtkFirstRunTipHost final : public FirstRunTipHost {
 public:
  using ContentFactory = std::function<std::unique_ptr<HostedContent>(std::function<void()> onDismiss)>;

  GtkFirstRunTipHost(ContentFactory makeContent, MainLoop& loop, std::function<void()> onDismiss);
  ~GtkFirstRunTipHost() override;
  GtkFirstRunTipHost(const GtkFirstRunTipHost&) = delete;
  GtkFirstRunTipHost& operator=(const GtkFirstRunTipHost&) = delete;

  [[nodiscard]] bool build() override;
  void show(ScreenPoint origin) override;
  void dismiss() override;
  [[nodiscard]] bool isShown() const { return window_ != nullptr; }

 private:
  ContentFactory makeContent_;
  MainLoop& loop_;
  std::function<void()> onDismiss_;
  std::unique_ptr<HostedContent> content_;
  std::unique_ptr<GtkCardWindow> window_;
};

}  // namespace quillmark
