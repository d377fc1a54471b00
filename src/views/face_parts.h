#pragma once

#include <optional>
#include <string>

#include "views/controls.h"
#include "views/face_context.h"
#include "views/view.h"

namespace quillmark {

// A rounded panel section with a faint fill: a VStack with padding.
class Card : public VStack {
 public:
  Card(const Theme& theme, double spacing = 6) : VStack(spacing, 10), theme_(theme) {}
  void paint(Canvas& canvas) override;

 private:
  const Theme& theme_;
};

// Small builders the faces share.
namespace FaceParts {

Label& text(View& into, const Theme& theme, std::string s, double size, Color color,
            FontWeight weight = FontWeight::regular, Label::Overflow overflow = Label::Overflow::shrink);
// A line "title ........ value", the value given `valueWidth` points (0: half the line).
HStack& row(View& into, const Theme& theme, std::string title, std::string value, double valueWidth = 0,
            std::optional<Color> valueColor = std::nullopt);
// A card's heading: the title on the left, an optional big figure on the right.
HStack& heading(View& into, const Theme& theme, std::string title, std::string figure = {},
                std::optional<Color> figureColor = std::nullopt);
// The paused-applications banner (nothing when none are paused).
void pausedBanner(View& into, FaceContext& ctx);
// The diagnostics card (nothing without insights).
void diagnostics(View& into, FaceContext& ctx);
// Quillmark's own CPU and memory, for a face's corner.
std::string selfUsage(const PanelModel& model);
// The confirmation dialogs over a face when one is pending.
void dialogs(View& face, FaceContext& ctx);
// Starts a termination: at once for a pre-authorised name, else through the confirmation.
void requestKill(FaceContext& ctx, std::int32_t pid, const std::string& name);

}  // namespace FaceParts
}  // namespace quillmark
