#include "simulator/macos/CoreServices/metadata/items/audio_header.h"

#include <taglib/audioproperties.h>
#include <taglib/fileref.h>
#include <taglib/tiostream.h>
#include <taglib/tpropertymap.h>

#include <climits>

namespace sim::macos {

namespace {

/// A file as the library reads one. It is never written to.
class Stream final : public TagLib::IOStream {
public:
    Stream(const FileBytes &file, std::uint64_t size, std::string_view extension)
        : file_(file), size_(static_cast<long>(size)), name_("." + std::string(extension)) {}

    TagLib::FileName name() const override { return name_.c_str(); }
    TagLib::ByteVector readBlock(unsigned long length) override {
        const auto bytes = file_.Read(static_cast<std::uint64_t>(at_), length);
        at_ += static_cast<long>(bytes.size());
        return {reinterpret_cast<const char *>(bytes.data()), static_cast<unsigned>(bytes.size())};
    }
    void writeBlock(const TagLib::ByteVector &) override {}
    void insert(const TagLib::ByteVector &, unsigned long, unsigned long) override {}
    void removeBlock(unsigned long, unsigned long) override {}
    bool readOnly() const override { return true; }
    bool isOpen() const override { return file_.IsOpen(); }
    void seek(long offset, Position from) override {
        const long to = offset + (from == Beginning ? 0 : from == Current ? at_ : size_);
        at_ = to < 0 ? 0 : to;
    }
    long tell() const override { return at_; }
    long length() override { return size_; }
    void truncate(long) override {}

private:
    const FileBytes &file_;
    long size_;
    long at_ = 0;
    std::string name_;
};

} // namespace

std::optional<AudioHeader> ReadAudioHeader(const FileBytes &file, std::uint64_t size, std::string_view extension) {
    if (!file.IsOpen() || size > LONG_MAX)
        return std::nullopt;
    Stream stream(file, size, extension);
    const TagLib::FileRef read(&stream);
    if (read.isNull())
        return std::nullopt;
    AudioHeader header;
    if (const TagLib::AudioProperties *properties = read.audioProperties()) {
        header.seconds = properties->lengthInMilliseconds() / 1000.0;
        header.bitRate = std::int64_t{properties->bitrate()} * 1000;
        header.sampleRate = properties->sampleRate();
        header.channels = properties->channels();
    }
    // The properties of a file are those of whichever of its tags has some; its tag is always that of one kind.
    const TagLib::PropertyMap said = read.file()->properties();
    const auto text = [&said](const char *name) {
        const auto found = said.find(name);
        return found == said.end() || found->second.isEmpty() ? TagLib::String() : found->second.front();
    };
    header.track = text("TRACKNUMBER").toInt();
    header.title = text("TITLE").to8Bit(true);
    header.artist = text("ARTIST").to8Bit(true);
    header.album = text("ALBUM").to8Bit(true);
    header.genre = text("GENRE").to8Bit(true);
    return header;
}

} // namespace sim::macos
