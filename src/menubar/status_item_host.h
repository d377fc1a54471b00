#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "menubar/menu_model.h"
#include "menubar/screen_geometry.h"

namespace quillmark {

// Which button went up on the status item; `none` when the platform could not tell (treated as
// a left click).
enum class StatusClick { none, left, right };

// The platform's side of the status item: the button in the menu bar, the small window it sits
// in, and the screen. The controller decides what to show; the host only shows it. A host may
// have no button (the status bar refused one) or no window yet; then the reads come back empty
// and the writes do nothing. Main thread only.
class StatusItemHost {
 public:
  virtual ~StatusItemHost() = default;

  [[nodiscard]] virtual bool hasButton() const = 0;
  [[nodiscard]] virtual bool isVisible() const = 0;
  // Routes left and right mouse-up on the button (and nothing else) to onClick.
  virtual void setClickHandler(std::function<void(StatusClick)> onClick) = 0;
  virtual void setToolTip(const std::string& text) = 0;

  // Icon mode: no title, the status icon alone, scaled down to fit, a fixed 22-point item.
  virtual void showIconOnly() = 0;
  // Text mode: the item as wide as its content, the icon leading the title.
  virtual void showIconWithText() = 0;
  [[nodiscard]] virtual std::string title() const = 0;
  virtual void setTitle(const std::string& title) = 0;

  [[nodiscard]] virtual std::optional<ScreenRect> buttonBounds() const = 0;
  // The status item's own window, and the whole frame of the main screen.
  [[nodiscard]] virtual std::optional<ScreenRect> windowFrame() const = 0;
  virtual void setWindowFrame(const ScreenRect& frame) = 0;
  [[nodiscard]] virtual std::optional<ScreenRect> mainScreenFrame() const = 0;
  // The button's rectangle on screen and its screen's visible frame, for hanging cards under it.
  [[nodiscard]] virtual AnchorGeometry anchor() const = 0;

  // Pops the menu up just below the button and returns when it closes; a chosen entry is passed to
  // onChoose (possibly before this returns).
  virtual void popUpMenu(const std::vector<MenuEntry>& menu,
                         std::function<void(MenuAction, const MenuValue&)> onChoose) = 0;
};

}  // namespace quillmark
