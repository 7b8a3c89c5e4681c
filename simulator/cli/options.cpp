#include "simulator/cli/options.h"

#include "simulator/cli/closest.h"

#include <CLI/CLI.hpp>
#include <unicode/ustring.h>

#include <charconv>
#include <vector>

namespace sim::cli {
namespace {

// A folder that every machine has, and what is always found in it.
constexpr const char *kUsualFolder = "/etc";
constexpr const char *kUsualQuery = "kMDItemFSName == \"*.conf\" && kMDItemContentTypeTree == \"public.text\"";
constexpr const char *kEveryFile = "kMDItemFSName == \"*\"";

// No host was older than the one, and none will be newer than the other for a while.
constexpr double kOldestHost = 2005;
constexpr double kNewestHost = 3001;

// The command line as it was typed, before anything in it is judged.
struct Words {
    std::string plugin;
    std::optional<std::string> show, hostVersion, limit, format;
    std::vector<std::string> folderAndQuery;
    bool once = false, live = false, attributes = false, trace = false, help = false;
};

std::string Quoted(const std::string &text) { return "\"" + text + "\""; }

template <class Number> std::optional<Number> WholeNumber(const std::string &text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<double> HostVersion(const std::string &text) {
    if (text == "none")
        return std::nullopt;
    const auto version = WholeNumber<double>(text);
    if (!version || !(*version >= kOldestHost && *version < kNewestHost))
        throw UsageError("--host-version takes a number from 2005 to 3000, such as 2013.04, or none; " + Quoted(text) +
                         " is neither");
    return version;
}

size_t Limit(const std::string &text) {
    const auto limit = WholeNumber<size_t>(text);
    if (!limit)
        throw UsageError("--limit takes a number of rows, 0 for all; " + Quoted(text) + " is none");
    return *limit;
}

Format FormatNamed(const std::string &text) {
    if (text == "tsv")
        return Format::kTSV;
    if (text == "json")
        return Format::kJSON;
    throw UsageError("--format takes tsv or json; " + Quoted(text) + " is neither");
}

bool IsUTF8(const std::string &text) {
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(nullptr, 0, nullptr, text.data(), static_cast<int32_t>(text.size()), &status);
    return status != U_INVALID_CHAR_FOUND;
}

std::filesystem::path Existing(const std::string &path) {
    std::error_code error;
    std::filesystem::path resolved = std::filesystem::canonical(path, error);
    if (path.empty() || error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory)
        throw UsageError("there is nothing at " + Quoted(path));
    if (error)
        throw UsageError(Quoted(path) + " cannot be reached: " + error.message());
    if (!IsUTF8(resolved.string()))
        throw UsageError(Quoted(resolved.string()) + " is no UTF-8, and no file of a Mac has such a name");
    return resolved;
}

std::filesystem::path ExistingFolder(const std::string &path) {
    std::filesystem::path folder = Existing(path);
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        throw UsageError(Quoted(path) + " is not a folder");
    std::filesystem::directory_iterator contents(folder, error);
    if (error)
        throw UsageError("the folder " + Quoted(path) + " cannot be read: " + error.message());
    return folder;
}

// The options and where their values go. What the library would say of them itself is said by help.txt.
void Declare(CLI::App &app, Words &words) {
    app.set_help_flag();
    app.allow_extras();
    const auto takes = [&app](const char *name, auto &value, const char *what) {
        app.add_option(name, value)->type_name(what)->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    };
    takes("--plugin", words.plugin, "a library");
    takes("--show", words.show, "a file");
    takes("--host-version", words.hostVersion, "a number");
    takes("--limit", words.limit, "a number");
    takes("--format", words.format, "tsv or json");
    app.add_flag("--once", words.once)->disable_flag_override();
    app.add_flag("--live", words.live)->disable_flag_override();
    app.add_flag("--attributes", words.attributes)->disable_flag_override();
    app.add_flag("--trace", words.trace)->disable_flag_override();
    app.add_flag("--help,-h", words.help)->disable_flag_override();
    app.add_option("words", words.folderAndQuery);
}

[[noreturn]] void RefuseOption(const CLI::App &app, const std::string &word) {
    const std::string name = word.substr(0, word.find('='));
    std::vector<std::string> names;
    for (const CLI::Option *option : app.get_options())
        if (option->nonpositional())
            names.push_back(option->get_name());
    const auto closest = Closest(name, names);
    throw UsageError("there is no option " + name + "; " +
                     (closest ? "did you mean " + *closest + "?" : "--help lists them"));
}

Words Read(std::span<const char *const> words) {
    CLI::App app;
    Words read;
    Declare(app, read);
    // The library takes them from the back.
    std::vector<std::string> reversed(words.rbegin(), words.rend());
    try {
        app.parse(std::move(reversed));
    } catch (const CLI::ArgumentMismatch &error) {
        // "--limit: 1 required ...", or "once was given ..." of an option that takes nothing.
        const std::string message = error.what();
        const std::string name = message.substr(0, message.find_first_of(": "));
        const CLI::Option *option = app.get_option_no_throw(name);
        throw UsageError(option && name.starts_with("--")
                             ? name + " takes " + option->get_type_name() + ", and none is given"
                             : "--" + name + " takes nothing");
    } catch (const CLI::Error &error) {
        throw UsageError(error.what());
    }
    if (read.help)
        return read;
    for (const std::string &word : app.remaining())
        if (word.size() > 1 && word[0] == '-' && word != "--")
            RefuseOption(app, word);
    if (read.folderAndQuery.size() > 2)
        throw UsageError("a folder and a query are all it takes; a query with blanks must stand in quotes");
    return read;
}

} // namespace

Options ReadOptions(std::span<const char *const> typed) {
    const Words words = Read(typed);
    Options options;
    if (words.help) {
        options.task = Options::Task::kHelp;
        return options;
    }
    options.plugin = words.plugin;
    options.once = words.once;
    options.live = words.live;
    options.trace = words.trace;
    if (words.hostVersion)
        options.hostVersion = HostVersion(*words.hostVersion);
    if (words.limit)
        options.limit = Limit(*words.limit);
    if (words.format)
        options.format = FormatNamed(*words.format);
    if (words.plugin.empty())
        throw UsageError("--plugin must say which library to load");
    if (words.once && words.live)
        throw UsageError("--once and --live cannot both be done");
    if (words.show && words.attributes)
        throw UsageError("--show and --attributes cannot both be done");
    const auto &rest = words.folderAndQuery;
    if (words.show || words.attributes) {
        if (!rest.empty())
            throw UsageError("a folder or query goes with neither --show nor --attributes");
        options.task = words.attributes ? Options::Task::kAttributes : Options::Task::kShow;
        if (!words.attributes)
            options.file = Existing(*words.show);
        return options;
    }
    options.folder = ExistingFolder(rest.empty() ? kUsualFolder : rest[0]);
    options.query = rest.size() == 2 ? rest[1] : rest.empty() ? kUsualQuery : kEveryFile;
    return options;
}

} // namespace sim::cli
