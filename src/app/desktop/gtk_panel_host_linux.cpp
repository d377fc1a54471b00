#include "app/desktop/gtk_panel_host_linux.h"

#include <cmath>

namespace quillmark {

struct GtkPanelWindowHost::Open {
  std::unique_ptr<PanelServices> services;
  std::unique_ptr<PanelContent> content;
  std::unique_ptr<GtkCardWindow> window;
  Published<double>::Token arrowToken = 0;
  Published<bool>::Token belowToken = 0;
  Published<bool>::Token flipToken = 0;
};

GtkPanelWindowHost::GtkPanelWindowHost(PanelServices::Services services, PanelAnchor& anchor,
                                       PanelFlipState& flip, MainLoop& loop)
    : services_(services), anchor_(anchor), flip_(flip), loop_(loop) {}

GtkPanelWindowHost::~GtkPanelWindowHost() {
  // Not inside any event handling now: everything goes at once.
  if (open_) {
    anchor_.arrowX.unsubscribe(open_->arrowToken);
    anchor_.arrowBelow.unsubscribe(open_->belowToken);
    flip_.flipped.unsubscribe(open_->flipToken);
    open_.reset();
  }
}

void GtkPanelWindowHost::build() {
  destroy();
  auto open = std::make_unique<Open>();
  open->services = std::make_unique<PanelServices>(services_);
  open->content = std::make_unique<PanelContent>(*open->services, *measurer_);
  PanelRoot& root = open->content->root();
  root.setArrowX(anchor_.arrowX());
  root.setArrowBelow(anchor_.arrowBelow());
  open->services->onModel([&root](const PanelModel& model) { root.setModel(model); });
  open->window = std::make_unique<GtkCardWindow>(*open->content, true);
  GtkCardWindow& window = *open->window;
  window.animating = [&root] { return root.animating(); };
  window.advance = [&root](double seconds) { root.advanceAnimations(seconds); };
  root.copyToClipboard = [&window](const std::string& text) { window.copyToClipboard(text); };

  std::weak_ptr<GtkPanelWindowHost*> weak = lifetime_;
  window.onFocusLost = [weak] {
    if (auto self = weak.lock(); self && (*self)->onResignKey) (*self)->onResignKey();
  };
  window.onUnusedEscape = [weak] {
    if (auto self = weak.lock(); self && (*self)->onCancel) (*self)->onCancel();
  };
  open->arrowToken = anchor_.arrowX.subscribe([&root, &window](const double& x) {
    root.setArrowX(x);
    window.outlineChanged();
  });
  open->belowToken = anchor_.arrowBelow.subscribe([&root, &window](const bool& below) {
    root.setArrowBelow(below);
    window.outlineChanged();
  });
  // The menu's "Settings" turns the open card over; the card's own gear turns it by itself.
  open->flipToken = flip_.flipped.subscribe([&root](const bool& flipped) {
    if (root.state().flipped == flipped) return;
    root.state().flipped = flipped;
    root.state().flip.target = flipped ? 1 : 0;
    if (root.needsRedraw) root.needsRedraw();
  });
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
  anchor_.arrowX.unsubscribe(open_->arrowToken);
  anchor_.arrowBelow.unsubscribe(open_->belowToken);
  flip_.flipped.unsubscribe(open_->flipToken);
  // The window disappears at once; it, its content and the services it shows are released on the
  // next turn of the loop, since a close may come from inside the window's own event handling
  // (Escape, a click, the loss of focus).
  open_->window->hide();
  std::shared_ptr<Open> retired = std::move(open_);
  loop_.post([retired] {});
}

}  // namespace quillmark
