// A host string. Below 2016.0 a plugin may read it in place: the second word of the handle points to the storage, a
// length byte followed by the text, and the fourth word holds the length in bytes. From 2016.0 on nothing of it can be
// read: the same words lead to a fault.
#pragma once

#include "simulator/host/entities/heap.h"
#include "simulator/host/ground/options.h"

namespace sim::host {

class StringEntity : public Entity {
public:
    static constexpr size_t kHandleSize = 16;

    StringEntity(Text text, bool readableInPlace);
    /// Fills the handle's words; called once, when the handle is there.
    void LayOut();

    std::string ClassName() const override { return "string"; }
    int32_t TypeCode() const override { return 8; }

    const Text &GetText() const { return text_; }
    void SetEncoding(uint32_t encoding) { text_.encoding = encoding; }
    /// The text, followed by a zero byte.
    const char *Contents() const { return reinterpret_cast<const char *>(storage_.get() + 1); }

private:
    Text text_;
    bool readableInPlace_;
    /// The length byte, the text, a zero byte: exactly as long as that.
    std::unique_ptr<unsigned char[]> storage_;
};

/// A new string with one reference.
StringEntity &MakeString(Heap &heap, Text text, bool readableInPlace);

} // namespace sim::host
