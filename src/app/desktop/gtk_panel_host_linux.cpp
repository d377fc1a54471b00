#include "app/desktop/gtk_panel_host_linux.h"

#include <cmath>

namespace quillmark {

struct GtkPanelWindowHost::Open {
  std::unique_ptr<HostedContent> content;
  std::unique_ptr<GtkCardWindow> window;  // declared after the content: destroyed first
  Published<double>::Token arrowToken = 0;
  Published<bool>::Token belowToken = 0;
};

GtkPanelWindowHost::GtkPanelWindowHost(ContentFactory makeContent, PanelAnchor& anchor, MainLoop& loop)
    : makeContent_(std::move(makeContent)), anchor_(anchor), loop_(loop) {}

GtkPanelWindowHost::~GtkPanelWindowHost() {
  // Not inside any event handling now: everything goes at once.
  unsubscribe();
  open_.reset();
}

void GtkPanelWindowHost::unsubscribe() {
  if (!open_) return;
  anchor_.arrowX.unsubscribe(open_->arrowToken);
  anchor_.arrowBelow.unsubscribe(open_->belowToken);
}

void GtkPanelWindowHost::build() {
  destroy();
  auto open = std::make_unique<Open>();
  open->content = makeContent_ ? makeContent_() : nullptr;
  if (!open->content) return;
  open->window = std::make_unique<GtkCardWindow>(*open->content, true);
  GtkCardWindow& window = *open->window;
  std::weak_ptr<GtkPanelWindowHost*> weak = lifetime_;
  window.onFocusLost = [weak] {
    if (auto self = weak.lock(); self && (*self)->onResignKey) (*self)->onResignKey();
  };
  window.onUnusedEscape = [weak] {
    if (auto self = weak.lock(); self && (*self)->onCancel) (*self)->onCancel();
  };
  open->arrowToken = anchor_.arrowX.subscribe([&window](const double&) { window.outlineChanged(); });
  open->belowToken = anchor_.arrowBelow.subscribe([&window](const bool&) { window.outlineChanged(); });
  open_ = std::move(open);
}

bool GtkPanelWindowHost::isVisible() const { return open_ && open_->window->isVisible(); }

void GtkPanelWindowHost::moveTo(ScreenPoint origin) {
  if (!open_) return;
  open_->window->moveTo(static_cast<int>(std::lround(origin.x)),
                        static_cast<int>(std::lround(toGdkTop(origin, PanelWindowController::kHeight))));
}

void GtkPanelWindowHost::makeKeyAndOrderFront() {
  if (open_) open_->window->present();
}

void GtkPanelWindowHost::destroy() {
  if (!open_) return;
  unsubscribe();
  // The window disappears at once; it and its content are released on the next turn of the loop,
  // since a close may come from inside the window's own event handling (Escape, a click, the
  // loss of focus).
  open_->window->hide();
  std::shared_ptr<Open> retired = std::move(open_);
  loop_.post([retired] {});
}

}  // namespace quillmark
