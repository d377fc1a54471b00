#include "menubar/panel_window_host_darwin.h"

#include "menubar/card_panel_darwin.h"
#include "menubar/hosted_content_view_darwin.h"

// The panel's window delegate: passes the loss of key status on to the controller.
@interface QMPanelDelegate : NSObject <NSWindowDelegate>
- (void)setOnResignKey:(std::function<void()>)handler;
@end

@implementation QMPanelDelegate {
  std::function<void()> _onResignKey;
}
- (void)setOnResignKey:(std::function<void()>)handler {
  _onResignKey = std::move(handler);
}
- (void)windowDidResignKey:(NSNotification*)notification {
  (void)notification;
  if (_onResignKey) _onResignKey();
}
@end

namespace quillmark {

struct DarwinPanelWindowHost::Objects {
  QMCardPanel* panel = nil;
  QMHostedContentView* view = nil;
  QMPanelDelegate* delegate = nil;
};

DarwinPanelWindowHost::DarwinPanelWindowHost(ContentFactory makeContent, MainLoop& loop)
    : makeContent_(std::move(makeContent)), loop_(loop), objects_(std::make_unique<Objects>()) {}

DarwinPanelWindowHost::~DarwinPanelWindowHost() { destroy(); }

void DarwinPanelWindowHost::build() {
  content_ = makeContent_ ? makeContent_() : nullptr;
  QMCardPanel* panel = [QMCardPanel cardWithWidth:PanelWindowController::kWidth
                                           height:PanelWindowController::kHeight];
  std::weak_ptr<DarwinPanelWindowHost*> weak = lifetime_;
  panel.onCancel = ^{
    if (auto self = weak.lock(); self && (*self)->onCancel) (*self)->onCancel();
  };
  QMPanelDelegate* delegate = [[QMPanelDelegate alloc] init];
  [delegate setOnResignKey:[weak] {
    if (auto self = weak.lock(); self && (*self)->onResignKey) (*self)->onResignKey();
  }];
  panel.delegate = delegate;
  if (content_) {
    QMHostedContentView* view = [[QMHostedContentView alloc] initWithContent:content_.get()];
    panel.contentView = view;
    [panel makeFirstResponder:view];
    objects_->view = view;
    // The view's redraw, run at the display's pace while the content animates.
    pump_ = std::make_unique<FramePump>(loop_, *content_, content_->requestRepaint);
  }
  objects_->panel = panel;
  objects_->delegate = delegate;
}

bool DarwinPanelWindowHost::isVisible() const { return objects_->panel && objects_->panel.visible; }

void DarwinPanelWindowHost::moveTo(ScreenPoint origin) {
  [objects_->panel setFrameOrigin:NSMakePoint(origin.x, origin.y)];
}

void DarwinPanelWindowHost::makeKeyAndOrderFront() { [objects_->panel makeKeyAndOrderFront:nil]; }

void DarwinPanelWindowHost::destroy() {
  QMCardPanel* panel = objects_->panel;
  if (!panel) return;
  // No delegate call or event may reach the content while it is torn down.
  panel.delegate = nil;
  panel.onCancel = nil;
  pump_.reset();
  [objects_->view detach];
  [panel close];
  // Released on the next turn of the loop: a close may come from inside the panel's own event
  // handling (Escape, a click), which must not find its window and view already freed.
  auto retired = std::make_shared<Objects>(*objects_);
  std::shared_ptr<HostedContent> content = std::move(content_);
  loop_.post([retired, content] { retired->panel.contentView = nil; });
  *objects_ = Objects{};
}

}  // namespace quillmark
