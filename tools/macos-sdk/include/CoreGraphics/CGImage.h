// Stub SDK: bitmap images over a data provider.
#pragma once
#include <CoreGraphics/CGColorSpace.h>
#include <stddef.h>
#include <stdint.h>

typedef struct CGImage* CGImageRef;
typedef struct CGDataProvider* CGDataProviderRef;
typedef void (*CGDataProviderReleaseDataCallback)(void* info, const void* data, size_t size);

// The alpha kinds are the low bits of a CGBitmapInfo; a separate type, so C++ needs a cast.
typedef enum CGImageAlphaInfo : uint32_t {
  kCGImageAlphaNone = 0,
  kCGImageAlphaPremultipliedLast = 1,
  kCGImageAlphaPremultipliedFirst = 2,
  kCGImageAlphaLast = 3,
  kCGImageAlphaFirst = 4,
} CGImageAlphaInfo;
typedef enum CGBitmapInfo : uint32_t {
  kCGBitmapAlphaInfoMask = 0x1F,
} CGBitmapInfo;
typedef enum CGColorRenderingIntent : int32_t {
  kCGRenderingIntentDefault = 0,
} CGColorRenderingIntent;

QM_STUB_EXTERN_C_BEGIN
CGDataProviderRef CGDataProviderCreateWithData(void* info, const void* data, size_t size,
                                               CGDataProviderReleaseDataCallback releaseData);
void CGDataProviderRelease(CGDataProviderRef provider);
CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel, size_t bytesPerRow,
                         CGColorSpaceRef space, CGBitmapInfo bitmapInfo, CGDataProviderRef provider,
                         const CGFloat* decode, bool shouldInterpolate, CGColorRenderingIntent intent);
void CGImageRelease(CGImageRef image);
QM_STUB_EXTERN_C_END
