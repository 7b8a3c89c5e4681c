// Core Text types by identifier.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

CFTypeID CTFontCollectionGetTypeID(void);
CFTypeID CTFontGetTypeID(void);
CFTypeID CTFrameGetTypeID(void);
CFTypeID CTFramesetterGetTypeID(void);
CFTypeID CTGlyphInfoGetTypeID(void);
CFTypeID CTLineGetTypeID(void);
CFTypeID CTParagraphStyleGetTypeID(void);
CFTypeID CTRunDelegateGetTypeID(void);
CFTypeID CTRunGetTypeID(void);
CFTypeID CTTypesetterGetTypeID(void);

CF_EXTERN_C_END
