#include "settings/l10n.h"
#include "views/face_parts.h"
#include "views/faces.h"
#include "views/scroll_view.h"

namespace quillmark {
namespace {

constexpr double kHeaderHeight = 44;

}  // namespace

FaceFrame makeFaceFrame(FaceContext& ctx, Size size, std::string title, std::string caption, bool settings) {
  const Theme& t = ctx.theme;
  auto face = std::make_unique<View>();
  face->frame = {0, 0, size.width, size.height};
  auto& header = face->make<HStack>(8);
  header.frame = {16, 10, size.width - 28, 28};
  if (settings) {
    header.make<IconButton>(t, IconButton::Glyph::back, [&ctx] { ctx.flipTo(false); }).id = "back";
  }
  FaceParts::text(header, t, std::move(title), t.titleSize, t.text, FontWeight::bold).id = "title";
  if (!caption.empty()) {
    auto& c = header.make<Label>(
        std::move(caption),
        TextStyle{{t.captionSize, FontWeight::regular, true}, t.secondaryText, TextAlign::trailing});
    c.fixedWidth = 170;
    c.id = "selfUsage";
  }
  if (settings) {
    auto& done = header.make<Button>(
        t, L("settings.done"), [&ctx] { ctx.flipTo(false); }, Button::Role::prominent);
    done.fixedWidth = 84;
    done.id = "done";
  } else {
    header.make<IconButton>(t, IconButton::Glyph::gear, [&ctx] { ctx.flipTo(true); }).id = "gear";
  }
  auto body = std::make_unique<VStack>(10, 12);
  View* bodyPtr = body.get();
  auto& scroll = face->make<ScrollView>(std::move(body));
  scroll.id = "scroll";
  scroll.frame = {0, kHeaderHeight, size.width, size.height - kHeaderHeight - 4};
  return {std::move(face), bodyPtr};
}

}  // namespace quillmark
