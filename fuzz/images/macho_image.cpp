// The reader may refuse whatever it does not like, by throwing LoadError, and do nothing else: no read outside the
// bytes, no endless work, and nothing in its answer that the mapper and the binder could stumble over. The first byte
// says which reader gets the rest, since few changes of a whole file get past its first commands.
#include "fuzz/input.h"
#include "simulator/loader/export_trie.h"
#include "simulator/loader/fixup_reader.h"
#include "simulator/loader/image_reader.h"
#include "simulator/loader/load_error.h"
#include "simulator/loader/macho_format.h"
#include "simulator/loader/unwind_table.h"

namespace {

using namespace sim::loader;

bool LiesInSegment(const Image &image, uint32_t address) {
    for (const Segment &segment : image.segments)
        if (address >= segment.address && address - segment.address <= segment.memorySize - 4 &&
            segment.memorySize >= 4 && (segment.protection & macho::kProtectionWrite))
            return true;
    return false;
}

// What the mapper and the binder take for granted.
void RequireSound(const Image &image) {
    for (const uint32_t address : image.rebases)
        fuzz::Require(LiesInSegment(image, address));
    for (const Bind &bind : image.binds) {
        fuzz::Require(LiesInSegment(image, bind.address));
        fuzz::Require(bind.import < image.imports.size());
    }
    for (const Import &import : image.imports) {
        fuzz::Require(!import.symbol.empty());
        fuzz::Require(import.ordinal <= static_cast<int32_t>(image.dylibs.size()));
    }
    for (const Export &entry : image.exports)
        fuzz::Require(entry.address - image.base < image.imageSize);
}

Image ImageWithRoom() {
    Image image;
    image.segments = {{"__TEXT", 0, 0x1000, 0, 0x1000, macho::kProtectionRead},
                      {"__DATA", 0x1000, 0x1000, 0x1000, 0x100, macho::kProtectionRead | macho::kProtectionWrite}};
    image.dylibs = {{"/A.dylib"}, {"/B.dylib"}};
    image.imageSize = 0x2000;
    return image;
}

void ReadOnly(uint8_t what, std::span<const uint8_t> bytes) {
    Image image = ImageWithRoom();
    switch (what % 6) {
    case 0:
        image = ReadImage(bytes, "input");
        break;
    case 1:
        ReadRebases(image, bytes, "input");
        break;
    case 2:
        ReadBinds(image, bytes, false, "input");
        break;
    case 3:
        ReadBinds(image, bytes, true, "input");
        break;
    case 4:
        ReadExportTrie(image, bytes, "input");
        break;
    case 5: {
        std::vector<uint8_t> copy(bytes.size() + 4);
        TranslateUnwindTable(bytes, copy, "input");
        break;
    }
    }
    RequireSound(image);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    if (size == 0)
        return 0;
    try {
        ReadOnly(bytes[0], {bytes + 1, size - 1});
    } catch (const LoadError &) {
        // refused
    }
    return 0;
}
