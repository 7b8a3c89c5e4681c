#include "simulator/cli/options.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <vector>

namespace sim::cli {
namespace {

// A folder that every machine has, and what is always found in it.
constexpr const char *kUsualFolder = "/etc";
constexpr const char *kUsualQuery = "kMDItemFSName == \"*.conf\" && kMDItemContentTypeTree == \"public.text\"";
constexpr const char *kEveryFile = "kMDItemFSName == \"*\"";

std::string Quoted(const std::string &text) { return "\"" + text + "\""; }

std::optional<double> HostVersion(const std::string &text) {
    if (text == "none")
        return std::nullopt;
    double version = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), version);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(version) || version <= 0)
        throw UsageError("--host-version takes a number like 2013.04, or none; " + Quoted(text) + " is neither");
    return version;
}

size_t Limit(const std::string &text) {
    size_t limit = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), limit);
    if (error != std::errc() || end != text.data() + text.size())
        throw UsageError("--limit takes a number of rows, 0 for all; " + Quoted(text) + " is none");
    return limit;
}

std::filesystem::path Existing(const std::string &path) {
    std::error_code error;
    std::filesystem::path resolved = std::filesystem::canonical(path, error);
    if (path.empty() || error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory)
        throw UsageError("there is nothing at " + Quoted(path));
    if (error)
        throw UsageError(Quoted(path) + " cannot be reached: " + error.message());
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

struct Flag {
    const char *name;
    const char *value; // what it takes, for messages; null for nothing
    void (*set)(Options &options, const std::string &value);
};

void SetTask(Options &options, Options::Task task) {
    // Help beats everything: whoever asks for it gets it.
    if (options.task == Options::Task::kHelp)
        return;
    if (options.task != Options::Task::kQuery && task != Options::Task::kHelp && task != options.task)
        throw UsageError("--show and --attributes cannot both be done");
    options.task = task;
}

const Flag kFlags[] = {
    {"--plugin", "a library", [](Options &options, const std::string &value) { options.plugin = value; }},
    {"--once", nullptr, [](Options &options, const std::string &) { options.once = true; }},
    {"--live", nullptr, [](Options &options, const std::string &) { options.live = true; }},
    {"--host-version", "a number",
     [](Options &options, const std::string &value) { options.hostVersion = HostVersion(value); }},
    {"--limit", "a number", [](Options &options, const std::string &value) { options.limit = Limit(value); }},
    {"--show", "a file",
     [](Options &options, const std::string &value) {
         SetTask(options, Options::Task::kShow);
         options.file = value;
     }},
    {"--attributes", nullptr,
     [](Options &options, const std::string &) { SetTask(options, Options::Task::kAttributes); }},
    {"--help", nullptr, [](Options &options, const std::string &) { SetTask(options, Options::Task::kHelp); }},
    {"-h", nullptr, [](Options &options, const std::string &) { SetTask(options, Options::Task::kHelp); }},
};

const Flag &FlagNamed(const std::string &name) {
    for (const Flag &flag : kFlags)
        if (name == flag.name)
            return flag;
    throw UsageError("there is no option " + name + "; --help lists them");
}

// Sets what the words say and returns those that are no options.
std::vector<std::string> ReadFlags(std::span<const char *const> words, Options &options) {
    std::vector<std::string> rest;
    bool onlyRest = false;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string word = words[i];
        if (onlyRest || word.size() < 2 || word[0] != '-') {
            rest.push_back(word);
        } else if (word == "--") {
            onlyRest = true;
        } else {
            const size_t equals = word.find('=');
            const Flag &flag = FlagNamed(word.substr(0, equals));
            if (!flag.value) {
                if (equals != std::string::npos)
                    throw UsageError(std::string(flag.name) + " takes nothing");
                flag.set(options, "");
            } else if (equals != std::string::npos) {
                flag.set(options, word.substr(equals + 1));
            } else if (++i < words.size()) {
                flag.set(options, words[i]);
            } else {
                throw UsageError(std::string(flag.name) + " takes " + flag.value + ", and none is given");
            }
        }
    }
    return rest;
}

} // namespace

Options ReadOptions(std::span<const char *const> words) {
    Options options;
    const std::vector<std::string> rest = ReadFlags(words, options);
    if (options.task == Options::Task::kHelp)
        return options;
    if (options.plugin.empty())
        throw UsageError("--plugin must say which library to load");
    if (options.once && options.live)
        throw UsageError("--once and --live cannot both be done");
    if (options.task != Options::Task::kQuery) {
        if (!rest.empty())
            throw UsageError("a folder or query goes with neither --show nor --attributes");
        if (options.task == Options::Task::kShow)
            options.file = Existing(options.file.string());
        return options;
    }
    if (rest.size() > 2)
        throw UsageError("a folder and a query are all it takes; a query with blanks must stand in quotes");
    options.folder = ExistingFolder(rest.empty() ? kUsualFolder : rest[0]);
    options.query = rest.size() == 2 ? rest[1] : rest.empty() ? kUsualQuery : kEveryFile;
    return options;
}

} // namespace sim::cli
