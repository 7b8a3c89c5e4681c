// What a file of sound says about itself.
#include "simulator/macos/CoreServices/metadata/items/attribute_reader.h"
#include "simulator/macos/CoreServices/metadata/items/values.h"

namespace sim::macos {

namespace {

template <auto AudioHeader::*field> CFTypeRef Number(FileFacts &file) {
    const AudioHeader *audio = file.Audio();
    return audio && audio->*field > 0 ? NumberValue(audio->*field) : nullptr;
}

template <auto AudioHeader::*field> CFTypeRef Text(FileFacts &file) {
    const AudioHeader *audio = file.Audio();
    return audio && !(audio->*field).empty() ? TextValue(audio->*field) : nullptr;
}

CFTypeRef Authors(FileFacts &file) {
    const AudioHeader *audio = file.Audio();
    return audio && !audio->artist.empty() ? ListValue({audio->artist}) : nullptr;
}

constexpr AttributeReader kReaders[] = {
    {"kMDItemDurationSeconds", Number<&AudioHeader::seconds>},
    {"kMDItemAudioBitRate", Number<&AudioHeader::bitRate>},
    {"kMDItemAudioSampleRate", Number<&AudioHeader::sampleRate>},
    {"kMDItemAudioChannelCount", Number<&AudioHeader::channels>},
    {"kMDItemAudioTrackNumber", Number<&AudioHeader::track>},
    {"kMDItemTitle", Text<&AudioHeader::title>},
    {"kMDItemAuthors", Authors},
    {"kMDItemAlbum", Text<&AudioHeader::album>},
    {"kMDItemMusicalGenre", Text<&AudioHeader::genre>},
};

} // namespace

std::span<const AttributeReader> AudioAttributes() { return kReaders; }

} // namespace sim::macos
