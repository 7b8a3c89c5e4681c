// Core Graphics types by identifier and retain function. A retain function returns its argument and accepts null.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/// 32 bits wide in a 32-bit program.
typedef float CGFloat;

typedef struct CGPoint {
    CGFloat x;
    CGFloat y;
} CGPoint;
typedef struct CGSize {
    CGFloat width;
    CGFloat height;
} CGSize;
typedef struct CGRect {
    CGPoint origin;
    CGSize size;
} CGRect;

typedef struct CGColor *CGColorRef;
typedef struct CGColorSpace *CGColorSpaceRef;
typedef struct CGContext *CGContextRef;
typedef struct CGDataConsumer *CGDataConsumerRef;
typedef struct CGDataProvider *CGDataProviderRef;
typedef struct CGFont *CGFontRef;
typedef struct CGImage *CGImageRef;
typedef struct CGLayer *CGLayerRef;
typedef const struct CGPath *CGPathRef;

CFTypeID CGColorGetTypeID(void);
CFTypeID CGColorSpaceGetTypeID(void);
CFTypeID CGContextGetTypeID(void);
CFTypeID CGDataConsumerGetTypeID(void);
CFTypeID CGDataProviderGetTypeID(void);
CFTypeID CGEventGetTypeID(void);
CFTypeID CGEventSourceGetTypeID(void);
CFTypeID CGFontGetTypeID(void);
CFTypeID CGImageGetTypeID(void);
CFTypeID CGLayerGetTypeID(void);
CFTypeID CGPathGetTypeID(void);
CFTypeID CGPSConverterGetTypeID(void);

CGColorRef CGColorRetain(CGColorRef color);
CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space);
CGContextRef CGContextRetain(CGContextRef context);
CGDataConsumerRef CGDataConsumerRetain(CGDataConsumerRef consumer);
CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider);
CGFontRef CGFontRetain(CGFontRef font);
CGImageRef CGImageRetain(CGImageRef image);
CGLayerRef CGLayerRetain(CGLayerRef layer);
CGPathRef CGPathRetain(CGPathRef path);

/// Components run from 0 to 1.
CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);

CF_EXTERN_C_END
