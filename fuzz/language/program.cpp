// Any text is a program or is refused with a place inside it. A program that was taken runs to its end or to the end of
// its steps, and raises what it raises as the language has it; afterwards the host has everything back.
#include "fuzz/input.h"
#include "simulator/language/builtin.h"
#include "simulator/language/checker.h"
#include "simulator/language/lexer.h"
#include "simulator/language/parser.h"

#include <algorithm>

namespace {

using namespace sim;
using fuzz::Require;

/// Names of what reaches the machine's files, which an arbitrary program must not.
constexpr std::string_view kOutside[] = {"folderitem", "specialfolder", "textinputstream", "textoutputstream"};

bool StaysInside(const language::Source &source) {
    const std::vector<language::Token> tokens = language::Lex(source);
    return std::none_of(tokens.begin(), tokens.end(), [](const language::Token &token) {
        return std::find(std::begin(kOutside), std::end(kOutside), token.word) != std::end(kOutside);
    });
}

void Run(const language::Source &source) {
    host::Host host;
    language::Symbols symbols;
    language::AddBuiltIns(symbols);
    std::vector<language::ProgramSyntax> texts;
    texts.push_back(language::Parse(source));
    const language::CheckedProgram program = language::Check(texts, symbols);
    if (!StaysInside(source))
        return;
    {
        language::Execution execution(host, symbols, [](const std::string &) {}, {.steps = 500});
        for (const language::Type &type : program.globals)
            execution.globals.push_back(language::DefaultOf(type));
        try {
            program.run(execution, {});
        } catch (const language::Thrown &thrown) {
            Require(execution.ClassOf(thrown.exception) != nullptr);
        } catch (const language::Stopped &) {
        }
    }
    Require(host.Balance().empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    const language::Source source{"program", std::string(reinterpret_cast<const char *>(bytes), size)};
    try {
        Run(source);
    } catch (const language::WrongProgram &wrong) {
        Require(!wrong.Mistakes().empty());
        for (const language::Mistake &mistake : wrong.Mistakes())
            Require(mistake.where.source == &source && mistake.where.line >= 1 && mistake.where.column >= 1);
    }
    return 0;
}
