#include "views/canvas_darwin.h"

#include <CoreText/CoreText.h>

#include <algorithm>
#include <cfloat>
#include <vector>

#include "base/cf_ref_darwin.h"

namespace quillmark {
namespace {

CFRef<CTFontRef> makeFont(const Font& font) {
  // The system font has no medium face through this call; medium and bold use the emphasized one.
  const CTFontUIFontType type =
      font.weight == FontWeight::regular ? kCTFontUIFontSystem : kCTFontUIFontEmphasizedSystem;
  return CFRef<CTFontRef>(CTFontCreateUIFontForLanguage(type, font.size, nullptr));
}

// The text with the style's font and alignment; its colour comes from the context's fill colour.
CFRef<CFAttributedStringRef> attributed(std::string_view utf8, const TextStyle& style) {
  const CFRef<CFStringRef> text = makeCFString(utf8);
  const CFRef<CTFontRef> font = makeFont(style.font);
  const CTTextAlignment alignment = style.align == TextAlign::center     ? kCTTextAlignmentCenter
                                    : style.align == TextAlign::trailing ? kCTTextAlignmentRight
                                                                         : kCTTextAlignmentNatural;
  const CTParagraphStyleSetting setting{kCTParagraphStyleSpecifierAlignment, sizeof alignment, &alignment};
  const CFRef<CTParagraphStyleRef> paragraph(CTParagraphStyleCreate(&setting, 1));
  if (!text || !font || !paragraph) return {};
  const void* keys[] = {kCTFontAttributeName, kCTForegroundColorFromContextAttributeName,
                        kCTParagraphStyleAttributeName};
  const void* values[] = {font.get(), kCFBooleanTrue, paragraph.get()};
  const CFRef<CFDictionaryRef> attributes(CFDictionaryCreate(kCFAllocatorDefault, keys, values, 3,
                                                             &kCFTypeDictionaryKeyCallBacks,
                                                             &kCFTypeDictionaryValueCallBacks));
  return CFRef<CFAttributedStringRef>(
      CFAttributedStringCreate(kCFAllocatorDefault, text.get(), attributes.get()));
}

struct LineMetrics {
  double width = 0;
  CGFloat ascent = 0;
  CGFloat descent = 0;
  CGFloat leading = 0;
};

LineMetrics metrics(CTLineRef line) {
  LineMetrics m;
  m.width = CTLineGetTypographicBounds(line, &m.ascent, &m.descent, &m.leading);
  return m;
}

void releaseImageCopy(void* info, const void*, size_t) {
  delete static_cast<std::vector<std::uint8_t>*>(info);
}

}  // namespace

CoreGraphicsCanvas::CoreGraphicsCanvas(CGContextRef context, Size size, double scale, bool originAtTop)
    : context_(context), scale_(scale) {
  if (!context_) return;
  CGContextSaveGState(context_);
  if (!originAtTop) {
    CGContextTranslateCTM(context_, 0, size.height * scale);
    CGContextScaleCTM(context_, 1, -1);
  }
  CGContextScaleCTM(context_, scale, scale);
}

CoreGraphicsCanvas::~CoreGraphicsCanvas() {
  if (context_) CGContextRestoreGState(context_);
}

void CoreGraphicsCanvas::save() { CGContextSaveGState(context_); }
void CoreGraphicsCanvas::restore() { CGContextRestoreGState(context_); }
void CoreGraphicsCanvas::translate(double dx, double dy) { CGContextTranslateCTM(context_, dx, dy); }
void CoreGraphicsCanvas::scaleBy(double sx, double sy) { CGContextScaleCTM(context_, sx, sy); }

void CoreGraphicsCanvas::replay(const Path& path) {
  CGContextBeginPath(context_);
  for (const auto& e : path.elements()) {
    switch (e.verb) {
      case Path::Verb::move:
        CGContextMoveToPoint(context_, e.points[0].x, e.points[0].y);
        break;
      case Path::Verb::line:
        CGContextAddLineToPoint(context_, e.points[0].x, e.points[0].y);
        break;
      case Path::Verb::curve:
        CGContextAddCurveToPoint(context_, e.points[0].x, e.points[0].y, e.points[1].x, e.points[1].y,
                                 e.points[2].x, e.points[2].y);
        break;
      case Path::Verb::close:
        CGContextClosePath(context_);
        break;
    }
  }
}

void CoreGraphicsCanvas::clip(const Path& path) {
  replay(path);
  CGContextClip(context_);
}

void CoreGraphicsCanvas::fill(const Path& path, Color c) {
  replay(path);
  CGContextSetRGBFillColor(context_, c.r, c.g, c.b, c.a);
  CGContextFillPath(context_);
}

void CoreGraphicsCanvas::fill(const Path& path, const Gradient& gradient) {
  std::vector<CGFloat> components;
  std::vector<CGFloat> locations;
  for (const auto& stop : gradient.stops) {
    components.insert(components.end(), {stop.color.r, stop.color.g, stop.color.b, stop.color.a});
    locations.push_back(stop.offset);
  }
  const CFRef<CGColorSpaceRef> space(CGColorSpaceCreateDeviceRGB());
  const CFRef<CGGradientRef> shading(CGGradientCreateWithColorComponents(space.get(), components.data(),
                                                                         locations.data(), locations.size()));
  if (!shading) return;
  CGContextSaveGState(context_);
  clip(path);
  CGContextDrawLinearGradient(context_, shading.get(), CGPointMake(gradient.start.x, gradient.start.y),
                              CGPointMake(gradient.end.x, gradient.end.y),
                              static_cast<CGGradientDrawingOptions>(kCGGradientDrawsBeforeStartLocation |
                                                                    kCGGradientDrawsAfterEndLocation));
  CGContextRestoreGState(context_);
}

void CoreGraphicsCanvas::stroke(const Path& path, Color c, double width) {
  replay(path);
  CGContextSetRGBStrokeColor(context_, c.r, c.g, c.b, c.a);
  CGContextSetLineWidth(context_, width);
  CGContextSetLineJoin(context_, kCGLineJoinRound);
  CGContextSetLineCap(context_, kCGLineCapRound);
  CGContextStrokePath(context_);
}

Size CoreGraphicsCanvas::measure(std::string_view utf8, const TextStyle& style) {
  const auto text = attributed(utf8, style);
  if (!text) return {};
  if (style.wrapWidth > 0) {
    const CFRef<CTFramesetterRef> setter(CTFramesetterCreateWithAttributedString(text.get()));
    if (!setter) return {};
    const CGSize size = CTFramesetterSuggestFrameSizeWithConstraints(
        setter.get(), CFRangeMake(0, 0), nullptr, CGSizeMake(style.wrapWidth, CGFLOAT_MAX), nullptr);
    return {size.width, size.height};
  }
  const CFRef<CTLineRef> line(CTLineCreateWithAttributedString(text.get()));
  if (!line) return {};
  const LineMetrics m = metrics(line.get());
  return {m.width, m.ascent + m.descent + m.leading};
}

void CoreGraphicsCanvas::drawText(std::string_view utf8, const TextStyle& style, const Rect& box) {
  const auto text = attributed(utf8, style);
  if (!text) return;
  CGContextSaveGState(context_);
  CGContextSetRGBFillColor(context_, style.color.r, style.color.g, style.color.b, style.color.a);
  if (style.wrapWidth > 0) {
    // Frames are laid out bottom-up: flip the box's own space for them.
    const CFRef<CTFramesetterRef> setter(CTFramesetterCreateWithAttributedString(text.get()));
    const double height = measure(utf8, style).height;
    const CFRef<CGPathRef> area(CGPathCreateWithRect(CGRectMake(0, 0, style.wrapWidth, height), nullptr));
    if (setter && area) {
      const CFRef<CTFrameRef> frame(
          CTFramesetterCreateFrame(setter.get(), CFRangeMake(0, 0), area.get(), nullptr));
      CGContextTranslateCTM(context_, box.x, box.y + height);
      CGContextScaleCTM(context_, 1, -1);
      CGContextSetTextMatrix(context_, CGAffineTransformIdentity);
      if (frame) CTFrameDraw(frame.get(), context_);
    }
  } else {
    CFRef<CTLineRef> line(CTLineCreateWithAttributedString(text.get()));
    LineMetrics m = line ? metrics(line.get()) : LineMetrics{};
    if (line && style.ellipsize && m.width > box.width) {
      if (CTLineRef cut = CTLineCreateTruncatedLine(line.get(), box.width, kCTLineTruncationEnd, nullptr)) {
        line = CFRef<CTLineRef>(cut);
        m = metrics(line.get());
      }
    }
    if (line) {
      double x = box.x;
      const double slack = std::max(0.0, box.width - m.width);
      if (style.align == TextAlign::center) x += slack / 2;
      if (style.align == TextAlign::trailing) x += slack;
      // The canvas's y grows downwards, so glyphs are drawn through a flipped text matrix.
      CGContextSetTextMatrix(context_, CGAffineTransformMakeScale(1, -1));
      CGContextSetTextPosition(context_, x, box.y + m.ascent);
      CTLineDraw(line.get(), context_);
    }
  }
  CGContextRestoreGState(context_);
}

void CoreGraphicsCanvas::drawImage(const Image& image, const Rect& box) {
  const std::size_t bytes = static_cast<std::size_t>(image.width) * image.height * 4;
  if (image.width <= 0 || image.height <= 0 || image.rgba.size() != bytes) return;
  // The provider may outlive this call: it owns a copy of the pixels.
  auto* copy = new std::vector<std::uint8_t>(image.rgba);
  const CFRef<CGDataProviderRef> provider(
      CGDataProviderCreateWithData(copy, copy->data(), bytes, releaseImageCopy));
  if (!provider) {
    delete copy;
    return;
  }
  const CFRef<CGColorSpaceRef> space(CGColorSpaceCreateDeviceRGB());
  const CFRef<CGImageRef> picture(CGImageCreate(image.width, image.height, 8, 32, image.width * 4,
                                                space.get(), static_cast<CGBitmapInfo>(kCGImageAlphaLast),
                                                provider.get(), nullptr, true, kCGRenderingIntentDefault));
  if (!picture) return;
  CGContextSaveGState(context_);
  CGContextTranslateCTM(context_, box.x, box.y + box.height);
  CGContextScaleCTM(context_, 1, -1);
  CGContextDrawImage(context_, CGRectMake(0, 0, box.width, box.height), picture.get());
  CGContextRestoreGState(context_);
}

}  // namespace quillmark
