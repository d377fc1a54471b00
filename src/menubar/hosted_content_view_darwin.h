#pragma once

#include <AppKit/AppKit.h>

#include "menubar/hosted_content.h"

// The content view of a card: draws a HostedContent through the views' CoreGraphics canvas and
// turns AppKit's mouse, scroll, key and text-input events into the content's plain-value events.
// Its coordinates are flipped (top-left origin) to match the views layer; it draws at its
// window's backing scale. Text goes through the input methods (NSTextInputClient), so composed
// input (Chinese, Japanese, Korean) reaches the search field; Command-C, -X, -V and -A reach the
// content as copy, cut, pasted text and select-all (the program has no Edit menu to send them);
// an Escape the content does not use goes to the window, which closes the card. The content is
// not owned and must outlive the view or be detached first. Main thread only.
@interface QMHostedContentView : NSView <NSTextInputClient>
- (nonnull instancetype)initWithContent:(nonnull quillmark::HostedContent*)content;
// Stops every call into the content (before the content is destroyed).
- (void)detach;
@end

namespace quillmark {

// Paints content on the CoreGraphics context of a flipped view of the content's size, whose user
// space is points (AppKit has already scaled it to the backing store); `backingScale` is the
// pixels per point of that store. Defined with the views' canvas (app/macos).
void paintHostedContent(HostedContent& content, CGContextRef _Nonnull context, double backingScale);

}  // namespace quillmark
