// Dictionaries.
#include "simulator/macos/CoreFoundation/dictionary.h"

#include "simulator/macos/control/faults.h"

#include <algorithm>

namespace sim::macos {

Dictionary::Dictionary(const CFDictionaryKeyCallBacks *keyCallBacks, const CFDictionaryValueCallBacks *valueCallBacks,
                       bool isMutable)
    : isMutable_(isMutable) {
    if (keyCallBacks)
        keyCallBacks_ = *keyCallBacks;
    if (valueCallBacks)
        valueCallBacks_ = *valueCallBacks;
    if (keyCallBacks_.version != 0 || valueCallBacks_.version != 0)
        Stop("a dictionary was given callbacks of an unknown version");
}

Dictionary::~Dictionary() {
    for (const Pair &pair : pairs_)
        Release(pair);
}

bool Dictionary::EqualTo(const Object &other) const {
    const auto &dictionary = static_cast<const Dictionary &>(other);
    if (pairs_.size() != dictionary.pairs_.size() || keyCallBacks_.equal != dictionary.keyCallBacks_.equal ||
        valueCallBacks_.equal != dictionary.valueCallBacks_.equal)
        return false;
    for (const Pair &pair : pairs_) {
        const Pair *twin = dictionary.Find(pair.key);
        if (!twin)
            return false;
        if (twin->value != pair.value && !(valueCallBacks_.equal && valueCallBacks_.equal(pair.value, twin->value)))
            return false;
    }
    return true;
}

std::string Dictionary::Description() const { return "of " + std::to_string(pairs_.size()); }

CFHashCode Dictionary::HashOf(const void *key) const {
    return keyCallBacks_.hash ? keyCallBacks_.hash(key) : reinterpret_cast<CFHashCode>(key);
}

const Dictionary::Pair *Dictionary::Find(const void *key) const {
    auto [first, last] = places_.equal_range(HashOf(key));
    for (auto place = first; place != last; ++place) {
        const Pair &pair = pairs_[place->second];
        if (pair.key == key || (keyCallBacks_.equal && keyCallBacks_.equal(pair.key, key)))
            return &pair;
    }
    return nullptr;
}

void Dictionary::Set(const void *key, const void *value) {
    if (applications_ > 0)
        Stop("a dictionary cannot be changed while a function is applied to it");
    const CFHashCode hash = HashOf(key);
    const Pair pair{keyCallBacks_.retain ? keyCallBacks_.retain(kCFAllocatorSystemDefault, key) : key,
                    valueCallBacks_.retain ? valueCallBacks_.retain(kCFAllocatorSystemDefault, value) : value};
    if (const Pair *known = Find(key)) {
        Release(std::exchange(pairs_[static_cast<std::size_t>(known - pairs_.data())], pair));
        return;
    }
    pairs_.push_back(pair);
    places_.emplace(hash, pairs_.size() - 1);
}

void Dictionary::Release(const Pair &pair) const {
    if (keyCallBacks_.release)
        keyCallBacks_.release(kCFAllocatorSystemDefault, pair.key);
    if (valueCallBacks_.release)
        valueCallBacks_.release(kCFAllocatorSystemDefault, pair.value);
}

std::vector<Dictionary::Pair> Dictionary::InHashOrder() const {
    std::vector<Pair> pairs = pairs_;
    const auto isEarlier = [&](const Pair &one, const Pair &other) { return HashOf(one.key) < HashOf(other.key); };
    if (std::is_sorted(pairs.begin(), pairs.end(), isEarlier))
        std::reverse(pairs.begin(), pairs.end());
    else
        std::stable_sort(pairs.begin(), pairs.end(), isEarlier);
    return pairs;
}

void Dictionary::Apply(CFDictionaryApplierFunction applier, void *context) {
    struct Application {
        int &count;
        explicit Application(int &applications) : count(applications) { ++count; }
        ~Application() { --count; }
    } application(applications_);
    for (const Pair &pair : InHashOrder())
        applier(pair.key, pair.value, context);
}

CFRef<CFDictionaryRef> MakeDictionary(std::span<const std::pair<CFTypeRef, CFTypeRef>> pairs) {
    auto *dictionary = new Dictionary(&kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks, false);
    for (const auto &[key, value] : pairs)
        dictionary->Set(key, value);
    return CFRef<CFDictionaryRef>::Adopt(dictionary->As<CFDictionaryRef>());
}

namespace {

FallibleCall createMutableDictionary("CFDictionaryCreateMutable");

} // namespace

} // namespace sim::macos

using namespace sim::macos;

CFTypeID CFDictionaryGetTypeID() {
    static const CFTypeID type = RegisterType("CFDictionary");
    return type;
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks *keyCallBacks,
                                                 const CFDictionaryValueCallBacks *valueCallBacks) {
    if (capacity < 0)
        Stop("CFDictionaryCreateMutable was given a negative capacity");
    if (createMutableDictionary.Fails())
        return nullptr;
    return (new Dictionary(keyCallBacks, valueCallBacks, true))->As<CFMutableDictionaryRef>();
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    return static_cast<CFIndex>(Expect<Dictionary>(dictionary).Pairs().size());
}

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key) {
    const Dictionary::Pair *pair = Expect<Dictionary>(dictionary).Find(key);
    return pair ? pair->value : nullptr;
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void *key, const void *value) {
    Dictionary &object = Expect<Dictionary>(dictionary);
    if (!object.IsMutable())
        Stop("CFDictionarySetValue was given an immutable dictionary");
    object.Set(key, value);
}

void CFDictionaryApplyFunction(CFDictionaryRef dictionary, CFDictionaryApplierFunction applier, void *context) {
    if (!applier)
        Stop("CFDictionaryApplyFunction was given no function");
    Expect<Dictionary>(dictionary).Apply(applier, context);
}
