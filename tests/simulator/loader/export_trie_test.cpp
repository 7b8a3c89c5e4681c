#include "simulator/loader/export_trie.h"
#include "simulator/loader/load_error.h"
#include "tests/simulator/loader/image_builder.h"

#include <doctest/doctest.h>

namespace sim::loader {
namespace {

std::vector<Export> Exported(const Bytes &trie) {
    Image image;
    image.base = 0x1000;
    image.imageSize = 0x2000;
    ReadExportTrie(image, trie, "file");
    return image.exports;
}

std::string Fault(const Bytes &trie) {
    try {
        Exported(trie);
        return "";
    } catch (const LoadError &error) {
        return error.what();
    }
}

TEST_CASE("Names are put together from the branches that lead to them") {
    // 0: root, "_a" -> 6.  6: "_a" itself at 0x10, "bc" -> 14.  14: "_abc" at 0x20.
    const std::vector<Export> exports = Exported({0, 1, '_', 'a', 0, 6, 2, 0, 0x10, 1, 'b', 'c', 0, 14, 2, 0, 0x20, 0});
    REQUIRE(exports.size() == 2);
    CHECK(exports[0].symbol == "_a");
    CHECK(exports[0].address == 0x1010);
    CHECK(exports[1].symbol == "_abc");
    CHECK(exports[1].address == 0x1020);
}

TEST_CASE("An image without exports has an empty tree or none") {
    CHECK(Exported({}).empty());
    CHECK(Exported({0, 0}).empty());
}

TEST_CASE("A tree that leads back to itself is refused") {
    CHECK(Fault({0, 1, 'a', 0, 0}) == "file: the export tree leads to the node at 0 twice");
    CHECK(Fault({0, 2, 'a', 0, 8, 'b', 0, 8, 0, 0}) == "file: the export tree leads to the node at 8 twice");
    CHECK(Fault({0, 1, 'a', 0, 5, 0, 1, 'b', 0, 5}) == "file: the export tree leads to the node at 5 twice");
}

TEST_CASE("A tree that points or reaches past its end is refused") {
    CHECK(Fault({0, 1, 'a', 0, 5}) == "file: the export tree points past its end");
    CHECK(Fault({0, 1, 'a', 'b'}) == "file: the export tree ends inside a string");
    CHECK(Fault({0, 2, 'a', 0, 2}) == "file: the export tree ends inside a string");
    CHECK(Fault({0, 1, 'a', 0}) == "file: the export tree ends too early");
    CHECK(Fault({9, 0, 0x10, 0}) == "file: the export tree ends too early");
    CHECK(Fault({0}) == "file: the export tree ends too early");
}

TEST_CASE("A payload that lies about its size or points outside the image is refused") {
    CHECK(Fault({0, 1, 'a', 0, 5, 3, 0, 0x10, 0, 0}) == "file: the export tree gives a wrong size for a");
    CHECK(Fault(Bytes{0, 1, 'a', 0, 5, 3, 0} + Uleb(0x2000) + Bytes{0}) ==
          "file: the export tree puts a outside the image");
}

TEST_CASE("Re-exports, resolvers and thread-local symbols are refused as not modelled") {
    for (const uint8_t flags : Bytes{0x08, 0x10, 0x01, 0x02})
        CHECK(Fault({0, 1, 'a', 0, 5, 2, flags, 0x10, 0}) ==
              "file: the export tree exports a in a way that is not modelled (flags " + std::to_string(flags) + ")");
    CHECK(Fault({0, 1, 'a', 0, 5, 2, macho::kExportWeakDefinition, 0x10, 0}) == "");
}

TEST_CASE("A name of unreasonable length is refused") {
    Bytes trie = Bytes{0, 1} + Text(std::string(4097, 'x'));
    trie = trie + Uleb(trie.size() + 2) + Bytes{0, 0};
    CHECK(Fault(trie) == "file: the export tree spells a name of more than 4096 characters");
}

} // namespace
} // namespace sim::loader
