// Dictionaries of pointers with the callbacks they were made with. The real system applies a function to the pairs in
// an order it does not promise; here it is always the order in which the keys were first set, so that runs can be
// compared. Changing a dictionary while a function is applied to it is refused.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreFoundation/CFDictionary.h>

#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

namespace sim::macos {

class Dictionary final : public Object {
public:
    struct Pair {
        const void *key;
        const void *value;
    };

    /// Null callbacks are those of plain pointers.
    Dictionary(const CFDictionaryKeyCallBacks *keyCallBacks, const CFDictionaryValueCallBacks *valueCallBacks,
               bool isMutable);
    ~Dictionary() override;

    CFTypeID TypeID() const override { return CFDictionaryGetTypeID(); }
    bool EqualTo(const Object &other) const override;
    CFHashCode Hash() const override { return pairs_.size(); }
    std::string Description() const override;

    std::span<const Pair> Pairs() const { return pairs_; }
    bool IsMutable() const { return isMutable_; }
    const Pair *Find(const void *key) const;
    /// Retains as the callbacks say. A key that is there already stays; its value is replaced.
    void Set(const void *key, const void *value);
    void Apply(CFDictionaryApplierFunction applier, void *context);

private:
    CFHashCode HashOf(const void *key) const;

    std::vector<Pair> pairs_;
    std::unordered_multimap<CFHashCode, std::size_t> places_;
    CFDictionaryKeyCallBacks keyCallBacks_{};
    CFDictionaryValueCallBacks valueCallBacks_{};
    int applications_ = 0;
    bool isMutable_;
};

/// A new immutable dictionary that retains the given objects. None of them may be null; of equal keys the first stays,
/// with the value of the last.
CFRef<CFDictionaryRef> MakeDictionary(std::span<const std::pair<CFTypeRef, CFTypeRef>> pairs);

} // namespace sim::macos
