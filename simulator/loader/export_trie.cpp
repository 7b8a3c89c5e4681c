// A node is: the size of its payload (0 where no name ends), the payload (flags, then the offset from the header),
// the number of its branches, and for each branch the text it adds to the name and the offset of the node it leads
// to. All offsets count from the start of the tree, so a damaged one can point back: no node may be met twice.
#include "simulator/loader/export_trie.h"

#include "simulator/loader/byte_cursor.h"
#include "simulator/loader/macho_format.h"

#include <vector>

namespace sim::loader {
namespace {

struct PendingNode {
    size_t offset;
    std::string name;
};

Export ReadPayload(const Image &image, ByteCursor &cursor, const std::string &name) {
    const uint64_t flags = cursor.Uleb();
    if ((flags & ~macho::kExportWeakDefinition) != macho::kExportKindRegular)
        cursor.Fail("exports " + name + " in a way that is not modelled (flags " + std::to_string(flags) + ")");
    const uint64_t offset = cursor.Uleb();
    if (offset >= image.imageSize)
        cursor.Fail("puts " + name + " outside the image");
    return {name, image.base + static_cast<uint32_t>(offset)};
}

} // namespace

void ReadExportTrie(Image &image, std::span<const uint8_t> trie, std::string_view file) {
    if (trie.empty())
        return;
    ByteCursor cursor(trie, file, "the export tree");
    std::vector<bool> met(trie.size());
    std::vector<PendingNode> pending{{0, ""}};
    met[0] = true;

    while (!pending.empty()) {
        const PendingNode node = std::move(pending.back());
        pending.pop_back();
        cursor.Seek(node.offset);
        const uint64_t payloadSize = cursor.Uleb();
        const size_t payload = cursor.Position();
        if (payloadSize > trie.size() - payload)
            cursor.Fail("ends too early");
        if (payloadSize > 0) {
            image.exports.push_back(ReadPayload(image, cursor, node.name));
            if (cursor.Position() != payload + payloadSize)
                cursor.Fail("gives a wrong size for " + node.name);
        }

        std::vector<PendingNode> branches;
        for (uint8_t count = cursor.Byte(); count > 0; --count) {
            const std::string_view edge = cursor.CString();
            const uint64_t offset = cursor.Uleb();
            if (offset >= trie.size())
                cursor.Fail("points past its end");
            if (met[static_cast<size_t>(offset)])
                cursor.Fail("leads to the node at " + std::to_string(offset) + " twice");
            met[static_cast<size_t>(offset)] = true;
            if (node.name.size() + edge.size() > macho::kLongestSymbol)
                cursor.Fail("spells a name of more than " + std::to_string(macho::kLongestSymbol) + " characters");
            branches.push_back({static_cast<size_t>(offset), node.name + std::string(edge)});
        }
        pending.insert(pending.end(), std::make_move_iterator(branches.rbegin()),
                       std::make_move_iterator(branches.rend()));
    }
}

} // namespace sim::loader
