#include "app/desktop/first_run_tip_card.h"

#include "menubar/first_run_tip_window.h"
#include "menubar/panel_card_shape.h"
#include "views/canvas.h"
#include "views/theme.h"

namespace quillmark {
namespace {

constexpr double kPadding = 16;
constexpr double kButtonWidth = 92;
constexpr double kButtonHeight = 24;

bool inside(const ContentRect& r, double x, double y) {
  return x >= r.x && x < r.x + r.width && y >= r.y && y < r.y + r.height;
}

}  // namespace

FirstRunTipCard::FirstRunTipCard(PanelAnchor& anchor, const L10n& l10n, std::function<void()> onDismiss)
    : anchor_(anchor), l10n_(l10n), onDismiss_(std::move(onDismiss)) {
  arrowToken_ = anchor_.arrowX.subscribe([this](const double&) { repaint(); });
  belowToken_ = anchor_.arrowBelow.subscribe([this](const bool&) { repaint(); });
}

FirstRunTipCard::~FirstRunTipCard() {
  anchor_.arrowX.unsubscribe(arrowToken_);
  anchor_.arrowBelow.unsubscribe(belowToken_);
}

double FirstRunTipCard::width() const { return FirstRunTipWindow::kWidth; }
double FirstRunTipCard::height() const { return FirstRunTipWindow::kHeight; }

void FirstRunTipCard::repaint() const {
  if (requestRepaint) requestRepaint();
}

ContentRect FirstRunTipCard::button() const {
  const double bodyBottom = anchor_.arrowBelow() ? height() - PanelAnchor::arrowHeight : height();
  return {width() - kPadding - kButtonWidth, bodyBottom - 12 - kButtonHeight, kButtonWidth, kButtonHeight};
}

void FirstRunTipCard::paint(Canvas& canvas) {
  const Theme& theme = Theme::glass();
  const PanelCardShape shape = PanelCardShape::forCard(width(), height(), anchor_);
  const ContentRect& b = shape.body;
  Path card;
  card.addRoundedRect({b.x, b.y, b.width, b.height}, shape.corner);
  Path arrow;
  arrow.moveTo({shape.arrowLeft.x, shape.arrowLeft.y}).lineTo({shape.arrowTip.x, shape.arrowTip.y});
  arrow.lineTo({shape.arrowRight.x, shape.arrowRight.y}).close();
  const Gradient background{
      {0, b.y}, {0, b.y + b.height}, {{0, theme.backgroundTop}, {1, theme.backgroundBottom}}};
  canvas.fill(card, background);
  canvas.stroke(card, theme.border, 1);
  canvas.fill(arrow, background);
  // The arrow's base covers the card's outline, so the two read as one shape.
  Path arrowEdges;
  arrowEdges.moveTo({shape.arrowLeft.x, shape.arrowLeft.y}).lineTo({shape.arrowTip.x, shape.arrowTip.y});
  arrowEdges.lineTo({shape.arrowRight.x, shape.arrowRight.y});
  canvas.stroke(arrowEdges, theme.border, 1);

  const double textWidth = width() - 2 * kPadding;
  double y = b.y + 14;
  const TextStyle title{{14, FontWeight::bold}, theme.text, TextAlign::leading, 0, true};
  canvas.drawText(L(l10n_, "firstrun.title"), title, {kPadding, y, textWidth, 20});
  y += 26;
  const TextStyle line{{12, FontWeight::regular}, theme.secondaryText, TextAlign::leading, 0, true};
  for (const char* key : {"firstrun.left", "firstrun.right", "firstrun.gear"}) {
    // A small accent dot stands for the platform's symbol images.
    Path dot;
    dot.addEllipse({kPadding, y + 5, 6, 6});
    canvas.fill(dot, theme.accent);
    canvas.drawText(L(l10n_, key), line, {kPadding + 14, y, textWidth - 14, 16});
    y += 19;
  }

  const ContentRect r = button();
  Path pill;
  pill.addRoundedRect({r.x, r.y, r.width, r.height}, r.height / 2);
  canvas.fill(pill, pressed_ ? theme.controlPressed : hovered_ ? theme.controlHover : theme.controlFill);
  const TextStyle label{{12, FontWeight::medium}, theme.text, TextAlign::center, 0, true};
  const double labelHeight = canvas.measure(L(l10n_, "firstrun.dismiss"), label).height;
  canvas.drawText(L(l10n_, "firstrun.dismiss"), label,
                  {r.x + 4, r.y + (r.height - labelHeight) / 2, r.width - 8, labelHeight});
}

bool FirstRunTipCard::pointer(const PointerEvent& event) {
  if (event.secondary) return false;
  const bool over = event.kind != PointerEvent::Kind::exited && inside(button(), event.x, event.y);
  const bool wasPressed = pressed_;
  if (event.kind == PointerEvent::Kind::down) pressed_ = over;
  if (event.kind == PointerEvent::Kind::up || event.kind == PointerEvent::Kind::exited) pressed_ = false;
  if (over != hovered_ || wasPressed != pressed_) {
    hovered_ = over;
    repaint();
  }
  if (event.kind == PointerEvent::Kind::up && wasPressed && over && onDismiss_) onDismiss_();
  return true;
}

bool FirstRunTipCard::editKey(EditKey key, const KeyModifiers&) {
  if (key != EditKey::enter && key != EditKey::escape) return false;
  if (onDismiss_) onDismiss_();
  return true;
}

}  // namespace quillmark
