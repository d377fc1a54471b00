#include "app/desktop/gtk_tip_host_linux.h"

#include <cmath>

#include "app/desktop/gtk_panel_host_linux.h"

namespace quillmark {

GtkFirstRunTipHost::GtkFirstRunTipHost(ContentFactory makeContent, MainLoop& loop,
                                       std::function<void()> onDismiss)
    : makeContent_(std::move(makeContent)), loop_(loop), onDismiss_(std::move(onDismiss)) {}

GtkFirstRunTipHost::~GtkFirstRunTipHost() {
  window_.reset();
  content_.reset();
}

bool GtkFirstRunTipHost::build() {
  dismiss();
  if (!makeContent_) return false;
  // The card's button runs inside the card's own event handling: dismiss on the next turn.
  content_ = makeContent_([this] { loop_.post(onDismiss_); });
  if (!content_) return false;
  window_ = std::make_unique<GtkCardWindow>(*content_, false);
  return true;
}

void GtkFirstRunTipHost::show(ScreenPoint origin) {
  if (!window_) return;
  window_->moveTo(static_cast<int>(std::lround(origin.x)),
                  static_cast<int>(std::lround(toGdkTop(origin, FirstRunTipWindow::kHeight))));
  window_->present();
}

void GtkFirstRunTipHost::dismiss() {
  if (!window_) return;
  window_->hide();
  // Released on the next turn, in case this runs inside the card's own event handling.
  struct Retired {
    std::unique_ptr<HostedContent> content;
    std::unique_ptr<GtkCardWindow> window;  // destroyed first: it refers to the content
  };
  auto retired = std::make_shared<Retired>(Retired{std::move(content_), std::move(window_)});
  loop_.post([retired] {});
}

}  // namespace quillmark
