#include "views/first_run_tip_content.h"

#include <algorithm>

#include "menubar/first_run_tip_window.h"
#include "menubar/panel_card_shape.h"
#include "settings/l10n.h"
#include "views/card_background.h"
#include "views/controls.h"
#include "views/symbols.h"

namespace quillmark {
namespace {

constexpr double kPadding = 14;
constexpr double kTextX = 42;  // where the texts start, right of the symbols
constexpr double kTitleTop = 10;  // from the top of the body, below or above the arrow
constexpr double kTitleHeight = 24;
constexpr double kLineTop = 40;
constexpr double kLineStep = 23;
constexpr double kLineHeight = 18;
constexpr double kButtonHeight = 26;
constexpr double kButtonWidth = 120;

class SymbolView final : public View {
 public:
  SymbolView(Symbol symbol, Color ink, Color accent) : symbol_(symbol), ink_(ink), accent_(accent) {}
  void paint(Canvas& canvas) override {
    drawSymbol(canvas, symbol_, {0, 0, frame.width, frame.height}, ink_, accent_);
  }

 private:
  Symbol symbol_;
  Color ink_;
  Color accent_;
};

const Theme& themeFor(PanelSkin skin) { return skin == PanelSkin::vitals ? Theme::vitals() : Theme::glass(); }

}  // namespace

FirstRunTipContent::FirstRunTipContent(PanelAnchor& anchor, PanelSkin skin, std::function<void()> onDismiss)
    : anchor_(anchor), theme_(themeFor(skin)), onDismiss_(std::move(onDismiss)) {
  anchorToken_ = anchor_.arrowX.subscribe([this](const double&) { repaint(); });
  // A card standing on its item has the arrow underneath: the body moves up to the top edge.
  arrowBelowToken_ = anchor_.arrowBelow.subscribe([this](const bool&) {
    if (body_) body_->frame.y = bodyTop();
    repaint();
  });
  root_.frame = {0, 0, width(), height()};
  build();
}

FirstRunTipContent::~FirstRunTipContent() {
  anchor_.arrowX.unsubscribe(anchorToken_);
  anchor_.arrowBelow.unsubscribe(arrowBelowToken_);
}

double FirstRunTipContent::bodyTop() const { return anchor_.arrowBelow() ? 0 : PanelAnchor::arrowHeight; }

double FirstRunTipContent::width() const { return FirstRunTipWindow::kWidth; }
double FirstRunTipContent::height() const { return FirstRunTipWindow::kHeight; }

void FirstRunTipContent::build() {
  const Theme& t = theme_;
  const double textWidth = width() - kTextX - kPadding;
  const double bodyHeight = height() - PanelAnchor::arrowHeight;
  View& body = root_.make<View>();
  body.frame = {0, bodyTop(), width(), bodyHeight};
  body_ = &body;
  auto& gauge = body.make<SymbolView>(Symbol::gauge, t.text, t.accent);
  gauge.frame = {kPadding, kTitleTop + 2, 20, 20};
  auto& title =
      body.make<Label>(L("firstrun.title"), TextStyle{{t.titleSize - 1, FontWeight::bold}, t.text});
  title.frame = {kTextX, kTitleTop, textWidth, kTitleHeight};
  title.id = "title";

  struct Line {
    Symbol symbol;
    const char* key;
    const char* id;
  };
  constexpr Line kLines[] = {{Symbol::cursorClick, "firstrun.left", "left"},
                             {Symbol::menuCursor, "firstrun.right", "right"},
                             {Symbol::gear, "firstrun.gear", "gear"}};
  double y = kLineTop;
  for (const Line& line : kLines) {
    auto& symbol = body.make<SymbolView>(line.symbol, t.accent, t.accent);
    symbol.frame = {kPadding + 2, y + 1, 16, 16};
    auto& label = body.make<Label>(L(line.key), TextStyle{{t.bodySize - 0.5}, t.text});
    label.frame = {kTextX, y, textWidth, kLineHeight};
    label.id = line.id;
    lines_.push_back(&label);
    y += kLineStep;
  }

  auto& button = body.make<Button>(
      t, L("firstrun.dismiss"),
      [this] {
        if (onDismiss_) onDismiss_();
      },
      Button::Role::prominent);
  button.frame = {width() - kPadding - kButtonWidth, bodyHeight - 12 - kButtonHeight, kButtonWidth,
                  kButtonHeight};
  button.id = "dismiss";
}

View& FirstRunTipContent::tree(TextMeasurer& measurer) {
  if (!laidOut_) {
    // The three lines read as one list: the longest sets one size for all (each would otherwise
    // shrink on its own), down to the smallest size a label shrinks to.
    double scale = 1;
    for (Label* line : lines_) {
      const double natural = measurer.measure(line->text, line->style).width;
      if (natural > line->frame.width) scale = std::min(scale, line->frame.width / natural);
    }
    for (Label* line : lines_) line->style.font.size *= std::max(scale, 0.75);
    root_.layoutTree(measurer);
    laidOut_ = true;
  }
  return root_;
}

void FirstRunTipContent::paint(Canvas& canvas) {
  View& tree = this->tree(canvas);
  paintCardBackground(canvas, PanelCardShape::forCard(width(), height(), anchor_), theme_);
  tree.paintTree(canvas);
}

void FirstRunTipContent::repaint() const {
  if (requestRepaint) requestRepaint();
}

void FirstRunTipContent::setHovered(View* view) {
  if (view == hovered_) return;
  if (hovered_) hovered_->hovered = false;
  hovered_ = view;
  if (hovered_) hovered_->hovered = true;
  repaint();
}

bool FirstRunTipContent::pointer(const PointerEvent& event) {
  if (event.secondary) return false;
  View* hit = event.kind == PointerEvent::Kind::exited ? nullptr : root_.hitTest({event.x, event.y});
  switch (event.kind) {
    case PointerEvent::Kind::down:
      pressed_ = hit;
      if (hit) hit->pressed = true;
      repaint();
      break;
    case PointerEvent::Kind::up:
      if (View* target = pressed_) {
        pressed_ = nullptr;
        target->pressed = false;
        repaint();
        // The button's action may destroy this content: nothing after it touches a member.
        if (target == hit)
          if (auto* control = dynamic_cast<Control*>(target)) control->onClick({});
      }
      break;
    case PointerEvent::Kind::moved:
    case PointerEvent::Kind::dragged:
    case PointerEvent::Kind::exited:
      setHovered(hit);
      break;
  }
  return true;
}

bool FirstRunTipContent::editKey(EditKey key, const KeyModifiers&) {
  if (key != EditKey::enter && key != EditKey::escape) return false;
  if (onDismiss_) onDismiss_();
  return true;
}

}  // namespace quillmark
