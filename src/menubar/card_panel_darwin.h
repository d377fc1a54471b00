#pragma once

#include <AppKit/AppKit.h>

#include <string>

#include "menubar/screen_geometry.h"

// The borderless card the panel and the first-run tip are drawn on: a non-activating panel above
// normal and floating windows, transparent around its drawn shape, with a shadow, skipped by
// window cycling and always in the dark appearance. It can become key (so text fields in it take
// typing) without activating the application; Escape calls onCancel. Main thread only.
@interface QMCardPanel : NSPanel
@property(nonatomic, copy, nullable) void (^onCancel)(void);
+ (nonnull QMCardPanel*)cardWithWidth:(CGFloat)width height:(CGFloat)height;
@end

namespace quillmark {

[[nodiscard]] inline ScreenRect toScreenRect(NSRect rect) {
  return ScreenRect{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}
[[nodiscard]] inline NSRect toNSRect(const ScreenRect& rect) {
  return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}
// Text that is not valid UTF-8 (it never should be) shows as empty rather than crashing.
[[nodiscard]] inline NSString* _Nonnull toNSString(const std::string& text) {
  NSString* string = [NSString stringWithUTF8String:text.c_str()];
  return string ? string : @"";
}
[[nodiscard]] inline std::string toStdString(NSString* _Nullable text) {
  const char* utf8 = text ? text.UTF8String : nullptr;
  return utf8 ? std::string(utf8) : std::string();
}

}  // namespace quillmark
