#include "simulator/loader/fixup_reader.h"
#include "simulator/loader/load_error.h"
#include "tests/simulator/loader/image_builder.h"

#include <doctest/doctest.h>

namespace sim::loader {
namespace {

constexpr uint8_t kPointer = macho::kRebaseSetType | macho::kFixupTypePointer;
constexpr uint8_t kInData = macho::kRebaseSetSegmentAndOffset | 1;

// Two segments, one of them writable with 0x20 bytes in the file, and two libraries.
Image EmptyImage() {
    Image image;
    image.segments = {{"__TEXT", 0, 0x1000, 0, 0x1000, macho::kProtectionRead},
                      {"__DATA", 0x1000, 0x1000, 0x1000, 0x20, macho::kProtectionRead | macho::kProtectionWrite}};
    image.dylibs = {{"/A.dylib"}, {"/B.dylib"}};
    image.imageSize = 0x2000;
    return image;
}

std::vector<uint32_t> Rebased(const Bytes &stream) {
    Image image = EmptyImage();
    ReadRebases(image, stream, "file");
    return image.rebases;
}

Image Bound(const Bytes &stream, bool lazy = false) {
    Image image = EmptyImage();
    ReadBinds(image, stream, lazy, "file");
    return image;
}

std::vector<uint32_t> AddressesOf(const Image &image) {
    std::vector<uint32_t> addresses;
    for (const Bind &bind : image.binds)
        addresses.push_back(bind.address);
    return addresses;
}

template <class Work> std::string Fault(Work work) {
    try {
        work();
        return "";
    } catch (const LoadError &error) {
        return error.what();
    }
}

std::string RebaseFault(const Bytes &stream) {
    return Fault([&] { Rebased(stream); });
}

std::string BindFault(const Bytes &stream) {
    return Fault([&] { Bound(stream); });
}

const Bytes kSymbolFromA =
    Bytes{macho::kBindSetOrdinal | 1, macho::kBindSetSymbol} + Text("_a") +
    Bytes{macho::kBindSetType | macho::kFixupTypePointer, macho::kBindSetSegmentAndOffset | 1, 0};

TEST_CASE("Every operation of the rebase stream moves and marks as the format says") {
    CHECK(Rebased({kPointer, kInData, 4, macho::kRebaseTimes | 2}) == std::vector<uint32_t>{0x1004, 0x1008});
    CHECK(Rebased({kPointer, kInData, 0, macho::kRebaseUlebTimes, 3}) == std::vector<uint32_t>{0x1000, 0x1004, 0x1008});
    CHECK(Rebased({kPointer, kInData, 0, macho::kRebaseAndAddAddress, 8, macho::kRebaseTimes | 1}) ==
          std::vector<uint32_t>{0x1000, 0x100C});
    CHECK(Rebased({kPointer, kInData, 0, macho::kRebaseUlebTimesSkippingUleb, 2, 4}) ==
          std::vector<uint32_t>{0x1000, 0x1008});
    CHECK(Rebased({kPointer, kInData, 0, macho::kRebaseAddAddress, 0x10, macho::kRebaseTimes | 1}) ==
          std::vector<uint32_t>{0x1010});
    CHECK(Rebased({kPointer, kInData, 0, macho::kRebaseAddAddressScaled | 3, macho::kRebaseTimes | 1}) ==
          std::vector<uint32_t>{0x100C});
    CHECK(Rebased(Bytes{kPointer, kInData, 8, macho::kRebaseAddAddress} + Uleb(0xFFFFFFFC) +
                  Bytes{macho::kRebaseTimes | 1}) == std::vector<uint32_t>{0x1004});
    CHECK(Rebased({kPointer, kInData, 0, macho::kRebaseDone, macho::kRebaseTimes | 1}).empty());
}

TEST_CASE("A rebase stream that leaves its bounds is refused") {
    CHECK(RebaseFault({kPointer, macho::kRebaseTimes | 1}) ==
          "file: the rebase stream fixes a word before it names a segment");
    CHECK(RebaseFault({kPointer, macho::kRebaseSetSegmentAndOffset | 2, 0}) ==
          "file: the rebase stream names segment 2, which does not exist");
    CHECK(RebaseFault({kPointer, macho::kRebaseSetSegmentAndOffset | 0, 0, macho::kRebaseTimes | 1}) ==
          "file: the rebase stream fixes a word in __TEXT, which is not writable");
    CHECK(RebaseFault({kPointer, kInData, 0x1D, macho::kRebaseTimes | 1}) ==
          "file: the rebase stream fixes a word outside __DATA");
    CHECK(RebaseFault(Bytes{kPointer, kInData} + Uleb(0xFFFFFFFF) + Bytes{macho::kRebaseTimes | 1}) ==
          "file: the rebase stream fixes a word outside __DATA");
    CHECK(RebaseFault({kInData, 0, macho::kRebaseTimes | 1}) ==
          "file: the rebase stream asks for fix-up type 0; only pointers are modelled");
    CHECK(RebaseFault({0x90}) == "file: the rebase stream holds the unknown operation 144");
    CHECK(RebaseFault({kInData}) == "file: the rebase stream ends too early");
    CHECK(RebaseFault({kInData, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x02}) ==
          "file: the rebase stream holds a number of more than 64 bits");
}

TEST_CASE("A stream that fixes the same words for ever is stopped") {
    CHECK(RebaseFault(Bytes{kPointer, kInData, 0, macho::kRebaseUlebTimesSkippingUleb} + Uleb(1ull << 40) +
                      Uleb(0xFFFFFFFC)) == "file: the rebase stream rebases more words than there are");
    CHECK(BindFault(kSymbolFromA + Bytes{macho::kBindUlebTimesSkippingUleb} + Uleb(1ull << 40) + Uleb(0xFFFFFFFC)) ==
          "file: the bind stream binds more words than there are");
}

TEST_CASE("Every operation of the bind stream moves and binds as the format says") {
    CHECK(AddressesOf(Bound(kSymbolFromA + Bytes{macho::kBindOnce, macho::kBindOnce})) ==
          std::vector<uint32_t>{0x1000, 0x1004});
    CHECK(AddressesOf(Bound(kSymbolFromA + Bytes{macho::kBindAndAddAddress, 4, macho::kBindOnce})) ==
          std::vector<uint32_t>{0x1000, 0x1008});
    CHECK(AddressesOf(Bound(kSymbolFromA + Bytes{macho::kBindAndAddAddressScaled | 2, macho::kBindOnce})) ==
          std::vector<uint32_t>{0x1000, 0x100C});
    CHECK(AddressesOf(Bound(kSymbolFromA + Bytes{macho::kBindUlebTimesSkippingUleb, 2, 12})) ==
          std::vector<uint32_t>{0x1000, 0x1010});
    CHECK(AddressesOf(Bound(kSymbolFromA + Bytes{macho::kBindAddAddress, 0x10, macho::kBindOnce})) ==
          std::vector<uint32_t>{0x1010});
}

TEST_CASE("Symbol, library, weakness and addend last until they are set anew") {
    const Image image =
        Bound(kSymbolFromA + Bytes{macho::kBindOnce} + Bytes{macho::kBindSetAddend, 0x7C, macho::kBindOnce} +
              Bytes{macho::kBindSetOrdinalUleb, 2, macho::kBindOnce} +
              Bytes{macho::kBindSetSymbol | macho::kSymbolFlagWeakImport} + Text("_b") + Bytes{macho::kBindOnce} +
              Bytes{macho::kBindSetSpecialOrdinal | 0x0E, macho::kBindOnce} +
              Bytes{macho::kBindSetOrdinal | 1, macho::kBindSetSymbol} + Text("_a") + Bytes{macho::kBindOnce});
    CHECK(image.imports == std::vector<Import>{{"_a", 1, false}, {"_a", 2, false}, {"_b", 2, true}, {"_b", -2, true}});
    REQUIRE(image.binds.size() == 6);
    CHECK(image.binds[0].addend == 0);
    CHECK(image.binds[1].addend == -4);
    CHECK(image.binds[1].import == 0);
    CHECK(image.binds[2].import == 1);
    CHECK(image.binds[5].import == 0);
}

TEST_CASE("In a lazy stream the end of one import is not the end of the stream") {
    const Bytes stream =
        Bytes{macho::kBindSetSegmentAndOffset | 1, 0, macho::kBindSetOrdinal | 1, macho::kBindSetSymbol} + Text("_a") +
        Bytes{macho::kBindOnce, macho::kBindDone} +
        Bytes{macho::kBindSetSegmentAndOffset | 1, 4, macho::kBindSetOrdinal | 2, macho::kBindSetSymbol} + Text("_b") +
        Bytes{macho::kBindOnce, macho::kBindDone, 0, 0};
    const Image image = Bound(stream, true);
    CHECK(AddressesOf(image) == std::vector<uint32_t>{0x1000, 0x1004});
    CHECK(image.binds[0].lazy);
}

TEST_CASE("A bind stream that leaves its bounds or says too little is refused") {
    const Bytes place = {macho::kBindSetType | macho::kFixupTypePointer, macho::kBindSetSegmentAndOffset | 1, 0};
    CHECK(BindFault({macho::kBindSetOrdinal | 3}) == "file: the bind stream names library 3, which does not exist");
    CHECK(BindFault(Bytes{macho::kBindSetOrdinalUleb} + Uleb(1ull << 33)) ==
          "file: the bind stream names library 8589934592, which does not exist");
    CHECK(BindFault(place + Bytes{macho::kBindOnce}) == "file: the bind stream binds a word before it names a symbol");
    CHECK(BindFault(place + Bytes{macho::kBindSetSymbol} + Text("_a") + Bytes{macho::kBindOnce}) ==
          "file: the bind stream binds _a before it names a library");
    CHECK(BindFault({macho::kBindSetSymbol, '_', 'a'}) == "file: the bind stream ends inside a string");
    CHECK(BindFault(Bytes{macho::kBindSetSymbol} + Text(std::string(5000, 'x'))) ==
          "file: the bind stream names a symbol of more than 4096 characters");
    CHECK(BindFault({0xD0}) == "file: the bind stream holds the unknown operation 208");
    CHECK(BindFault(kSymbolFromA + Bytes{macho::kBindSetType | 2, macho::kBindOnce}) ==
          "file: the bind stream asks for fix-up type 2; only pointers are modelled");
    CHECK(BindFault(kSymbolFromA + Bytes{macho::kBindAddAddress, 0x1D, macho::kBindOnce}) ==
          "file: the bind stream fixes a word outside __DATA");
}

} // namespace
} // namespace sim::loader
