// Core Text: the identifiers of its types.
#include "simulator/macos/CoreFoundation/type_named.h"

#include <ApplicationServices/CoreText.h>

using namespace sim::macos;

CFTypeID CTFontCollectionGetTypeID() { return TypeNamed<"CTFontCollection">(); }
CFTypeID CTFontGetTypeID() { return TypeNamed<"CTFont">(); }
CFTypeID CTFrameGetTypeID() { return TypeNamed<"CTFrame">(); }
CFTypeID CTFramesetterGetTypeID() { return TypeNamed<"CTFramesetter">(); }
CFTypeID CTGlyphInfoGetTypeID() { return TypeNamed<"CTGlyphInfo">(); }
CFTypeID CTLineGetTypeID() { return TypeNamed<"CTLine">(); }
CFTypeID CTParagraphStyleGetTypeID() { return TypeNamed<"CTParagraphStyle">(); }
CFTypeID CTRunDelegateGetTypeID() { return TypeNamed<"CTRunDelegate">(); }
CFTypeID CTRunGetTypeID() { return TypeNamed<"CTRun">(); }
CFTypeID CTTypesetterGetTypeID() { return TypeNamed<"CTTypesetter">(); }
