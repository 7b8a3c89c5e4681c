// Items of real files of many kinds, against what stat(2), file(1), access(2) and getxattr(2) say of the same files.
#include <doctest/doctest.h>

#include "tests/spotlight/support/item_files.h"
#include "tests/spotlight/support/query_program.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

using namespace tests;
using namespace std::string_literals;

using sim::host::DateFields;

namespace {

/// 5 by 3 pixels in colour with transparency.
const std::string kPicture =
    "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x05\0\0\0\x03\x08\x06\0\0\0\x5B\x36\xC5\xF8\0\0\0\x18"
    "IDAT\x78\xDA\x63\x60\x10\x91\xFB\x8F\x81\xB9\x80\x04\x3A\x66\x10\x01\x12\xE8\x18\0\x27\xBB"
    "\x12\x76\x29\x7A\x39\x46\0\0\0\0IEND\xAE\x42\x60\x82"s;
/// 16 by 9 pixels, gray; the frame without its scan.
const std::string kPhoto = "\xFF\xD8\xFF\xE0\0\x10JFIF\0\x01\x01\x01\0\x48\0\x48\0\0"
                           "\xFF\xC0\0\x0B\x08\0\x09\0\x10\x01\x01\x11\0\xFF\xD9"s;
const std::string kPDF = "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                         "2 0 obj<</Type/Pages/Kids[]/Count 0>>endobj\ntrailer<</Root 1 0 R>>\n%%EOF\n";

/// What file(1) calls a kind of file, and the type that the system gives it.
const std::map<std::string, std::string> kTypes = {
    {"text/plain", "public.plain-text"},
    {"image/png", "public.png"},
    {"image/jpeg", "public.jpeg"},
    {"application/pdf", "com.adobe.pdf"},
    {"text/html", "public.html"},
    {"text/x-shellscript", "public.script"},
    {"inode/directory", "public.folder"},
    {"inode/symlink", "public.symlink"},
    {"application/octet-stream", "public.data"},
};

/// One file of each kind. No name has an extension: what a file is shows in itself.
struct FilesOfManyKinds {
    FilesOfManyKinds() {
        folder.File("text", "Dear Ann,\nmany words\n");
        folder.File("picture", kPicture);
        folder.File("photo", kPhoto);
        folder.File("document", kPDF);
        folder.File("page", "<!DOCTYPE html>\n<html><head><title>T</title></head><body>x</body></html>\n");
        folder.File("script", "#!/bin/sh\nexit 0\n");
        folder.File("bytes", "\0\1\2\3\xFE\xFF\x80\x81\7\0"s);
        folder.Folder("folder");
        REQUIRE(symlink("text", folder.PathOf("link").c_str()) == 0);
        time_t seconds = 1'404'171'059; // 2014-06-30 23:30:59 GMT, and a day later for each
        for (const std::string &name : names) {
            const timespec times[] = {{.tv_sec = seconds + 1, .tv_nsec = 0},
                                      {.tv_sec = seconds, .tv_nsec = 900'000'000}};
            REQUIRE(utimensat(AT_FDCWD, folder.PathOf(name).c_str(), times, AT_SYMLINK_NOFOLLOW) == 0);
            seconds += 86'400;
        }
        REQUIRE(chmod(folder.PathOf("text").c_str(), 0400) == 0);
    }
    TemporaryFolder folder;
    const Names names = {"text", "picture", "photo", "document", "page", "script", "bytes", "folder", "link"};
};

struct stat64 StatusOf(const std::string &path) {
    struct stat64 status;
    REQUIRE(lstat64(path.c_str(), &status) == 0);
    return status;
}

DateFields FieldsOf(time_t time) {
    tm fields{};
    gmtime_r(&time, &fields);
    return {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec};
}

/// What a program of this machine prints, without the line's end.
std::string OutputOf(const std::string &command) {
    FILE *const pipe = popen(("LC_ALL=C " + command).c_str(), "re");
    REQUIRE(pipe != nullptr);
    std::string output;
    for (int c; (c = fgetc(pipe)) != EOF;)
        output += static_cast<char>(c);
    REQUIRE(pclose(pipe) == 0);
    while (output.ends_with('\n'))
        output.pop_back();
    return output;
}

DateFields DateOf(Object &item, const char *name) { return item.Call<Object>("GetAttribute", name).Date(); }
std::string TextOf(Object &item, const char *name) { return item.Call<std::string>("AttributeString", name); }
double NumberOf(Object &item, const char *name) { return item.Call<double>("AttributeDouble", name); }

/// Calls `check` with each file's path and item.
template <class Check> void ForEachFile(const Check &check) {
    const FilesOfManyKinds files;
    TestSession session;
    for (const std::string &name : files.names) {
        CAPTURE(name);
        Object item = ConstructItem(session.Host(), files.folder.PathOf(name));
        REQUIRE(item.Get<int32_t>("Handle") != 0);
        check(name, files.folder.PathOf(name), item);
        CHECK(session.TakeException() == "");
    }
}

} // namespace

TEST_CASE("Sizes, names, owners and dates are those that stat(2) reads") {
    ForEachFile([](const std::string &name, const std::string &path, Object &item) {
        const struct stat64 status = StatusOf(path);
        CHECK(item.Get<std::string>("FSName") == name);
        CHECK(item.Get<std::string>("DisplayName") == name);
        CHECK(item.Get<std::string>("Path") == path);
        const bool isFolder = S_ISDIR(status.st_mode);
        CHECK(item.Get<int64_t>("FSSize") == (isFolder ? 0 : status.st_size));
        CHECK(item.Call("GetAttribute", "kMDItemFSSize").IsNil() == isFolder);
        CHECK(item.Call("GetAttribute", "kMDItemFSNodeCount").IsNil() == !isFolder);
        CHECK(NumberOf(item, "kMDItemFSOwnerUserID") == status.st_uid);
        CHECK(NumberOf(item, "kMDItemFSOwnerGroupID") == status.st_gid);
        CHECK(DateOf(item, "kMDItemFSContentChangeDate") == FieldsOf(status.st_mtim.tv_sec));
        CHECK(DateOf(item, "kMDItemContentModificationDate") == FieldsOf(status.st_mtim.tv_sec));
        CHECK(DateOf(item, "kMDItemAttributeChangeDate") == FieldsOf(status.st_ctim.tv_sec));
    });
}

TEST_CASE("Creation dates are the time of birth that stat(1) prints, where the file system keeps one") {
    ForEachFile([](const std::string &, const std::string &path, Object &item) {
        const time_t birth = std::stol(OutputOf("stat --format=%W " + path));
        const time_t expected = birth == 0 ? StatusOf(path).st_mtim.tv_sec : birth;
        CHECK(DateOf(item, "kMDItemFSCreationDate") == FieldsOf(expected));
        CHECK(DateOf(item, "kMDItemContentCreationDate") == FieldsOf(expected));
    });
}

TEST_CASE("What may be done with a file is what access(2) allows") {
    ForEachFile([](const std::string &, const std::string &path, Object &item) {
        const auto allows = [&](int mode) { return access(path.c_str(), mode) == 0; };
        CHECK(item.Call<bool>("AttributeBoolean", "kMDItemFSExists"));
        CHECK(item.Call<bool>("AttributeBoolean", "kMDItemFSIsReadable") == allows(R_OK));
        CHECK(item.Call<bool>("AttributeBoolean", "kMDItemFSIsWriteable") == allows(W_OK));
        CHECK_FALSE(item.Call<bool>("AttributeBoolean", "kMDItemFSInvisible"));
    });
}

TEST_CASE("Content types agree with file(1), and head their tree") {
    size_t kinds = 0;
    ForEachFile([&](const std::string &, const std::string &path, Object &item) {
        const std::string kind = OutputOf("file --brief --mime-type " + path);
        CAPTURE(kind);
        REQUIRE(kTypes.count(kind) == 1);
        CHECK(TextOf(item, "kMDItemContentType") == kTypes.at(kind));
        const auto tree = item.Call<Object>("AttributeStringArray", "kMDItemContentTypeTree").As<std::string>();
        REQUIRE(tree.size() >= 2);
        CHECK(tree.front() == kTypes.at(kind));
        CHECK(std::find(tree.begin(), tree.end(), "public.item") != tree.end());
        CHECK(!TextOf(item, "kMDItemKind").empty());
        kinds++;
    });
    CHECK(kinds == kTypes.size());
}

TEST_CASE("Pictures have the pixels that file(1) counts, and nothing else has any") {
    ForEachFile([](const std::string &name, const std::string &path, Object &item) {
        if (name != "picture" && name != "photo") {
            CHECK(item.Call("GetAttribute", "kMDItemPixelWidth").IsNil());
            return;
        }
        const auto width = static_cast<int>(NumberOf(item, "kMDItemPixelWidth"));
        const auto height = static_cast<int>(NumberOf(item, "kMDItemPixelHeight"));
        const char *const between = name == "picture" ? " x " : "x";
        const std::string seen = OutputOf("file --brief " + path) + ",";
        CAPTURE(seen);
        CHECK(seen.find(" " + std::to_string(width) + between + std::to_string(height) + ",") != std::string::npos);
        CHECK(NumberOf(item, "kMDItemPixelCount") == width * height);
        CHECK(NumberOf(item, "kMDItemBitsPerSample") == 8);
        CHECK(TextOf(item, "kMDItemColorSpace") == (name == "picture" ? "RGB" : "Gray"));
        CHECK(item.Call<bool>("AttributeBoolean", "kMDItemHasAlphaChannel") == (name == "picture"));
    });
}

TEST_CASE("A folder counts the entries that a listing shows") {
    const FilesOfManyKinds files;
    TestSession session;
    Object item = ConstructItem(session.Host(), files.folder.Path());
    CHECK(std::to_string(static_cast<int>(NumberOf(item, "kMDItemFSNodeCount"))) ==
          OutputOf("ls -A " + files.folder.Path() + " | wc -l"));
    CHECK(NumberOf(item, "kMDItemFSNodeCount") == 9);
}

TEST_CASE(
    "What a user wrote down with a file arrives as its text, list, number, date or truth, as getxattr(2) reads it") {
    const TemporaryFolder folder;
    const std::string path = folder.File("letter.txt");
    const std::pair<const char *, std::string> kWritten[] = {
        {"user.xdg.comment", "Zo\xC3\xAB's, read twice"},
        {"user.xdg.tags", "Red,To do"},
        {"user.baloo.rating", "9"},
        {"user.xdg.origin.url", "https://example.org/a.txt"},
        {"user.kMDItemDueDate", "2014-06-30T23:30:59Z"},
        {"user.kMDItemNumberOfPages", "412"},
        {"user.kMDItemStreamable", "true"},
    };
    for (const auto &[name, text] : kWritten)
        REQUIRE(setxattr(path.c_str(), name, text.data(), text.size(), 0) == 0);
    const auto written = [&](const char *name) {
        char text[100];
        const ssize_t size = getxattr(path.c_str(), name, text, sizeof text);
        REQUIRE(size > 0);
        return std::string(text, static_cast<size_t>(size));
    };
    TestSession session;
    Object item = ConstructItem(session.Host(), path);
    const auto list = [&](const char *name) {
        return item.Call<Object>("AttributeStringArray", name).As<std::string>();
    };
    CHECK(TextOf(item, "kMDItemFinderComment") == written("user.xdg.comment"));
    CHECK(list("kMDItemKeywords") == Names{"Red", "To do"});
    CHECK(NumberOf(item, "kMDItemStarRating") == std::stod(written("user.baloo.rating")) / 2);
    CHECK(list("kMDItemWhereFroms") == Names{written("user.xdg.origin.url")});
    CHECK(DateOf(item, "kMDItemDueDate") == DateFields{2014, 6, 30, 23, 30, 59});
    CHECK(NumberOf(item, "kMDItemNumberOfPages") == std::stod(written("user.kMDItemNumberOfPages")));
    CHECK(item.Call<bool>("AttributeBoolean", "kMDItemStreamable"));
    CHECK(session.TakeException() == "");
}
