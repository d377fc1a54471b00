#include "menubar/hosted_content_view_darwin.h"

#include <string>

#include "menubar/card_panel_darwin.h"

namespace {

using quillmark::EditKey;
using quillmark::HostedContent;
using quillmark::KeyModifiers;
using quillmark::PointerEvent;

// How far one notch of a mouse wheel moves the content: about one row of the process list.
constexpr double kPointsPerWheelLine = 16;

KeyModifiers modifiersOf(NSEvent* event) {
  const NSEventModifierFlags flags = event.modifierFlags;
  return KeyModifiers{(flags & NSEventModifierFlagShift) != 0, (flags & NSEventModifierFlagControl) != 0,
                      (flags & NSEventModifierFlagOption) != 0, (flags & NSEventModifierFlagCommand) != 0};
}

// The editing commands the input system sends for non-text keys, the key each one means, and
// whether it extends the selection (Shift held). Command-Left/Right send the "end of line" ones,
// the Home and End keys the "document" ones; the panel's fields have one line.
struct CommandKey {
  SEL selector;
  EditKey key;
  bool shift;
};

bool editKeyFor(SEL selector, EditKey& key, KeyModifiers& modifiers) {
  static const CommandKey table[] = {
      {@selector(cancelOperation:), EditKey::escape, false},
      {@selector(insertNewline:), EditKey::enter, false},
      {@selector(insertTab:), EditKey::tab, false},
      {@selector(insertBacktab:), EditKey::backTab, true},
      {@selector(deleteBackward:), EditKey::deleteBackward, false},
      {@selector(deleteForward:), EditKey::deleteForward, false},
      {@selector(moveLeft:), EditKey::left, false},
      {@selector(moveRight:), EditKey::right, false},
      {@selector(moveUp:), EditKey::up, false},
      {@selector(moveDown:), EditKey::down, false},
      {@selector(moveToBeginningOfLine:), EditKey::home, false},
      {@selector(moveToEndOfLine:), EditKey::end, false},
      {@selector(moveToLeftEndOfLine:), EditKey::home, false},
      {@selector(moveToRightEndOfLine:), EditKey::end, false},
      {@selector(scrollToBeginningOfDocument:), EditKey::home, false},
      {@selector(scrollToEndOfDocument:), EditKey::end, false},
      {@selector(moveLeftAndModifySelection:), EditKey::left, true},
      {@selector(moveRightAndModifySelection:), EditKey::right, true},
      {@selector(moveToBeginningOfLineAndModifySelection:), EditKey::home, true},
      {@selector(moveToEndOfLineAndModifySelection:), EditKey::end, true},
      {@selector(moveToLeftEndOfLineAndModifySelection:), EditKey::home, true},
      {@selector(moveToRightEndOfLineAndModifySelection:), EditKey::end, true},
      {@selector(selectAll:), EditKey::selectAll, false},
  };
  for (const CommandKey& entry : table) {
    if (entry.selector == selector) {
      key = entry.key;
      modifiers.shift = entry.shift;
      return true;
    }
  }
  return false;
}

// Input methods hand over either a plain or an attributed string.
std::string textOf(id string) {
  if ([string isKindOfClass:[NSAttributedString class]])
    return quillmark::toStdString(((NSAttributedString*)string).string);
  if ([string isKindOfClass:[NSString class]]) return quillmark::toStdString((NSString*)string);
  return {};
}

NSUInteger utf16Length(id string) {
  if ([string isKindOfClass:[NSAttributedString class]]) return ((NSAttributedString*)string).string.length;
  if ([string isKindOfClass:[NSString class]]) return ((NSString*)string).length;
  return 0;
}

}  // namespace

@implementation QMHostedContentView {
  HostedContent* _content;
  NSUInteger _markedLength;  // UTF-16 units of the composition in progress, 0 when none
  NSTrackingArea* _tracking;
}

- (instancetype)initWithContent:(HostedContent*)content {
  self = [super initWithFrame:NSMakeRect(0, 0, content->width(), content->height())];
  if (self) {
    _content = content;
    __weak QMHostedContentView* weakSelf = self;
    _content->requestRepaint = [weakSelf] { weakSelf.needsDisplay = YES; };
    _content->writeClipboard = [](const std::string& text) {
      NSPasteboard* pasteboard = NSPasteboard.generalPasteboard;
      [pasteboard clearContents];
      [pasteboard setString:quillmark::toNSString(text) forType:NSPasteboardTypeString];
    };
  }
  return self;
}

- (void)detach {
  if (_content) {
    _content->requestRepaint = nullptr;
    _content->writeClipboard = nullptr;
  }
  _content = nullptr;
}

// Hover needs moves and the exit even while the card is not key (the first-run card never is).
- (void)updateTrackingAreas {
  if (_tracking) [self removeTrackingArea:_tracking];
  _tracking = [[NSTrackingArea alloc] initWithRect:NSMakeRect(0, 0, 0, 0)
                                           options:NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved |
                                                   NSTrackingActiveAlways | NSTrackingInVisibleRect
                                             owner:self
                                          userInfo:nil];
  [self addTrackingArea:_tracking];
  [super updateTrackingAreas];
}

- (BOOL)isFlipped {
  return YES;
}

- (BOOL)acceptsFirstResponder {
  return YES;
}

- (void)drawRect:(NSRect)dirtyRect {
  (void)dirtyRect;
  NSGraphicsContext* context = NSGraphicsContext.currentContext;
  if (!_content || !context) return;
  const double scale = self.window ? self.window.backingScaleFactor : 1.0;
  quillmark::paintHostedContent(*_content, context.CGContext, scale > 0 ? scale : 1.0);
}

// Mouse and scroll.

- (void)sendPointer:(PointerEvent::Kind)kind event:(NSEvent*)event secondary:(BOOL)secondary {
  if (!_content) return;
  const NSPoint point = [self convertPoint:event.locationInWindow fromView:nil];
  PointerEvent pointer;
  pointer.kind = kind;
  pointer.x = point.x;
  pointer.y = point.y;
  pointer.secondary = secondary;
  pointer.clickCount = kind == PointerEvent::Kind::down || kind == PointerEvent::Kind::up
                           ? static_cast<int>(event.clickCount)
                           : 0;
  pointer.modifiers = modifiersOf(event);
  (void)_content->pointer(pointer);
}

- (void)mouseDown:(NSEvent*)event {
  // A control-click is the one-button mouse's secondary click.
  [self sendPointer:PointerEvent::Kind::down
              event:event
          secondary:(event.modifierFlags & NSEventModifierFlagControl) != 0];
}
- (void)mouseUp:(NSEvent*)event {
  [self sendPointer:PointerEvent::Kind::up
              event:event
          secondary:(event.modifierFlags & NSEventModifierFlagControl) != 0];
}
- (void)rightMouseDown:(NSEvent*)event {
  [self sendPointer:PointerEvent::Kind::down event:event secondary:YES];
}
- (void)rightMouseUp:(NSEvent*)event {
  [self sendPointer:PointerEvent::Kind::up event:event secondary:YES];
}
- (void)mouseMoved:(NSEvent*)event {
  [self sendPointer:PointerEvent::Kind::moved event:event secondary:NO];
}
- (void)mouseDragged:(NSEvent*)event {
  [self sendPointer:PointerEvent::Kind::dragged event:event secondary:NO];
}
- (void)mouseExited:(NSEvent*)event {
  [self sendPointer:PointerEvent::Kind::exited event:event secondary:NO];
}

- (void)scrollWheel:(NSEvent*)event {
  if (!_content) return;
  const NSPoint point = [self convertPoint:event.locationInWindow fromView:nil];
  // A trackpad reports points; a wheel reports lines (one per notch), which the content takes in
  // points like everything else.
  const BOOL precise = event.hasPreciseScrollingDeltas;
  const double perStep = precise ? 1.0 : kPointsPerWheelLine;
  (void)_content->scroll(quillmark::ScrollEvent{point.x, point.y, event.scrollingDeltaX * perStep,
                                                event.scrollingDeltaY * perStep, precise != NO});
}

// Keys and text. Every key goes through the input system, which answers with insertText: for text
// and doCommandBySelector: for editing keys.

- (void)keyDown:(NSEvent*)event {
  [self interpretKeyEvents:@[ event ]];
}

// The clipboard keys. An accessory program has no Edit menu whose items would send copy: and
// paste:, so the card's first responder takes the key equivalents itself.
- (BOOL)performKeyEquivalent:(NSEvent*)event {
  const NSEventModifierFlags flags = event.modifierFlags;
  const BOOL commandOnly = (flags & NSEventModifierFlagCommand) != 0 &&
                           (flags & (NSEventModifierFlagControl | NSEventModifierFlagOption)) == 0;
  NSString* key = event.charactersIgnoringModifiers;
  if (!_content || !commandOnly || !key || self.window.firstResponder != self)
    return [super performKeyEquivalent:event];
  if ([key isEqualToString:@"c"]) return _content->clipboard(HostedContent::ClipboardCommand::copy);
  if ([key isEqualToString:@"x"]) return _content->clipboard(HostedContent::ClipboardCommand::cut);
  if ([key isEqualToString:@"a"]) return _content->editKey(EditKey::selectAll, modifiersOf(event));
  if ([key isEqualToString:@"v"]) {
    NSString* pasted = [NSPasteboard.generalPasteboard stringForType:NSPasteboardTypeString];
    if (!pasted || !_content->wantsTextInput()) return NO;
    [self unmarkText];
    return _content->text(
        quillmark::TextInput{quillmark::TextInput::Kind::commit, quillmark::toStdString(pasted)});
  }
  return [super performKeyEquivalent:event];
}

- (void)doCommandBySelector:(SEL)selector {
  EditKey key = EditKey::escape;
  KeyModifiers modifiers;
  if (_content && editKeyFor(selector, key, modifiers) && _content->editKey(key, modifiers)) return;
  // Escape the content did not use closes the card: the window's cancelOperation: does that.
  if (selector == @selector(cancelOperation:)) {
    [self.window cancelOperation:self];
    return;
  }
  [super doCommandBySelector:selector];
}

- (void)insertText:(id)string replacementRange:(NSRange)replacementRange {
  (void)replacementRange;
  _markedLength = 0;
  if (!_content) return;
  const std::string text = textOf(string);
  // Without a text field in focus, Space presses the focused control instead of typing.
  if (text == " " && !_content->wantsTextInput()) {
    (void)_content->editKey(EditKey::space, KeyModifiers{});
    return;
  }
  (void)_content->text(quillmark::TextInput{quillmark::TextInput::Kind::commit, text});
}

- (void)setMarkedText:(id)string
        selectedRange:(NSRange)selectedRange
     replacementRange:(NSRange)replacementRange {
  (void)selectedRange;
  (void)replacementRange;
  _markedLength = utf16Length(string);
  if (_content)
    (void)_content->text(quillmark::TextInput{quillmark::TextInput::Kind::marked, textOf(string)});
}

- (void)unmarkText {
  _markedLength = 0;
  if (_content) (void)_content->text(quillmark::TextInput{quillmark::TextInput::Kind::unmark, {}});
}

- (BOOL)hasMarkedText {
  return _markedLength > 0;
}

- (NSRange)markedRange {
  return _markedLength > 0 ? NSMakeRange(0, _markedLength)
                           : NSMakeRange(static_cast<NSUInteger>(NSNotFound), 0);
}

// The field keeps its own text; the input system is told the caret is at the end of the
// composition, which is where typing goes.
- (NSRange)selectedRange {
  return NSMakeRange(_markedLength, 0);
}

- (NSAttributedString*)attributedSubstringForProposedRange:(NSRange)range
                                               actualRange:(NSRangePointer)actualRange {
  (void)range;
  (void)actualRange;
  return nil;
}

- (NSArray<NSAttributedStringKey>*)validAttributesForMarkedText {
  return @[];
}

// Where the input method puts its candidate window: just below the caret, on screen.
- (NSRect)firstRectForCharacterRange:(NSRange)range actualRange:(NSRangePointer)actualRange {
  (void)range;
  (void)actualRange;
  if (!_content || !self.window) return NSMakeRect(0, 0, 0, 0);
  const quillmark::ContentRect caret = _content->caretRect();
  const NSRect inWindow = [self convertRect:NSMakeRect(caret.x, caret.y, caret.width, caret.height)
                                     toView:nil];
  return [self.window convertRectToScreen:inWindow];
}

- (NSUInteger)characterIndexForPoint:(NSPoint)point {
  (void)point;
  return static_cast<NSUInteger>(NSNotFound);
}

@end
