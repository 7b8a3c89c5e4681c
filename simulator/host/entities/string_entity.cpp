#include "simulator/host/entities/string_entity.h"

#include <algorithm>
#include <cstring>

namespace sim::host {

StringEntity::StringEntity(Text text, bool readableInPlace)
    : text_(std::move(text)), readableInPlace_(readableInPlace),
      storage_(std::make_unique<unsigned char[]>(text_.bytes.size() + 2)) {
    storage_[0] = static_cast<unsigned char>(std::min<size_t>(text_.bytes.size(), 255));
    std::copy(text_.bytes.begin(), text_.bytes.end(), storage_.get() + 1);
}

void StringEntity::LayOut() {
    constexpr uint32_t kHostWord = 0xB0B0B0B0;
    const void *storage = readableInPlace_ ? storage_.get() : TrapAddress();
    uint32_t length = readableInPlace_ ? static_cast<uint32_t>(text_.bytes.size()) : 0x7FFFFFFF;
    uint32_t words[] = {kHostWord, static_cast<uint32_t>(reinterpret_cast<uintptr_t>(storage)), kHostWord, length};
    static_assert(sizeof words == kHandleSize);
    std::memcpy(address, words, sizeof words);
    if (!readableInPlace_)
        ForbidAccess(address, size);
}

StringEntity &MakeString(Heap &heap, Text text, bool readableInPlace) {
    auto &string = heap.Make<StringEntity>(StringEntity::kHandleSize, std::move(text), readableInPlace);
    string.LayOut();
    return string;
}

} // namespace sim::host
