#include "spotlight/search_scope.h"

#include "convert/folder_items.h"
#include "host/arrays.h"
#include "host/exceptions.h"
#include "host/strings.h"
#include "spotlight/query.h"

namespace {

/// The scope's entries. The framework's array would grow; the limit is the plugin's own.
class Scope {
public:
    Scope() : entries_(AdoptCF(CFArrayCreateMutable(kCFAllocatorDefault, kMaximum, &kCFTypeArrayCallBacks))) {}

    /// An entry beyond the limit raises "OutOfBoundsException" and is left out.
    void Append(CFTypeRef entry) {
        const CFIndex index = count_++;
        if (index >= kMaximum)
            RaiseOutOfBoundsException(index, kMaximum);
        else
            CFArrayAppendValue(entries_.Get(), entry);
    }

    /// Null when no array could be created; nothing may be appended then.
    CFArrayRef Entries() const { return entries_.Get(); }

private:
    static constexpr CFIndex kMaximum = 20;

    OwnedCF<CFMutableArrayRef> entries_;
    CFIndex count_ = 0;
};

void AppendScopeFolders(Scope &scope, _REALarrayFolderitem *paths) {
    const int32_t upperBound = UpperBoundOf(paths);
    for (int32_t i = 0; i <= upperBound; i++) {
        const auto folder = ReadArrayObject(paths, i);
        const auto url = AdoptCF(CreateCFURLfromFolderItem(static_cast<REALfolderItemStruct *>(folder.Get())));
        if (url)
            scope.Append(url.Get());
    }
}

void AppendScopeNames(Scope &scope, _REALarrayString *options) {
    const int32_t upperBound = UpperBoundOf(options);
    for (int32_t i = 0; i <= upperBound; i++) {
        const auto option = AdoptHost(REALGetArrayString(options, i));
        const auto name = AdoptCF(RBString2CFString(option.Get()));
        if (name)
            scope.Append(name.Get());
    }
}

} // namespace

void rbMDQuerySetSearchScope(REALobjectStruct *self, _REALarrayFolderitem *paths, _REALarrayString *options) {
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return;
    Scope scope;
    if (!scope.Entries())
        return;
    if (paths)
        AppendScopeFolders(scope, paths);
    if (options)
        AppendScopeNames(scope, options);
    MDQuerySetSearchScope(query, scope.Entries(), 0);
}
