// Byte buffers.
#include "simulator/macos/CoreFoundation/data.h"

#include "simulator/macos/CoreFoundation/scripted_data_length.h"
#include "simulator/macos/control/faults.h"

#include <algorithm>
#include <functional>
#include <string_view>

namespace sim::macos {

bool Data::EqualTo(const Object &other) const { return bytes_ == static_cast<const Data &>(other).bytes_; }

CFHashCode Data::Hash() const {
    constexpr std::size_t kHashed = 80;
    const std::size_t count = std::min(kHashed, bytes_.size());
    return std::hash<std::string_view>()({reinterpret_cast<const char *>(bytes_.data()), count});
}

std::string Data::Description() const { return "of " + std::to_string(bytes_.size()) + " bytes"; }

CFRef<CFDataRef> MakeData(std::span<const UInt8> bytes) {
    return CFRef<CFDataRef>::Adopt((new Data(bytes))->As<CFDataRef>());
}

namespace {

FallibleCall createData("CFDataCreate");
std::optional<CFIndex> claimedLength;

} // namespace

ScriptedDataLength::ScriptedDataLength(CFIndex length) { claimedLength = length; }

ScriptedDataLength::~ScriptedDataLength() { claimedLength.reset(); }

std::optional<CFIndex> ScriptedDataLength::Current() { return claimedLength; }

} // namespace sim::macos

using namespace sim::macos;

CFTypeID CFDataGetTypeID() {
    static const CFTypeID type = RegisterType("CFData");
    return type;
}

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8 *bytes, CFIndex length) {
    if (length > 0 && !bytes)
        Stop("CFDataCreate was given no bytes");
    if (createData.Fails() || length < 0)
        return nullptr;
    return MakeData({bytes, static_cast<std::size_t>(length)}).Give();
}

const UInt8 *CFDataGetBytePtr(CFDataRef data) {
    const std::span<const UInt8> bytes = Expect<Data>(data).Bytes();
    return bytes.empty() ? nullptr : bytes.data();
}

CFIndex CFDataGetLength(CFDataRef data) {
    const auto length = static_cast<CFIndex>(Expect<Data>(data).Bytes().size());
    return ScriptedDataLength::Current().value_or(length);
}
