#include "simulator/language/options.h"

#include <charconv>

namespace sim::language {

namespace {

template <class Number> Number NumberFrom(const std::string &text, const std::string &option) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !(number > 0))
        throw UsageError(option + " takes a number, and \"" + text + "\" is none");
    return number;
}

void SetOption(CommandLine &line, const std::string &name, const std::string &value) {
    if (name == "--plugin")
        line.plugin = value;
    else if (name == "--steps")
        line.steps = NumberFrom<uint64_t>(value, name);
    else if (name != "--host-version")
        throw UsageError("there is no option " + name +
                         " for a program; there are --host-version, --trace and --steps");
    else if (value == "none")
        line.hostVersion = std::nullopt;
    else
        line.hostVersion = NumberFrom<double>(value, name);
}

} // namespace

CommandLine ReadCommandLine(std::span<const char *const> words) {
    CommandLine line;
    size_t at = 0;
    for (; at < words.size() && std::string_view(words[at]).starts_with("--"); ++at) {
        const std::string word = words[at];
        if (word == "--trace") {
            line.trace = true;
            continue;
        }
        const size_t equals = word.find('=');
        if (equals == std::string::npos && at + 1 == words.size())
            throw UsageError(word + " takes a value, and none is given");
        SetOption(line, word.substr(0, equals), equals == std::string::npos ? words[++at] : word.substr(equals + 1));
    }
    if (at == words.size())
        throw UsageError("a program must be named, a file that ends with .bas");
    line.program = words[at++];
    line.arguments.assign(words.begin() + static_cast<ptrdiff_t>(at), words.end());
    return line;
}

} // namespace sim::language
