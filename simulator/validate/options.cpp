#include "simulator/validate/options.h"

#include <charconv>

namespace sim::validate {
namespace {

uint32_t Number(const std::string &option, const std::string &text, uint32_t least, uint32_t most) {
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < least || number > most)
        throw UsageError(option + " takes a number from " + std::to_string(least) + " to " + std::to_string(most) +
                         "; \"" + text + "\" is none");
    return number;
}

void RequireFile(const std::string &what, const std::filesystem::path &path, bool isFolder) {
    std::error_code error;
    if (path.empty())
        throw UsageError(what + " is missing");
    if (isFolder ? !std::filesystem::is_directory(path, error) : !std::filesystem::is_regular_file(path, error))
        throw UsageError("there is no " + std::string(isFolder ? "folder " : "file ") + path.string());
}

} // namespace

Options ReadOptions(std::span<const char *const> words) {
    Options options;
    Subject &subject = options.subject;
    for (size_t i = 0; i < words.size(); i++) {
        const std::string word = words[i];
        if (word == "--help" || word == "-h") {
            options.wantsHelp = true;
            return options;
        }
        if (!word.starts_with('-')) {
            if (!subject.library.empty())
                throw UsageError("one library at a time");
            subject.library = word;
            continue;
        }
        const bool known =
            word == "--level" || word == "--seed" || word == "--seconds" || word == "--native" || word == "--imports";
        if (!known)
            throw UsageError("there is no option " + word + "; --help lists them");
        if (++i == words.size())
            throw UsageError(word + " takes something, and nothing is given");
        const std::string value = words[i];
        if (word == "--level")
            options.level = static_cast<int>(Number(word, value, 1, kHighestLevel));
        else if (word == "--seed")
            subject.seed = Number(word, value, 0, UINT32_MAX);
        else if (word == "--seconds")
            subject.patience = std::chrono::seconds(Number(word, value, 1, 3600));
        else if (word == "--native")
            subject.native = value;
        else
            subject.imports = value;
    }
    RequireFile("the library", subject.library, false);
    RequireFile("--native", subject.native, false);
    RequireFile("--imports", subject.imports, true);
    return options;
}

std::string HelpText() {
    return R"(usage: ./dev validate [FILE] [OPTION...]

Looks for faults in a built library; dist/Spotlight.dylib when no FILE is given. Every
check loads it in a process of its own. A level is tried when those below are good.

  --level N      how strict to be (5):
                   1  the file: header, commands, sections, imports, frames
                   2  what it registers with hosts of every age
                   3  what programs see, and each call that it makes of the host and of
                      the system, beside the native build
                   4  the same on hosts of every age
                   5  programs that do anything; a host that lacks any one service
  --seed N       what the programs do that do anything (1)
  --seconds N    how much processor time one check may take (60)
  --native FILE  the native build
  --imports DIR  the lists of what the system's libraries provide
  --help         this text

Exit code 0 says that it is good to that level, 1 that there are faults or that a check
did not come to its end, 2 that the command line was wrong.
)";
}

} // namespace sim::validate
