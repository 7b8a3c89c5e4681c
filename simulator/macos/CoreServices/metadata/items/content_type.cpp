#include "simulator/macos/CoreServices/metadata/items/content_type.h"

#include "simulator/macos/CoreServices/metadata/items/file_facts.h"

#include <algorithm>

namespace sim::macos {

namespace {

using Bytes = std::span<const std::uint8_t>;
using namespace std::string_view_literals;

/// Enough for every signature (a tar archive's stands at 257) and for a sample of text.
constexpr std::size_t kHeadSize = 4096;

struct Signature {
    std::size_t offset;
    std::string_view bytes;
    std::string_view type;
};

constexpr Signature kSignatures[] = {
    {0, "\x89PNG\r\n\x1A\n", "public.png"},
    {0, "\xFF\xD8\xFF", "public.jpeg"},
    {0, "GIF8", "com.compuserve.gif"},
    {0, "II*\0"sv, "public.tiff"},
    {0, "MM\0*"sv, "public.tiff"},
    {0, "%PDF-", "com.adobe.pdf"},
    {0, "%!PS", "com.adobe.postscript"},
    {0, "PK\3\4", "public.zip-archive"},
    {0, "\x1F\x8B", "org.gnu.gnu-zip-archive"},
    {0, "BZh", "public.bzip2-archive"},
    {0,
     "\xFD"
     "7zXZ\0"sv,
     "org.tukaani.xz-archive"},
    {257, "ustar", "public.tar-archive"},
    {0,
     "\x7F"
     "ELF",
     "public.unix-executable"},
    {0, "\xCE\xFA\xED\xFE", "com.apple.mach-o-binary"},
    {0, "\xCF\xFA\xED\xFE", "com.apple.mach-o-binary"},
    {0, "#!", "public.script"},
    {0, "<?xml", "public.xml"},
    {0, "<!DOCTYPE html", "public.html"},
    {0, "{\\rtf", "public.rtf"},
    {0, "ID3", "public.mp3"},
    {0, "fLaC", "org.xiph.flac"},
    {0, "OggS", "org.xiph.ogg-audio"},
    {8, "WAVE", "com.microsoft.waveform-audio"},
    {4, "ftypqt", "com.apple.quicktime-movie"},
    {4, "ftyp", "public.mpeg-4"},
};

bool Has(Bytes head, const Signature &signature) {
    if (head.size() < signature.offset + signature.bytes.size())
        return false;
    return std::ranges::equal(
        signature.bytes, head.subspan(signature.offset, signature.bytes.size()),
        [](char wanted, std::uint8_t found) { return static_cast<std::uint8_t>(wanted) == found; });
}

bool IsUTF16(Bytes head) {
    return head.size() >= 2 && head.size() % 2 == 0 &&
           ((head[0] == 0xFE && head[1] == 0xFF) || (head[0] == 0xFF && head[1] == 0xFE));
}

bool IsPrintableASCII(std::uint8_t byte) {
    constexpr std::string_view kControlsOfText = "\t\n\r\f\b\x1B";
    return byte >= 0x20 ? byte != 0x7F : kControlsOfText.find(static_cast<char>(byte)) != std::string_view::npos;
}

/// Latin-1 has nothing printable from 80 to 9F; UTF-8 uses those bytes, but only behind one from C2 on.
bool IsTextByte(std::uint8_t byte, std::uint8_t before) {
    if (byte < 0x80)
        return IsPrintableASCII(byte);
    return byte >= 0xA0 || before >= 0x80;
}

bool IsExecutable(FileFacts &file) { return file.Status()->stx_mode & (S_IXUSR | S_IXGRP | S_IXOTH); }

std::string_view TypeOfRegularFile(FileFacts &file) {
    if (const UniformType *known = UniformTypeForExtension(file.Extension(), false))
        return known->identifier;
    const auto head = FileBytes(file.Path()).Read(0, kHeadSize);
    if (const UniformType *known = TypeBySignature(head))
        return known->identifier;
    if (IsExecutable(file))
        return "public.unix-executable";
    return LooksLikeText(head) ? "public.plain-text" : "public.data";
}

std::string_view TypeOfFolder(FileFacts &file) {
    if (file.Path() == "/")
        return "public.volume";
    const UniformType *package = UniformTypeForExtension(file.Extension(), true);
    return package ? package->identifier : "public.folder";
}

} // namespace

const UniformType *TypeBySignature(Bytes head) {
    for (const Signature &signature : kSignatures)
        if (Has(head, signature))
            return &UniformTypeNamed(signature.type);
    return nullptr;
}

bool LooksLikeText(Bytes head) {
    if (IsUTF16(head))
        return true;
    std::uint8_t before = 0;
    for (const std::uint8_t byte : head) {
        if (!IsTextByte(byte, before))
            return false;
        before = byte;
    }
    return !head.empty();
}

const UniformType &TypeOfFile(FileFacts &file) {
    switch (file.Status()->stx_mode & S_IFMT) {
    case S_IFREG:
        return UniformTypeNamed(TypeOfRegularFile(file));
    case S_IFDIR:
        return UniformTypeNamed(TypeOfFolder(file));
    case S_IFLNK:
        return UniformTypeNamed("public.symlink");
    default: // pipes, sockets, devices
        return UniformTypeNamed("public.data");
    }
}

} // namespace sim::macos
