// Which type and kind a file has for a program.
#include "tests/simulator/macos/items/support/reading.h"
#include "tests/simulator/macos/items/support/sample_images.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace sim::macos {

namespace {

using namespace std::string_literals;

std::string TypeOf(const std::string &path) { return Text(Attribute(path, "kMDItemContentType")); }
std::string KindOf(const std::string &path) { return Text(Attribute(path, "kMDItemKind")); }

} // namespace

TEST_CASE("a well-known extension tells the type, whatever the file holds") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(TypeOf(folder.File("letter.txt", "")) == "public.plain-text");
    CHECK(TypeOf(folder.File("paper.PDF", "no such thing")) == "com.adobe.pdf");
    CHECK(KindOf(folder.PathOf("paper.PDF")) == "PDF document");
    CHECK(TypeOf(folder.File("archive.tar.gz", "")) == "org.gnu.gnu-zip-archive");
    CHECK(TypeOf(folder.File("main.cpp", "int main() {}")) == "public.c-plus-plus-source");
}

TEST_CASE("without a well-known extension the first bytes tell the type") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(TypeOf(folder.File("a", kRGBAPicture)) == "public.png");
    CHECK(TypeOf(folder.File("b", kColorPhoto)) == "public.jpeg");
    CHECK(TypeOf(folder.File("c.xyz", "%PDF-1.4\n")) == "com.adobe.pdf");
    CHECK(TypeOf(folder.File("d", "#!/bin/sh\n")) == "public.script");
    CHECK(TypeOf(folder.File("e", "PK\3\4 and so on")) == "public.zip-archive");
    CHECK(TypeOf(folder.File("f", "\x7F"
                                  "ELF\1\1\1")) == "public.unix-executable");
    CHECK(TypeOf(folder.File("g", std::string(257, '\0') + "ustar")) == "public.tar-archive");
    CHECK(TypeOf(folder.File("h", "Plain words.\n")) == "public.plain-text");
    CHECK(TypeOf(folder.File("i", "Gr\xC3\xBC\xC3\x9F"
                                  "e\n")) == "public.plain-text");
    CHECK(TypeOf(folder.File("j", "Gr\xFC\xDF"
                                  "e in Latin-1\n")) == "public.plain-text");
    CHECK(TypeOf(folder.File("k", "\xFF\xFEG\0r\0"s)) == "public.plain-text");
    CHECK(TypeOf(folder.File("l", "zero\0byte"s)) == "public.data");
    CHECK(TypeOf(folder.File("m", "\x80 begins no character")) == "public.data");
    CHECK(TypeOf(folder.File("n", "")) == "public.data");
    CHECK(KindOf(folder.PathOf("n")) == "Document");
    CHECK(TypeOf(folder.File(".hidden", "words\n")) == "public.plain-text");
}

TEST_CASE("an executable file that nothing else tells about is a Unix executable") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const std::string path = folder.File("tool", "words\n");
    REQUIRE(chmod(path.c_str(), 0755) == 0);
    CHECK(TypeOf(path) == "public.unix-executable");
    CHECK(KindOf(path) == "Unix executable file");
}

TEST_CASE("folders, packages, links and what is no file have types of their own") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(TypeOf(folder.Path()) == "public.folder");
    CHECK(KindOf(folder.Path()) == "Folder");
    CHECK(TypeOf("/") == "public.volume");
    CHECK(TypeOf(folder.Folder("Notes.app")) == "com.apple.application-bundle");
    CHECK(TypeOf(folder.Folder("pictures.png")) == "public.folder");
    REQUIRE(symlink("nowhere", folder.PathOf("link.txt").c_str()) == 0);
    CHECK(TypeOf(folder.PathOf("link.txt")) == "public.symlink");
    REQUIRE(mkfifo(folder.PathOf("pipe").c_str(), 0600) == 0);
    CHECK(TypeOf(folder.PathOf("pipe")) == "public.data");
}

TEST_CASE("the content type tree is an array that begins with the type") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    CHECK(Texts(Attribute(folder.File("a.jpg", kColorPhoto), "kMDItemContentTypeTree")) ==
          std::vector<std::string>{"public.jpeg", "public.image", "public.data", "public.item", "public.content"});
}

TEST_CASE("the types agree with what file(1) makes of the same bytes") {
    const tests::Balanced balance;
    const tests::TemporaryFolder folder;
    const struct {
        std::string bytes;
        const char *mime;
        const char *type;
    } kSamples[] = {
        {kRGBAPicture, "image/png", "public.png"},
        {kColorPhoto, "image/jpeg", "public.jpeg"},
        {"%PDF-1.4\n%\xE2\xE3\xCF\xD3\n", "application/pdf", "com.adobe.pdf"},
        {"GIF89a\1\0\1\0\0\0\0;"s, "image/gif", "com.compuserve.gif"},
        {"\x1F\x8B\x08\0\0\0\0\0\0\3\3\0\0\0\0\0\0\0\0\0"s, "application/gzip", "org.gnu.gnu-zip-archive"},
        {"Words and nothing else.\n", "text/plain", "public.plain-text"},
        {"<?xml version=\"1.0\"?>\n<a/>\n", "text/xml", "public.xml"},
        {"{\\rtf1 words}", "text/rtf", "public.rtf"},
    };
    for (const auto &sample : kSamples) {
        CAPTURE(sample.mime);
        const std::string path = folder.File("sample", sample.bytes);
        CHECK(OutputOf("file --brief --mime-type " + path) == sample.mime);
        CHECK(TypeOf(path) == sample.type);
    }
}

} // namespace sim::macos
