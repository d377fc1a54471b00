#pragma once

#include <memory>

#include "views/face_context.h"
#include "views/view.h"

namespace quillmark {

// The three faces of the panel, each built whole from the model and the view state into a view
// of `size` (400 x 660 points below the arrow). Rebuilt whenever either changes.
[[nodiscard]] std::unique_ptr<View> buildGlassFace(FaceContext& ctx, Size size);
[[nodiscard]] std::unique_ptr<View> buildVitalsFace(FaceContext& ctx, Size size);
[[nodiscard]] std::unique_ptr<View> buildSettingsFace(FaceContext& ctx, Size size);

// The header, the scrolling body and the dialogs every face shares. `trailing` is the gear (or
// the back button on the settings face).
struct FaceFrame {
  std::unique_ptr<View> face;
  View* body;  // a VStack inside the scroll view
};
[[nodiscard]] FaceFrame makeFaceFrame(FaceContext& ctx, Size size, std::string title, std::string caption,
                                      bool settings);

}  // namespace quillmark
