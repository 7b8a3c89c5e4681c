// FolderItem and SpecialFolder, over the machine's own files.
#include "simulator/language/builtin.h"
#include "simulator/language/dates.h"
#include "simulator/language/program_object.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace sim::language {

namespace {

namespace fs = std::filesystem;

/// From 1904 to 1970.
constexpr int64_t kUnixEpoch = 2082844800;

std::string &PathAt(const host::Object &object) { return dynamic_cast<host::FolderItemInstance &>(*object.Get()).path; }

host::Object ItemFor(const Call &call, const fs::path &path) {
    return call.execution.Host().NewFolderItem(path.string());
}

host::Value ConstructFolderItem(Call &call) {
    PathAt(call.self) = fs::absolute(TextAt(call, 0)).lexically_normal().string();
    return {};
}

host::Value Name(Call &call) { return fs::path(PathAt(call.self)).filename().string(); }
host::Value NativePath(Call &call) { return PathAt(call.self); }

host::Value Exists(Call &call) {
    std::error_code error;
    return fs::exists(fs::symlink_status(PathAt(call.self), error));
}

host::Value Directory(Call &call) {
    std::error_code error;
    return fs::is_directory(PathAt(call.self), error);
}

host::Value Length(Call &call) {
    std::error_code error;
    const auto size = fs::file_size(PathAt(call.self), error);
    return error ? int64_t{0} : static_cast<int64_t>(size);
}

host::Value Parent(Call &call) {
    const fs::path path = PathAt(call.self);
    return path.has_relative_path() ? host::Value(ItemFor(call, path.parent_path())) : host::Value();
}

host::Value Child(Call &call) { return ItemFor(call, fs::path(PathAt(call.self)) / TextAt(call, 0)); }

/// In the order of their names, so that a program does the same everywhere.
std::vector<fs::path> ContentsOf(const std::string &folder) {
    std::vector<fs::path> contents;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        contents.push_back(entry->path());
    std::sort(contents.begin(), contents.end());
    return contents;
}

host::Value ContentCount(Call &call) { return static_cast<int32_t>(ContentsOf(PathAt(call.self)).size()); }

host::Value Item(Call &call) {
    const std::vector<fs::path> contents = ContentsOf(PathAt(call.self));
    const int32_t index = IntegerAt(call, 0);
    if (index < 1 || static_cast<size_t>(index) > contents.size())
        call.execution.Raise("OutOfBoundsException", "the folder has no item " + std::to_string(index), call.where);
    return ItemFor(call, contents[static_cast<size_t>(index) - 1]);
}

host::Value ModificationDate(Call &call) {
    struct stat status {};
    if (stat(PathAt(call.self).c_str(), &status) != 0)
        return {};
    return call.execution.Host().NewDate(FieldsAt(status.st_mtime + kUnixEpoch));
}

host::Value SetModificationDate(Call &call) {
    if (call.arguments[0].IsNil())
        call.execution.Raise("NilObjectException", "there is no date, only Nil", call.where);
    const int64_t seconds = TotalSeconds(call.arguments[0].As<host::Object>().Date()) - kUnixEpoch;
    const timespec time{static_cast<time_t>(seconds), 0};
    const timespec times[] = {time, time};
    if (utimensat(AT_FDCWD, PathAt(call.self).c_str(), times, 0) != 0)
        call.execution.Raise("IOException", "the date of " + PathAt(call.self) + " cannot be set", call.where);
    return {};
}

host::Value Delete(Call &call) {
    std::error_code error;
    fs::remove(PathAt(call.self), error);
    if (error)
        call.execution.Raise("IOException", PathAt(call.self) + " cannot be deleted", call.where);
    return {};
}

host::Value CreateAsFolder(Call &call) {
    std::error_code error;
    fs::create_directory(PathAt(call.self), error);
    if (error)
        call.execution.Raise("IOException", "the folder " + PathAt(call.self) + " cannot be made", call.where);
    return {};
}

fs::path Home() {
    const char *home = std::getenv("HOME");
    return home && *home ? home : "/";
}

/// A template argument, so that each row names its folder.
template <size_t size> struct FolderName {
    char text[size];
    constexpr FolderName(const char (&given)[size]) { std::copy_n(given, size, text); }
};

template <FolderName name> host::Value HomeFolder(Call &call) { return ItemFor(call, Home() / name.text); }

host::Value UserHome(Call &call) { return ItemFor(call, Home()); }
host::Value Temporary(Call &call) { return ItemFor(call, fs::temp_directory_path()); }

constexpr FunctionRow kFolderItemFunctions[] = {
    {"Constructor(path As String)", ConstructFolderItem},
    {"Child(name As String) As FolderItem", Child},
    {"Item(index As Integer) As FolderItem", Item},
    {"Delete", Delete},
    {"CreateAsFolder", CreateAsFolder},
};

constexpr PropertyRow kFolderItemProperties[] = {
    {"Name As String", Name},         {"NativePath As String", NativePath},
    {"Exists As Boolean", Exists},    {"Directory As Boolean", Directory},
    {"Length As Int64", Length},      {"Count As Integer", ContentCount},
    {"Parent As FolderItem", Parent}, {"ModificationDate As Date", ModificationDate, SetModificationDate},
};

constexpr PropertyRow kSpecialFolders[] = {
    {"UserHome As FolderItem", UserHome, nullptr, true},
    {"Documents As FolderItem", HomeFolder<"Documents">, nullptr, true},
    {"Desktop As FolderItem", HomeFolder<"Desktop">, nullptr, true},
    {"Pictures As FolderItem", HomeFolder<"Pictures">, nullptr, true},
    {"Music As FolderItem", HomeFolder<"Music">, nullptr, true},
    {"Temporary As FolderItem", Temporary, nullptr, true},
};

} // namespace

const BuiltInClass &FolderItemClass() {
    static constexpr BuiltInClass row{"FolderItem", nullptr, MakeInstance<host::FolderItemInstance>,
                                      kFolderItemFunctions, kFolderItemProperties};
    return row;
}

const BuiltInClass &SpecialFolderClass() {
    static constexpr BuiltInClass row{"SpecialFolder", nullptr, nullptr, {}, kSpecialFolders};
    return row;
}

} // namespace sim::language
