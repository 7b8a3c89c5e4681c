// Dictionaries of pointers with the callbacks they were made with. The real system applies a function to the pairs in
// an order it does not promise. Here it is the order of the keys' hashes, so that runs can be compared, and never that
// in which they were set, so that nobody comes to rely on it. Changing a dictionary while a function is applied to it
// is refused.
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
    /// Retains as the callbacks say. An equal key that is there already is replaced, and its value with it.
    void Set(const void *key, const void *value);
    void Apply(CFDictionaryApplierFunction applier, void *context);

private:
    CFHashCode HashOf(const void *key) const;
    std::vector<Pair> InHashOrder() const;
    void Release(const Pair &pair) const;

    std::vector<Pair> pairs_;
    std::unordered_multimap<CFHashCode, std::size_t> places_;
    CFDictionaryKeyCallBacks keyCallBacks_{};
    CFDictionaryValueCallBacks valueCallBacks_{};
    int applications_ = 0;
    bool isMutable_;
};

/// A new immutable dictionary that retains the given objects. None of them may be null; of equal keys the last stays.
CFRef<CFDictionaryRef> MakeDictionary(std::span<const std::pair<CFTypeRef, CFTypeRef>> pairs);

} // namespace sim::macos
