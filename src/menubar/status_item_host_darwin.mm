#include "menubar/status_item_host_darwin.h"

#include "menubar/card_panel_darwin.h"
#include "menubar/status_icon.h"

using quillmark::MenuAction;
using quillmark::MenuValue;
using quillmark::StatusClick;

// The status button's target: tells a left from a right click by the event being handled.
@interface QMStatusTarget : NSObject
- (void)setHandler:(std::function<void(StatusClick)>)handler;
- (void)statusItemClicked:(id)sender;
@end

@implementation QMStatusTarget {
  std::function<void(StatusClick)> _handler;
}
- (void)setHandler:(std::function<void(StatusClick)>)handler {
  _handler = std::move(handler);
}
- (void)statusItemClicked:(id)sender {
  (void)sender;
  NSEvent* event = NSApp.currentEvent;
  const StatusClick click = !event                                  ? StatusClick::none
                            : event.type == NSEventTypeRightMouseUp ? StatusClick::right
                                                                    : StatusClick::left;
  if (_handler) _handler(click);
}
@end

// The target of every menu entry: the action is the item's tag, the value its represented object
// (a string or a number, converted back for the controller's type checks).
@interface QMMenuTarget : NSObject
- (void)setHandler:(std::function<void(MenuAction, const MenuValue&)>)handler;
- (void)choose:(NSMenuItem*)item;
@end

@implementation QMMenuTarget {
  std::function<void(MenuAction, const MenuValue&)> _handler;
}
- (void)setHandler:(std::function<void(MenuAction, const MenuValue&)>)handler {
  _handler = std::move(handler);
}
- (void)choose:(NSMenuItem*)item {
  MenuValue value;
  id object = item.representedObject;
  if ([object isKindOfClass:[NSString class]]) value = quillmark::toStdString((NSString*)object);
  if ([object isKindOfClass:[NSNumber class]]) value = ((NSNumber*)object).doubleValue;
  if (_handler) _handler(static_cast<MenuAction>(item.tag), value);
}
@end

namespace quillmark {
namespace {

constexpr CGFloat kIconModeLength = 22;

NSImage* makeStatusIcon(const L10n& l10n) {
  NSImage* image = [NSImage imageWithSize:NSMakeSize(StatusIcon::kWidth, StatusIcon::kHeight)
                                  flipped:NO
                           drawingHandler:^BOOL(NSRect destination) {
                             (void)destination;
                             [NSColor.blackColor setStroke];
                             for (const auto& points : StatusIcon::kPaths) {
                               NSBezierPath* path = [NSBezierPath bezierPath];
                               path.lineWidth = StatusIcon::kLineWidth;
                               path.lineCapStyle = NSLineCapStyleRound;
                               path.lineJoinStyle = NSLineJoinStyleRound;
                               [path moveToPoint:NSMakePoint(points.front().x, points.front().y)];
                               for (const StatusIcon::Point& point : points.subspan(1))
                                 [path lineToPoint:NSMakePoint(point.x, point.y)];
                               [path stroke];
                             }
                             return YES;
                           }];
  // A template image is tinted by the system for light and dark menu bars.
  [image setTemplate:YES];
  image.accessibilityDescription = toNSString(L(l10n, "menu.title"));
  return image;
}

NSMenu* makeMenu(const std::vector<MenuEntry>& entries, QMMenuTarget* target) {
  NSMenu* menu = [[NSMenu alloc] initWithTitle:@""];
  // Entries are enabled or not as the model says, not by AppKit's validation.
  menu.autoenablesItems = NO;
  for (const MenuEntry& entry : entries) {
    if (entry.separator) {
      [menu addItem:[NSMenuItem separatorItem]];
      continue;
    }
    const bool acts = entry.action != MenuAction::none;
    NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:toNSString(entry.title)
                                                  action:acts ? @selector(choose:) : nil
                                           keyEquivalent:toNSString(entry.keyEquivalent)];
    item.target = acts ? target : nil;
    item.tag = static_cast<NSInteger>(entry.action);
    if (const auto* raw = std::get_if<std::string>(&entry.value)) item.representedObject = toNSString(*raw);
    if (const auto* number = std::get_if<double>(&entry.value))
      item.representedObject = [NSNumber numberWithDouble:*number];
    item.state = entry.checked ? NSControlStateValueOn : NSControlStateValueOff;
    item.enabled = entry.enabled;
    if (!entry.submenu.empty()) item.submenu = makeMenu(entry.submenu, target);
    [menu addItem:item];
  }
  return menu;
}

}  // namespace

struct DarwinStatusItemHost::Objects {
  NSStatusItem* item = nil;
  QMStatusTarget* target = nil;
  NSImage* icon = nil;
};

DarwinStatusItemHost::DarwinStatusItemHost(const L10n& l10n)
    : l10n_(l10n), objects_(std::make_unique<Objects>()) {
  objects_->item = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
  objects_->target = [[QMStatusTarget alloc] init];
  objects_->icon = makeStatusIcon(l10n_);
}

DarwinStatusItemHost::~DarwinStatusItemHost() = default;

bool DarwinStatusItemHost::hasButton() const { return objects_->item.button != nil; }

bool DarwinStatusItemHost::isVisible() const { return objects_->item.visible; }

void DarwinStatusItemHost::setClickHandler(std::function<void(StatusClick)> onClick) {
  NSStatusBarButton* button = objects_->item.button;
  if (!button) return;
  [objects_->target setHandler:std::move(onClick)];
  button.target = objects_->target;
  button.action = @selector(statusItemClicked:);
  [button sendActionOn:NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp];
}

void DarwinStatusItemHost::setToolTip(const std::string& text) {
  objects_->item.button.toolTip = toNSString(text);
}

void DarwinStatusItemHost::showIconOnly() {
  NSStatusBarButton* button = objects_->item.button;
  if (!button) return;
  button.title = @"";
  button.image = objects_->icon;
  button.imagePosition = NSImageOnly;
  button.imageScaling = NSImageScaleProportionallyDown;
  objects_->item.length = kIconModeLength;
}

void DarwinStatusItemHost::showIconWithText() {
  NSStatusBarButton* button = objects_->item.button;
  if (!button) return;
  objects_->item.length = NSVariableStatusItemLength;
  button.image = objects_->icon;
  button.imagePosition = NSImageLeading;
}

std::string DarwinStatusItemHost::title() const { return toStdString(objects_->item.button.title); }

void DarwinStatusItemHost::setTitle(const std::string& title) {
  if (NSStatusBarButton* button = objects_->item.button) button.title = toNSString(title);
}

std::optional<ScreenRect> DarwinStatusItemHost::buttonBounds() const {
  NSStatusBarButton* button = objects_->item.button;
  if (!button) return std::nullopt;
  return toScreenRect(button.bounds);
}

std::optional<ScreenRect> DarwinStatusItemHost::windowFrame() const {
  NSWindow* window = objects_->item.button.window;
  if (!window) return std::nullopt;
  return toScreenRect(window.frame);
}

void DarwinStatusItemHost::setWindowFrame(const ScreenRect& frame) {
  NSWindow* window = objects_->item.button.window;
  if (window) [window setFrameOrigin:NSMakePoint(frame.x, frame.y)];
}

std::optional<ScreenRect> DarwinStatusItemHost::mainScreenFrame() const {
  NSScreen* screen = NSScreen.mainScreen;
  if (!screen) return std::nullopt;
  return toScreenRect(screen.frame);
}

AnchorGeometry DarwinStatusItemHost::anchor() const {
  AnchorGeometry geometry;
  NSStatusBarButton* button = objects_->item.button;
  NSWindow* window = button.window;
  if (!button || !window) return geometry;
  geometry.item = toScreenRect([window convertRectToScreen:[button convertRect:button.bounds toView:nil]]);
  NSScreen* screen = window.screen ? window.screen : NSScreen.mainScreen;
  if (screen) geometry.visibleFrame = toScreenRect(screen.visibleFrame);
  return geometry;
}

void DarwinStatusItemHost::popUpMenu(const std::vector<MenuEntry>& menu,
                                     std::function<void(MenuAction, const MenuValue&)> onChoose) {
  NSStatusBarButton* button = objects_->item.button;
  if (!button) return;
  // Items hold their target weakly; this one lives until the menu, tracked synchronously, closes.
  QMMenuTarget* target = [[QMMenuTarget alloc] init];
  [target setHandler:std::move(onChoose)];
  NSMenu* built = makeMenu(menu, target);
  [built popUpMenuPositioningItem:nil atLocation:NSMakePoint(0, button.bounds.size.height + 5) inView:button];
}

}  // namespace quillmark
