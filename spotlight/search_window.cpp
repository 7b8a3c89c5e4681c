#include "spotlight/search_window.h"

#include <Carbon/Carbon.h>

#include "host/owned.h"
#include "host/strings.h"

int32_t rbHISearchWindowShow(REALstringStruct *searchString) {
    const auto text = AdoptCF(RBString2CFString(searchString));
    return static_cast<int32_t>(HISearchWindowShow(text.Get(), 0));
}
