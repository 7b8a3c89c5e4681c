#include "bench/bare_metadata.h"

#include <dlfcn.h>

namespace bench {

namespace {

Answers answers;
CFNotificationCallback callback;
volatile intptr_t heard;

template <class Reference> Reference Retained(Reference reference) {
    if (reference)
        CFRetain(reference);
    return reference;
}

MDQueryRef AnyQuery() {
    const void *query = CFRetain(CFSTR("a query"));
    return static_cast<MDQueryRef>(const_cast<void *>(query));
}

} // namespace

void SetAnswers(const Answers &given) { answers = given; }

CFNotificationCallback LastCallback() { return callback; }

void *FindBareFunction(const char *name) {
    Dl_info self, found;
    void *address = dlsym(RTLD_DEFAULT, name);
    if (!address || !dladdr(reinterpret_cast<void *>(SetAnswers), &self) || !dladdr(address, &found))
        return nullptr;
    return self.dli_fbase == found.dli_fbase ? address : nullptr;
}

} // namespace bench

using namespace bench;

MDQueryRef MDQueryCreate(CFAllocatorRef, CFStringRef, CFArrayRef, CFArrayRef) { return AnyQuery(); }
CFStringRef MDQueryCopyQueryString(MDQueryRef) { return Retained(answers.queryText); }
void MDQuerySetMaxCount(MDQueryRef, CFIndex size) { heard = size; }
Boolean MDQueryExecute(MDQueryRef, CFOptionFlags) { return true; }
void MDQueryStop(MDQueryRef) {}
void MDQueryDisableUpdates(MDQueryRef) {}
void MDQueryEnableUpdates(MDQueryRef) {}
Boolean MDQueryIsGatheringComplete(MDQueryRef) { return true; }
CFIndex MDQueryGetResultCount(MDQueryRef) { return answers.results; }
const void *MDQueryGetResultAtIndex(MDQueryRef, CFIndex) { return answers.item; }
CFIndex MDQueryGetIndexOfResult(MDQueryRef, const void *) { return 0; }
void *MDQueryGetAttributeValueOfResultAtIndex(MDQueryRef, CFStringRef, CFIndex) {
    return const_cast<void *>(answers.attribute);
}
CFArrayRef MDQueryCopyValuesOfAttribute(MDQueryRef, CFStringRef) { return Retained(answers.values); }
CFIndex MDQueryGetCountOfResultsWithAttributeValue(MDQueryRef, CFStringRef, CFTypeRef) { return 1; }
CFTypeRef MDItemCopyAttribute(MDItemRef, CFStringRef) { return Retained(answers.attribute); }
OSStatus HISearchWindowShow(CFStringRef, OptionBits) { return noErr; }

void CFNotificationCenterAddObserver(CFNotificationCenterRef, const void *, CFNotificationCallback function,
                                     CFStringRef, const void *, CFNotificationSuspensionBehavior) {
    callback = function;
}
void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef, const void *) {}
