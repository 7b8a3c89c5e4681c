#include "simulator/loader/macho_image.h"

#include "simulator/loader/binder.h"
#include "simulator/loader/image_reader.h"
#include "simulator/loader/macho_format.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace sim::loader {
namespace {

// A name as its source spells it.
std::string Demangled(const std::string &symbol) {
    const std::string name = symbol.starts_with('_') ? symbol.substr(1) : symbol;
    const std::unique_ptr<char, void (*)(void *)> text(abi::__cxa_demangle(name.c_str(), nullptr, nullptr, nullptr),
                                                       std::free);
    return text ? text.get() : name;
}

} // namespace

MachOImage::MachOImage(std::span<const uint8_t> bytes, std::string_view file, const LibraryOpener &open,
                       const std::set<std::string> &absent, ImportWatch *watch)
    : stubs_(watch), image_(ReadImage(bytes, file)), mapped_(image_, bytes, file) {
    BindImports(image_, mapped_, open, absent, stubs_, file);
    if (const Section *frames = image_.FindSection("__TEXT", "__eh_frame"))
        unwind_.emplace(std::span<const uint8_t>(mapped_.At(frames->address), frames->size), file);
    mapped_.Protect();
    staticData_.emplace(mapped_.StaticData());
    Begin();
}

MachOImage::~MachOImage() {
    if (resting_)
        return;
    End();
    staticData_->KeepReachable();
}

void MachOImage::Begin() {
    for (const auto &part : staticData_->Parts())
        BeginLeakRoot(part);
    ForEachFunction(macho::kSectionInitialisers, [](Initialiser initialise) { initialise(); });
}

void MachOImage::End() {
    ForEachFunction(macho::kSectionTerminators, [](Initialiser terminate) { terminate(); });
    for (const auto &part : staticData_->Parts())
        EndLeakRoot(part);
}

void MachOImage::Rest() {
    End();
    staticData_->Restore();
    mapped_.Forbid();
    resting_ = true;
}

void MachOImage::Wake() {
    mapped_.Protect();
    resting_ = false;
    Begin();
}

void *MachOImage::Find(const std::string &name) const {
    const Export *entry = image_.FindExport("_" + name);
    return entry ? mapped_.At(entry->address) : nullptr;
}

std::string MachOImage::Describe(const void *address) const {
    const std::optional<uint32_t> place = mapped_.AddressOf(address);
    if (!place)
        return "";
    const auto next = std::ranges::upper_bound(image_.symbols, *place, {}, &Symbol::address);
    if (next == image_.symbols.begin())
        return "";
    const Symbol &symbol = *std::prev(next);
    std::array<char, 16> distance;
    std::snprintf(distance.data(), distance.size(), "+0x%x", *place - symbol.address);
    return Demangled(symbol.name) + distance.data();
}

void MachOImage::ForEachFunction(uint32_t sectionType, void (*call)(Initialiser)) const {
    for (const Section &section : image_.sections) {
        if (section.type != sectionType)
            continue;
        for (uint32_t offset = 0; offset + sizeof(uint32_t) <= section.size; offset += sizeof(uint32_t))
            call(reinterpret_cast<Initialiser>(mapped_.ReadWord(section.address + offset)));
    }
}

} // namespace sim::loader
