// What a program reads of files of sound.
#include "tests/simulator/macos/items/support/reading.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <algorithm>

namespace sim::macos {

namespace {

using namespace std::string_literals;

std::string LittleEndian32(std::size_t number) {
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(number >> shift);
    return bytes;
}

std::string Chunk(const std::string &name, const std::string &data) {
    return name + LittleEndian32(data.size()) + data + (data.size() % 2 != 0 ? "\0"s : ""s);
}

/// A second and a half of silence: one channel, 8000 samples a second, 8 bits each.
std::string Wave(const std::string &title) {
    return Chunk("RIFF", "WAVE" +
                             Chunk("fmt ", "\1\0\1\0"s + LittleEndian32(8000) + LittleEndian32(8000) + "\1\0\x08\0"s) +
                             (title.empty() ? "" : Chunk("LIST", "INFO" + Chunk("INAM", title + '\0'))) +
                             Chunk("data", std::string(12000, '\x80')));
}

/// The beginning of two seconds in two channels, 44100 samples a second, 16 bits each; the sound itself is not there.
std::string Flac(const std::vector<std::string> &comments) {
    const std::string stream = "\x10\0\x10\0\0\0\0\0\0\0"s     // the sizes of blocks and frames
                               "\x0A\xC4\x42\xF0\0\1\x58\x88"s // rate, channels, bits, 88200 samples
                               + std::string(16, '\0');        // a checksum
    std::string said = LittleEndian32(0) + LittleEndian32(comments.size());
    for (const std::string &comment : comments)
        said += LittleEndian32(comment.size()) + comment;
    return "fLaC\0\0\0\x22"s + stream + "\x84\0\0"s + static_cast<char>(said.size()) + said;
}

/// Ten frames of 128 kbit/s behind a tag with a title.
std::string Layer3(const std::string &title) {
    const std::string frame = "TIT2\0\0\0"s + static_cast<char>(title.size() + 1) + "\0\0\0"s + title;
    std::string bytes = "ID3\3\0\0\0\0\0"s + static_cast<char>(frame.size()) + frame;
    for (int i = 0; i < 10; i++)
        bytes += "\xFF\xFB\x90\0"s + std::string(413, '\0');
    return bytes;
}

} // namespace

TEST_CASE("a file of sound tells how long it plays, what it is called and who made it") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto flac = folder.File(
        "a.flac", Flac({"TITLE=Ein Stück", "ARTIST=The Band", "ALBUM=Songs", "GENRE=Waltz", "TRACKNUMBER=7"}));
    CHECK(Fraction(Attribute(flac, "kMDItemDurationSeconds")) == 2.0);
    CHECK(Text(Attribute(flac, "kMDItemTitle")) == "Ein Stück");
    CHECK(Texts(Attribute(flac, "kMDItemAuthors")) == std::vector<std::string>{"The Band"});
    CHECK(Text(Attribute(flac, "kMDItemAlbum")) == "Songs");
    CHECK(Text(Attribute(flac, "kMDItemMusicalGenre")) == "Waltz");
    CHECK(Whole(Attribute(flac, "kMDItemAudioTrackNumber")) == 7);
    CHECK(Whole(Attribute(flac, "kMDItemAudioSampleRate")) == 44100);
    CHECK(Whole(Attribute(flac, "kMDItemAudioChannelCount")) == 2);
}

TEST_CASE("sound is read in the formats that are about") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto wave = folder.File("a.wav", Wave("Silence"));
    CHECK(Fraction(Attribute(wave, "kMDItemDurationSeconds")) == 1.5);
    CHECK(Text(Attribute(wave, "kMDItemTitle")) == "Silence");
    CHECK(Whole(Attribute(wave, "kMDItemAudioBitRate")) == 64000);
    const auto layer3 = folder.File("a.mp3", Layer3("Noise"));
    CHECK(Fraction(Attribute(layer3, "kMDItemDurationSeconds")) == doctest::Approx(4170 * 8 / 128000.0).epsilon(0.01));
    CHECK(Text(Attribute(layer3, "kMDItemTitle")) == "Noise");
    CHECK(Whole(Attribute(layer3, "kMDItemAudioBitRate")) == 128000);
}

TEST_CASE("what a file of sound does not say is no attribute, and what is none has none") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto silent = folder.File("a.wav", Wave(""));
    for (const char *key : {"kMDItemTitle", "kMDItemAuthors", "kMDItemAlbum", "kMDItemAudioTrackNumber"})
        CHECK_FALSE(Attribute(silent, key));
    for (const char *name : {"words.mp3", "words.flac", "words.txt"})
        CHECK_FALSE(Attribute(folder.File(name, "These are words.\n"), "kMDItemDurationSeconds"));
    CHECK_FALSE(Attribute(folder.File("cut.flac", Flac({}).substr(0, 20)), "kMDItemDurationSeconds"));
}

TEST_CASE("a title that somebody wrote down with the file goes before its own, and is listed once") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const auto path = folder.File("a.wav", Wave("Silence"));
    tests::SetExtendedAttribute(path, "user.dublincore.title", "Quiet");
    CHECK(Text(Attribute(path, "kMDItemTitle")) == "Quiet");
    const auto names = Texts(Value::Adopt(MDItemCopyAttributeNames(ItemAt(path).Get())));
    CHECK(std::ranges::count(names, "kMDItemTitle") == 1);
}

} // namespace sim::macos
