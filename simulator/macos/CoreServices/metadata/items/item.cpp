#include "simulator/macos/CoreServices/metadata/items/item.h"

#include "simulator/macos/CoreServices/metadata/items/file_source.h"

#include <functional>

namespace sim::macos {

Item::Item(std::shared_ptr<const AttributeSource> source) : source_(std::move(source)) {}

MDItemRef Item::Create(std::shared_ptr<const AttributeSource> source) { return (new Item(std::move(source)))->Ref(); }

MDItemRef Item::CreateForPath(const std::string &path) {
    auto source = FileSource::At(path);
    return source ? Create(std::move(source)) : nullptr;
}

Item *Item::From(MDItemRef item) { return &Expect<Item>(item); }

MDItemRef Item::Ref() const { return As<MDItemRef>(); }

void Item::SetSource(std::shared_ptr<const AttributeSource> source) {
    if (source->Identity() != source_->Identity())
        Stop("An item was to speak of another file: of " + source->Path() + " instead of " + source_->Path() + ".");
    source_ = std::move(source);
}

CFTypeID Item::Type() {
    static const CFTypeID type = RegisterType("MDItem");
    return type;
}

bool Item::EqualTo(const Object &other) const {
    return source_->Identity() == static_cast<const Item &>(other).source_->Identity();
}

CFHashCode Item::Hash() const {
    const FileIdentity identity = source_->Identity();
    const std::hash<std::uint64_t> hash;
    return hash(identity.volume) * 31 + hash(identity.file);
}

std::string Item::Description() const { return source_->Path(); }

} // namespace sim::macos
