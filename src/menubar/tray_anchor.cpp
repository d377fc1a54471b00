#include "menubar/tray_anchor.h"

#include <algorithm>

namespace quillmark {

AnchorGeometry trayAnchor(const std::optional<ScreenPoint>& click, const MonitorArea& monitor) {
  const ScreenRect& frame = monitor.frame;
  const ScreenRect& work = monitor.workArea;
  constexpr double half = kTrayItemSize / 2;
  const bool topStrip = work.maxY() < frame.maxY();
  const bool bottomStrip = work.minY() > frame.minY();

  ScreenPoint at;
  if (click) {
    at = *click;
  } else if (topStrip) {
    at = {work.maxX() - half, (work.maxY() + frame.maxY()) / 2};
  } else if (bottomStrip) {
    at = {work.maxX() - half, (frame.minY() + work.minY()) / 2};
  } else {
    at = {frame.maxX() - half, frame.maxY() - half};
  }

  ScreenRect item{at.x - half, at.y - half, kTrayItemSize, kTrayItemSize};
  if (at.y >= work.maxY()) {
    // In the top strip: the item spans it, so its bottom is the work area's top.
    item.y = work.maxY();
    item.height = std::max(frame.maxY() - work.maxY(), 1.0);
  } else if (at.y <= work.minY()) {
    item.y = std::min(frame.minY(), work.minY() - 1);
    item.height = work.minY() - item.y;
  }
  return {item, work};
}

}  // namespace quillmark
