// Stub SDK: CoreText's fonts, lines, framesetters and the attributes Quillmark sets.
#pragma once
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

typedef const struct __CTFont* CTFontRef;
typedef const struct __CTLine* CTLineRef;
typedef const struct __CTFramesetter* CTFramesetterRef;
typedef const struct __CTFrame* CTFrameRef;
typedef const struct __CTParagraphStyle* CTParagraphStyleRef;

typedef enum CTFontUIFontType : uint32_t {
  kCTFontUIFontSystem = 2,
  kCTFontUIFontEmphasizedSystem = 3,
} CTFontUIFontType;
typedef enum CTLineTruncationType : uint32_t {
  kCTLineTruncationStart = 0,
  kCTLineTruncationEnd = 1,
  kCTLineTruncationMiddle = 2,
} CTLineTruncationType;
typedef enum CTTextAlignment : uint8_t {
  kCTTextAlignmentLeft = 0,
  kCTTextAlignmentRight = 1,
  kCTTextAlignmentCenter = 2,
  kCTTextAlignmentJustified = 3,
  kCTTextAlignmentNatural = 4,
} CTTextAlignment;
typedef enum CTParagraphStyleSpecifier : uint32_t {
  kCTParagraphStyleSpecifierAlignment = 0,
} CTParagraphStyleSpecifier;
typedef struct CTParagraphStyleSetting {
  CTParagraphStyleSpecifier specifier;
  size_t valueSize;
  const void* value;
} CTParagraphStyleSetting;
QM_STUB_STATIC_ASSERT(sizeof(CTParagraphStyleSetting) == 24, "specifier, padding, size, pointer");

QM_STUB_EXTERN_C_BEGIN
extern const CFStringRef kCTFontAttributeName;
extern const CFStringRef kCTForegroundColorFromContextAttributeName;
extern const CFStringRef kCTParagraphStyleAttributeName;

CTFontRef CTFontCreateUIFontForLanguage(CTFontUIFontType uiType, CGFloat size, CFStringRef language);
CTParagraphStyleRef CTParagraphStyleCreate(const CTParagraphStyleSetting* settings, size_t settingCount);

CTLineRef CTLineCreateWithAttributedString(CFAttributedStringRef attrString);
CTLineRef CTLineCreateTruncatedLine(CTLineRef line, double width, CTLineTruncationType truncationType,
                                    CTLineRef truncationToken);
double CTLineGetTypographicBounds(CTLineRef line, CGFloat* ascent, CGFloat* descent, CGFloat* leading);
void CTLineDraw(CTLineRef line, CGContextRef context);

CTFramesetterRef CTFramesetterCreateWithAttributedString(CFAttributedStringRef attrString);
CGSize CTFramesetterSuggestFrameSizeWithConstraints(CTFramesetterRef framesetter, CFRange stringRange,
                                                    CFDictionaryRef frameAttributes, CGSize constraints,
                                                    CFRange* fitRange);
CTFrameRef CTFramesetterCreateFrame(CTFramesetterRef framesetter, CFRange stringRange, CGPathRef path,
                                    CFDictionaryRef frameAttributes);
void CTFrameDraw(CTFrameRef frame, CGContextRef context);
QM_STUB_EXTERN_C_END
