#pragma once

#include <AppKit/AppKit.h>

#include <memory>

#include "menubar/status_item_host.h"
#include "settings/l10n.h"

namespace quillmark {

// The status item in the system status bar, created on construction with variable length.
// Main thread only.
class DarwinStatusItemHost final : public StatusItemHost {
 public:
  explicit DarwinStatusItemHost(const L10n& l10n);
  ~DarwinStatusItemHost() override;
  DarwinStatusItemHost(const DarwinStatusItemHost&) = delete;
  DarwinStatusItemHost& operator=(const DarwinStatusItemHost&) = delete;

  bool hasButton() const override;
  bool isVisible() const override;
  void setClickHandler(std::function<void(StatusClick)> onClick) override;
  void setToolTip(const std::string& text) override;
  void showIconOnly() override;
  void showIconWithText() override;
  std::string title() const override;
  void setTitle(const std::string& title) override;
  std::optional<ScreenRect> buttonBounds() const override;
  std::optional<ScreenRect> windowFrame() const override;
  void setWindowFrame(const ScreenRect& frame) override;
  std::optional<ScreenRect> mainScreenFrame() const override;
  AnchorGeometry anchor() const override;
  void popUpMenu(const std::vector<MenuEntry>& menu,
                 std::function<void(MenuAction, const MenuValue&)> onChoose) override;

 private:
  struct Objects;  // the Objective-C objects, kept out of this header's C++ users' way
  const L10n& l10n_;
  std::unique_ptr<Objects> objects_;
};

}  // namespace quillmark
