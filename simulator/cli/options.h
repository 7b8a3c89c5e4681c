// What the command line asks for. Every mistake is one sentence, thrown as UsageError; the program prints it and ends
// with exit code 2.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace sim::cli {

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How results are written: in columns for people, or for programs.
enum class Format { kColumns, kTSV, kJSON };

struct Options {
    enum class Task { kQuery, kShow, kAttributes, kHelp };

    Task task = Task::kQuery;
    std::filesystem::path plugin;
    /// For kQuery: an existing folder, absolute.
    std::filesystem::path folder;
    std::string query;
    /// For kShow: an existing file, absolute.
    std::filesystem::path file;
    /// The host's age; without a value it is a host that does not tell.
    std::optional<double> hostVersion = 2016.1;
    /// End after Finish, or stay although nobody watches. With neither, whether there is a terminal decides.
    bool once = false;
    bool live = false;
    /// Print every call between the plugin and what is around it, on standard error.
    bool trace = false;
    /// The longest table, in rows; 0 for no limit. Without a value, what it is written to decides.
    std::optional<size_t> limit;
    /// Without a value, whether there is a terminal decides.
    std::optional<Format> format;
};

/// The program's name in messages and in the help.
constexpr const char *kProgram = "spotlight-run";

/// Reads the words after the program's name. Throws UsageError.
Options ReadOptions(std::span<const char *const> words);

/// What --help prints.
std::string HelpText();

} // namespace sim::cli
