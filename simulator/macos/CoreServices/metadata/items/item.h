// A metadata item: what an MDItemRef points at. An item is no more than a reference to its source of attributes, so a
// hundred thousand of them cost a hundred thousand small objects and not one read of a file. Nothing is kept either:
// every question is put to the source when it is asked, and the source answers with the state of that moment.
//
// Items are not unique. Two items of one file are equal (CFEqual) and hash alike, whichever paths they were made from;
// they need not be the same object.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"

#include <CoreServices/MDItem.h>

#include <memory>
#include <string>

namespace sim::macos {

class Item final : public Object {
public:
    /// +1. An item of any source; the source may be shared with whoever else looks at the file.
    static MDItemRef Create(std::shared_ptr<const AttributeSource> source);

    /// +1. An item of a file of this machine, by absolute path; null when nothing is there.
    static MDItemRef CreateForPath(const std::string &path);

    /// The item behind a reference. The reference must be an item's.
    static Item *From(MDItemRef item);
    MDItemRef Ref() const;

    const AttributeSource &Source() const { return *source_; }

    /// Lets the item speak of its file under a new name or in a new state, for instance after a rename. The identity
    /// must be the one it had: equality and hash never change in an item's life.
    void SetSource(std::shared_ptr<const AttributeSource> source);

    static CFTypeID Type();
    CFTypeID TypeID() const override { return Type(); }
    bool EqualTo(const Object &other) const override;
    CFHashCode Hash() const override;
    std::string Description() const override;

private:
    explicit Item(std::shared_ptr<const AttributeSource> source);

    std::shared_ptr<const AttributeSource> source_;
};

} // namespace sim::macos
