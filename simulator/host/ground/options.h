// What kind of host stands in: its age, the services it lacks, the companion classes that are loaded beside the plugin,
// and the two things it needs from the platform without knowing the platform: a File Manager and a maker of CFStrings.
// All of it is plain data, decided before the host starts; what changes while a program runs is asked of Host.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace sim::host {

/// The encoding numbers that hosts and Core Foundation share.
enum : uint32_t {
    kMacRoman = 0x0000,
    kUTF16 = 0x0100,
    kISOLatin1 = 0x0201,
    kWindowsLatin1 = 0x0500,
    kASCII = 0x0600,
    kUTF8 = 0x08000100,
    kUTF32 = 0x0C000100,
    kUnknownEncoding = 0xFFFF,
};

/// The bytes of a text and what they are encoded in.
struct Text {
    std::string bytes;
    uint32_t encoding = kUTF8;

    bool operator==(const Text &) const = default;
};

/// The 80 opaque bytes by which the File Manager names an existing item.
using FileReference = std::array<std::byte, 80>;

/// What a host asks of the File Manager. Paths are POSIX paths in UTF-8.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// Names the item at `path`. False, and `reference` untouched, when nothing is there.
    virtual bool MakeReference(const std::string &path, FileReference &reference) = 0;
    /// The path of the item that `reference` names, or nothing when it names none.
    virtual std::optional<std::string> PathOf(const FileReference &reference) = 0;
    /// The path of the item that the 70-byte FSSpec at `spec` names, or nothing when it names none.
    virtual std::optional<std::string> PathOfSpec(const void *spec) = 0;
};

/// A class that another plugin brings along. A wrapper's data begins with the wrapped reference, a word that nobody but
/// the wrapper touches, and the tag; a plain class has `dataSize` bytes of zeros for the test to fill.
struct CompanionClass {
    static constexpr uint32_t kWrapperTag = 0x52424346; // 'RBCF'

    std::string name;
    std::string superName = {};
    bool wraps = true;
    /// The tag of a new instance; anything but kWrapperTag makes an instance that must be left alone.
    uint32_t tag = kWrapperTag;
    /// Called with a non-null wrapped reference when a rightly tagged instance dies.
    std::function<void(const void *)> release = {};
    uint32_t dataSize = 12;
};

/// What the set function of an object array expects behind the array. Hosts take the element first; the other order is
/// there to show what becomes of a plugin that has it wrong.
enum class SetterOrder { kValueThenIndex, kIndexThenValue };

struct HostOptions {
    /// What "REALGetRBVersion" reports. Without a value the host has no such service and counts as older than any.
    std::optional<double> version = 2013.04;
    /// What "REALinRuntime" answers.
    bool runsBuiltApplication = true;
    /// Where the data of a class without a superclass begins inside an instance, in bytes: at least 8. Written into
    /// each class record as forSystemUse.
    int32_t rootDataOffset = 24;
    /// Whether arrays of a host below 2016.0 (or without a version) let their element storage be seen. Newer hosts
    /// never do.
    bool directArrayStorage = true;
    SetterOrder setterOrder = SetterOrder::kValueThenIndex;
    /// Names that the resolver answers with null, or loadable declarations (see Services in host.h) that are not found.
    std::set<std::string, std::less<>> withheld = {};
    /// Leaves out every first name of a service that has an older second name.
    bool secondNamesOnly = false;
    /// Classes of the host's own that this host does not have, "Dictionary" for example.
    std::set<std::string, std::less<>> missingClasses = {};
    std::vector<CompanionClass> companions = {};
    /// Gives a new object the address of the one of the same size that died last. Otherwise a dead address never comes
    /// back and touching it is caught.
    bool reuseAddresses = false;
    /// Keeps the text of every request and call. The counts are kept in any case.
    bool recordCalls = true;
    /// Borrowed; must outlive the host. Without one every folder item service fails as for an item that is not there.
    FileManager *files = nullptr;
    /// Makes a CFString, +1, or null. Called for strings of known encoding only.
    std::function<const void *(const Text &)> makeCFString = {};
    /// Whether "REALGetStringCFString" is there: by default from 2012.0 on, given a maker.
    std::optional<bool> offersCFStrings = {};
};

} // namespace sim::host
