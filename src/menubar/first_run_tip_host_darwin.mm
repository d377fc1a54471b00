#include "menubar/first_run_tip_host_darwin.h"

#include "menubar/card_panel_darwin.h"
#include "menubar/hosted_content_view_darwin.h"

namespace quillmark {

struct DarwinFirstRunTipHost::Objects {
  QMCardPanel* panel = nil;
  QMHostedContentView* view = nil;
};

DarwinFirstRunTipHost::DarwinFirstRunTipHost(ContentFactory makeContent, MainLoop& loop,
                                             std::function<void()> onDismiss)
    : makeContent_(std::move(makeContent)),
      loop_(loop),
      onDismiss_(std::move(onDismiss)),
      objects_(std::make_unique<Objects>()) {}

DarwinFirstRunTipHost::~DarwinFirstRunTipHost() { dismiss(); }

bool DarwinFirstRunTipHost::build() {
  dismiss();
  content_ = makeContent_ ? makeContent_([this] { loop_.post(onDismiss_); }) : nullptr;
  // An empty card would explain nothing and spend the only first run.
  if (!content_) return false;
  QMCardPanel* panel = [QMCardPanel cardWithWidth:FirstRunTipWindow::kWidth
                                           height:FirstRunTipWindow::kHeight];
  QMHostedContentView* view = [[QMHostedContentView alloc] initWithContent:content_.get()];
  panel.contentView = view;
  objects_->view = view;
  objects_->panel = panel;
  return true;
}

void DarwinFirstRunTipHost::show(ScreenPoint origin) {
  QMCardPanel* panel = objects_->panel;
  if (!panel) return;
  [panel setFrameOrigin:NSMakePoint(origin.x, origin.y)];
  // In front, but neither key nor activating: the user's work keeps the keyboard.
  [panel orderFrontRegardless];
}

void DarwinFirstRunTipHost::dismiss() {
  if (!objects_->panel) {
    content_.reset();
    return;
  }
  [objects_->view detach];
  [objects_->panel orderOut:nil];
  // Released on the next turn, in case this runs inside the card's own event handling.
  auto retired = std::make_shared<Objects>(*objects_);
  std::shared_ptr<HostedContent> content = std::move(content_);
  loop_.post([retired, content] { retired->panel.contentView = nil; });
  *objects_ = Objects{};
}

}  // namespace quillmark
