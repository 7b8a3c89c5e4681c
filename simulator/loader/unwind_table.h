// Makes the frames of Mach-O code passable for C++ exceptions of the Linux runtime. Its unwinder reads the same call
// frame information, but numbers two registers the other way round (Darwin: ebp 4, esp 5; Linux: esp 4, ebp 5) and
// wants a zero word at the end. So it is given a corrected copy, which lives as long as the registration.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace sim::loader {

// The corrected copy of the `section` mapped at its final place, made to be read at the address of `copy`, which must
// have room for section.size() + 4 bytes. Throws LoadError for what is malformed or not modelled.
void TranslateUnwindTable(std::span<const uint8_t> section, std::span<uint8_t> copy, std::string_view file);

class UnwindRegistration {
public:
    // Registers the frames that the `__eh_frame` section, mapped and rebased at its final place, describes.
    UnwindRegistration(std::span<const uint8_t> section, std::string_view file);
    UnwindRegistration(const UnwindRegistration &) = delete;
    UnwindRegistration &operator=(const UnwindRegistration &) = delete;
    ~UnwindRegistration();

private:
    std::vector<uint8_t> copy_;
};

} // namespace sim::loader
