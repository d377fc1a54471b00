#include <CoreGraphics/CoreGraphics.h>

#include "menubar/hosted_content_view_darwin.h"
#include "views/canvas_darwin.h"

namespace quillmark {

void paintHostedContent(HostedContent& content, CGContextRef context, double backingScale) {
  // The canvas multiplies points by its scale itself; AppKit has already done so for the view's
  // context, so that is undone first. The canvas then knows the real pixels per point (for
  // hairlines and images) and draws at exactly the same place.
  CGContextSaveGState(context);
  CGContextScaleCTM(context, 1 / backingScale, 1 / backingScale);
  {
    CoreGraphicsCanvas canvas(context, Size{content.width(), content.height()}, backingScale, true);
    content.paint(canvas);
  }
  CGContextRestoreGState(context);
}

}  // namespace quillmark
