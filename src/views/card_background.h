#pragma once

#include "menubar/panel_card_shape.h"
#include "views/canvas.h"
#include "views/theme.h"

namespace quillmark {

// The outline of an arrowed card (the panel, the first-run tip) as a path: the body's rounded
// corners and the arrow's base joined to the top edge by small curves instead of sharp corners.
[[nodiscard]] Path cardPath(const PanelCardShape& shape);

// The skin's background of such a card: a vertical gradient with a hairline border.
void paintCardBackground(Canvas& canvas, const PanelCardShape& shape, const Theme& theme);

}  // namespace quillmark
