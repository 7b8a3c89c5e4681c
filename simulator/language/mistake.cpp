#include "simulator/language/mistake.h"

namespace sim::language {

namespace {

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// Blanks as wide as the text: tabs stay tabs, and a character of several bytes takes one place.
std::string BlanksFor(std::string_view text) {
    std::string blanks;
    for (const char byte : text)
        if (!IsContinuation(byte))
            blanks += byte == '\t' ? '\t' : ' ';
    return blanks;
}

std::string Marks(std::string_view text) {
    std::string marks(BlanksFor(text).size(), '~');
    if (marks.empty())
        return "^";
    marks[0] = '^';
    return marks;
}

} // namespace

std::string Describe(const Mistake &mistake) {
    const Location &where = mistake.where;
    if (!where.source)
        return mistake.sentence + "\n";
    const std::string_view line = LineOf(*where.source, where.line);
    const std::string_view before = line.substr(0, where.column - 1);
    const std::string_view marked = line.substr(before.size(), where.length);
    return where.Describe() + ": " + mistake.sentence + "\n  " + std::string(line) + "\n  " + BlanksFor(before) +
           Marks(marked) + "\n";
}

WrongProgram::WrongProgram(std::vector<Mistake> mistakes) : mistakes_(std::move(mistakes)) {
    for (const Mistake &mistake : mistakes_)
        text_ += Describe(mistake);
}

} // namespace sim::language
