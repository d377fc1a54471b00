#include "views/panel_root.h"

#include <algorithm>

#include "views/card_background.h"
#include "views/controls.h"
#include "views/faces.h"
#include "views/scroll_view.h"
#include "views/text_field.h"

namespace quillmark {

PanelRoot::PanelRoot(PanelActions& actions, TextMeasurer& measurer, PanelChrome chrome)
    : actions_(actions), measurer_(measurer), chrome_(chrome), animatedUntil_(chrome.clock.monotonicNow()) {
  root_.frame = {0, 0, kWidth, kBodyHeight + kArrowHeight};
  arrowToken_ = chrome_.anchor.arrowX.subscribe([this](const double&) {
    if (needsRedraw) needsRedraw();
  });
  // A card standing on its item has the arrow underneath: the faces move up to the top edge.
  arrowBelowToken_ = chrome_.anchor.arrowBelow.subscribe([this](const bool&) { markChanged(); });
  flipToken_ = chrome_.flip.flipped.subscribe([this](const bool&) {
    // The other face has other controls: Tab starts again from its first.
    setFocused(nullptr);
    markChanged();
  });
}

PanelRoot::~PanelRoot() {
  chrome_.anchor.arrowX.unsubscribe(arrowToken_);
  chrome_.anchor.arrowBelow.unsubscribe(arrowBelowToken_);
  chrome_.flip.flipped.unsubscribe(flipToken_);
}

const Theme& PanelRoot::theme() const {
  return model_.skin == PanelSkin::vitals ? Theme::vitals() : Theme::glass();
}

void PanelRoot::setModel(PanelModel model) {
  model_ = std::move(model);
  markChanged();
}

void PanelRoot::markChanged() {
  stale_ = true;
  if (needsRedraw) needsRedraw();
}

// Input goes to the face the card is turning to, at once.
View* PanelRoot::activeFace() const { return chrome_.flip.flipped() ? back_ : front_; }

void PanelRoot::rebuild() {
  // What the user is in the middle of survives the rebuild: scroll positions, the search cursor.
  double frontScroll = 0, backScroll = 0;
  if (front_)
    if (auto* s = dynamic_cast<ScrollView*>(front_->findById("scroll"))) frontScroll = s->offset();
  if (back_)
    if (auto* s = dynamic_cast<ScrollView*>(back_->findById("scroll"))) backScroll = s->offset();
  std::optional<TextField::Editing> editing;
  if (auto* field = dynamic_cast<TextField*>(focused_)) editing = field->editing();
  // A press in progress survives a tick that rebuilds the faces, found again by its id.
  const std::string pressedId = pressed_ ? pressed_->id : std::string();
  hovered_ = pressed_ = focused_ = nullptr;

  root_.clearChildren();  // the old views hold the old context: they go first
  ctx_.emplace(FaceContext{model_, state_, actions_, theme(), [this] { markChanged(); },
                           [this](bool toSettings) { showSettings(toSettings); },
                           [this](const std::string& s) {
                             if (copyToClipboard) copyToClipboard(s);
                           }});
  const Size faceSize{kWidth, kBodyHeight};
  auto front =
      model_.skin == PanelSkin::vitals ? buildVitalsFace(*ctx_, faceSize) : buildGlassFace(*ctx_, faceSize);
  auto back = buildSettingsFace(*ctx_, faceSize);
  front->frame.y = back->frame.y = faceTop();
  front_ = &root_.add(std::move(front));
  back_ = &root_.add(std::move(back));
  root_.layoutTree(measurer_);
  if (auto* s = dynamic_cast<ScrollView*>(front_->findById("scroll"))) s->setOffset(frontScroll);
  if (auto* s = dynamic_cast<ScrollView*>(back_->findById("scroll"))) s->setOffset(backScroll);

  View* face = activeFace();
  setFocused(resolveFocusPath(face, focusPath_));
  if (auto* field = dynamic_cast<TextField*>(focused_); field && editing) field->restore(*editing);
  // A dialog holds the keyboard: focus stays on one of its buttons or on the dialog itself.
  if (View* dialog = face->findById("dialog"); dialog && !isInside(focused_, dialog)) setFocused(dialog);
  if (lastPointer_.x >= 0) setHovered(face->hitTest(toFace(lastPointer_)), true);
  if (!pressedId.empty()) {
    pressed_ = face->findById(pressedId);
    if (pressed_) pressed_->pressed = true;
  }
  stale_ = false;
}

void PanelRoot::stepAnimations() {
  const double now = chrome_.clock.monotonicNow();
  // A long pause between frames (the panel was idle) does not count as animation time.
  const double elapsed = std::min(now - animatedUntil_, 0.25);
  animatedUntil_ = now;
  if (state_.expand.settled() || elapsed <= 0) return;
  state_.expand.advance(elapsed);
  stale_ = true;
}

void PanelRoot::ensureBuilt() {
  stepAnimations();
  if (stale_) rebuild();
}

View& PanelRoot::tree() {
  ensureBuilt();
  return root_;
}

double PanelRoot::faceTop() const { return chrome_.anchor.arrowBelow() ? 0 : kArrowHeight; }

Point PanelRoot::toFace(Point p) const { return {p.x, p.y - faceTop()}; }

void PanelRoot::setHovered(View* view, bool quietly) {
  if (view == hovered_) return;
  if (hovered_) hovered_->hovered = false;
  hovered_ = view;
  if (hovered_) hovered_->hovered = true;
  if (!quietly && needsRedraw) needsRedraw();
}

void PanelRoot::setFocused(View* view) {
  if (view && !view->focusable()) view = nullptr;
  if (focused_) focused_->focused = focused_->focusRingShown = false;
  focused_ = view;
  if (focused_) {
    focused_->focused = true;
    focused_->focusRingShown = focusRingVisible_;
    focusPath_ = focusPathOf(focused_, activeFace());
  } else {
    focusPath_.clear();
  }
}

bool PanelRoot::isInside(const View* view, const View* ancestor) {
  for (const View* v = view; v; v = v->parent())
    if (v == ancestor) return true;
  return false;
}

// A focused view is found again after a rebuild by its path from the face: each step is the
// child's id, or its index among its siblings where it has none. Process rows carry their pid in
// their id, so a button keeps its row's focus when the rows reorder.
std::vector<std::string> PanelRoot::focusPathOf(const View* view, const View* face) {
  std::vector<std::string> path;
  for (const View* v = view; v && v != face; v = v->parent()) {
    if (!v->parent()) return {};  // not on this face
    if (!v->id.empty()) {
      path.push_back(v->id);
      continue;
    }
    const auto& siblings = v->parent()->children();
    const auto it =
        std::find_if(siblings.begin(), siblings.end(), [v](const auto& c) { return c.get() == v; });
    // Appended rather than "#" + ...: gcc 12 at -O3 warns falsely (-Wrestrict) on the latter.
    std::string step(1, '#');
    step.append(std::to_string(it - siblings.begin()));
    path.push_back(std::move(step));
  }
  std::reverse(path.begin(), path.end());
  return path;
}

View* PanelRoot::resolveFocusPath(View* face, const std::vector<std::string>& path) {
  if (path.empty()) return nullptr;
  View* v = face;
  for (const std::string& step : path) {
    const auto& children = v->children();
    View* next = nullptr;
    if (step.starts_with('#')) {
      const std::size_t index = std::stoul(step.substr(1));
      if (index < children.size()) next = children[index].get();
    } else {
      for (const auto& c : children)
        if (c->id == step) next = c.get();
    }
    if (!next) return nullptr;
    v = next;
  }
  return v;
}

void PanelRoot::collectFocusable(View& view, std::vector<View*>& out) {
  for (const auto& child : view.children()) {
    if (!child->visible || child->frame.height <= 0) continue;
    if (child->focusable()) out.push_back(child.get());
    collectFocusable(*child, out);
  }
}

void PanelRoot::moveFocus(bool backwards) {
  // Stacks lay their children out top to bottom and left to right, so the tree's order is the
  // order on screen. An open dialog keeps the focus among its own buttons.
  View* scope = activeFace();
  if (View* dialog = scope->findById("dialog")) scope = dialog;
  std::vector<View*> order;
  collectFocusable(*scope, order);
  if (order.empty()) return;
  const auto n = static_cast<std::ptrdiff_t>(order.size());
  const auto at = std::find(order.begin(), order.end(), focused_) - order.begin();
  std::ptrdiff_t next = 0;
  if (at == n)
    next = backwards ? n - 1 : 0;
  else
    next = (at + (backwards ? n - 1 : 1)) % n;
  focusRingVisible_ = true;
  setFocused(order[static_cast<std::size_t>(next)]);
  scrollIntoView(*focused_);
  if (needsRedraw) needsRedraw();
}

void PanelRoot::scrollIntoView(View& view) {
  constexpr double kMargin = 8;
  for (View* v = view.parent(); v; v = v->parent()) {
    auto* scroll = dynamic_cast<ScrollView*>(v);
    if (!scroll) continue;
    const double top = view.originIn(&scroll->content()).y;
    const double bottom = top + view.frame.height;
    if (top < scroll->offset()) scroll->setOffset(top - kMargin);
    if (bottom > scroll->offset() + scroll->frame.height)
      scroll->setOffset(bottom - scroll->frame.height + kMargin);
    return;
  }
}

void PanelRoot::pointer(const ViewPointerEvent& event) {
  ensureBuilt();
  lastPointer_ = event.kind == ViewPointerEvent::Kind::leave ? Point{-1, -1} : event.location;
  View* face = activeFace();
  View* hit = event.kind == ViewPointerEvent::Kind::leave ? nullptr : face->hitTest(toFace(event.location));
  const auto local = [&](View* v) {
    const Point o = v->originIn(face);
    const Point f = toFace(event.location);
    return ViewPointerEvent{event.kind, {f.x - o.x, f.y - o.y}};
  };
  switch (event.kind) {
    case ViewPointerEvent::Kind::down:
      pressed_ = hit;
      if (hit) {
        hit->pressed = true;
        hit->onPointer(local(hit));
      }
      // The pointer hides the keyboard's focus ring until Tab is used again.
      focusRingVisible_ = false;
      if (focused_) focused_->focusRingShown = false;
      if (!hit || hit->focusOnClick()) setFocused(hit);
      break;
    case ViewPointerEvent::Kind::move:
      if (pressed_) pressed_->onPointer(local(pressed_));
      setHovered(hit);
      break;
    case ViewPointerEvent::Kind::up:
      if (View* target = pressed_) {
        pressed_ = nullptr;
        target->pressed = false;
        target->onPointer(local(target));
        // A click completes only where it began. The handler may rebuild the tree.
        if (target == hit)
          if (auto* control = dynamic_cast<Control*>(target)) control->onClick(local(target).location);
      }
      break;
    case ViewPointerEvent::Kind::leave:
      setHovered(nullptr);
      break;
  }
  // A move redraws only when it changed the hover (setHovered asks) or drags a control (which
  // asks for itself); presses and releases change how the control looks.
  const bool pressOrRelease =
      event.kind == ViewPointerEvent::Kind::down || event.kind == ViewPointerEvent::Kind::up;
  if (pressOrRelease && needsRedraw) needsRedraw();
}

void PanelRoot::scroll(const ViewScrollEvent& event) {
  ensureBuilt();
  // The innermost view under the pointer that can scroll takes it.
  View* face = activeFace();
  std::vector<View*> chain;
  Point p = toFace(event.location);
  for (View* v = face; v;) {
    chain.push_back(v);
    View* next = nullptr;
    const Point inner{p.x - v->contentOffset.x, p.y - v->contentOffset.y};
    for (auto it = v->children().rbegin(); it != v->children().rend(); ++it) {
      if ((*it)->visible && (*it)->frame.contains(inner)) {
        next = it->get();
        p = {inner.x - next->frame.x, inner.y - next->frame.y};
        break;
      }
    }
    v = next;
  }
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    if ((*it)->onScroll(event)) return;
  }
}

bool PanelRoot::key(const ViewKeyEvent& event) {
  ensureBuilt();
  if (event.key == Key::tab) {
    moveFocus(event.shift);
    return true;
  }
  // A key the focused view leaves goes to its containers (Enter and Escape reach a dialog from
  // its focused button).
  for (View* v = focused_; v && v != &root_; v = v->parent())
    if (v->onKey(event)) return true;
  return false;
}

void PanelRoot::text(const ViewTextEvent& event) {
  ensureBuilt();
  // Without a text field a typed space presses the focused control.
  if (!event.composing && event.text == " " && !dynamic_cast<TextField*>(focused_)) {
    key({Key::space});
    return;
  }
  if (focused_) focused_->onText(event);
}

bool PanelRoot::animating() const { return !state_.expand.settled() || chrome_.flip.isTurning(); }

void PanelRoot::paintCard(Canvas& canvas) const {
  const Size s = size();
  paintCardBackground(canvas, PanelCardShape::forCard(s.width, s.height, chrome_.anchor), theme());
}

void PanelRoot::paint(Canvas& canvas) {
  ensureBuilt();
  paintCard(canvas);
  // The flip turns about the vertical axis: each face narrows to its edge and the other opens.
  const FlipPose pose = chrome_.flip.pose();
  View* face = pose.showsBack ? back_ : front_;
  canvas.save();
  canvas.translate(kWidth / 2, 0);
  canvas.scaleBy(std::max(pose.widthScale, 0.001), 1);
  canvas.translate(-kWidth / 2, 0);
  face->paintTree(canvas);
  canvas.restore();
}

}  // namespace quillmark
