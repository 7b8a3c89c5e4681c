#include "simulator/language/program.h"

#include "simulator/host/ground/text.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/language/builtin.h"
#include "simulator/language/lexer.h"
#include "simulator/language/parser.h"
#include "simulator/language/plugin_symbols.h"
#include "simulator/macos/control/clock.h"

#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <fstream>

namespace sim::language {

namespace {

namespace fs = std::filesystem;

/// How long the event loop sleeps at most before it looks whether somebody wants the program to end.
constexpr CFTimeInterval kPatience = 0.1;

std::string ContentsOf(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    std::string contents{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file)
        throw std::runtime_error(path.string() + " cannot be read");
    return contents;
}

std::unique_ptr<Source> ReadSource(const fs::path &path) {
    return std::make_unique<Source>(Source{path.string(), ContentsOf(path)});
}

/// The files of a toolkit by what they declare, in lower case.
std::map<std::string, fs::path> ToolkitBeside(const fs::path &program) {
    std::map<std::string, fs::path> files;
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(program.parent_path() / "toolkit", error))
        if (entry.path().extension() == ".bas")
            files[host::LowerCase(entry.path().stem().string())] = entry.path();
    return files;
}

/// Lets the system work for the queries, for at most so long. False when there is nothing that it could still do: no
/// query gathers or is live.
bool LetSystemWork(CFTimeInterval seconds) {
    return CFRunLoopRunInMode(kCFRunLoopDefaultMode, std::max(seconds, 0.0), true) != kCFRunLoopRunFinished;
}

void RunEventLoop(Session &session, Execution &execution) {
    while (!execution.Quits()) {
        execution.CheckInterrupt();
        const CFAbsoluteTime now = macos::CurrentClock().Now();
        const std::optional<CFAbsoluteTime> timer = execution.NextTimer();
        const CFAbsoluteTime until = std::min(now + kPatience, timer.value_or(now + kPatience));
        if (!LetSystemWork(until - now)) {
            if (!timer)
                return;
            macos::CurrentClock().Wait(until, {});
        }
        session.Host().RethrowFromHandlers();
        execution.PassOnRaised({});
        execution.FireTimers();
    }
}

std::string Describe(const Thrown &thrown) {
    const auto *exception = dynamic_cast<const host::ExceptionInstance *>(thrown.exception.Get());
    std::string sentence = thrown.exception.ClassName();
    if (exception && exception->message)
        sentence += ": " + host::ToUTF8(exception->message->GetText());
    return thrown.where.source ? thrown.where.Describe() + ": " + sentence : sentence;
}

} // namespace

Sources ReadSources(const fs::path &program) {
    Sources sources;
    sources.push_back(ReadSource(program));
    std::map<std::string, fs::path> toolkit = ToolkitBeside(program);
    for (size_t index = 0; index < sources.size() && !toolkit.empty(); ++index) {
        // A copy of the tokens: reading more sources moves what the loop goes through.
        const std::vector<Token> tokens = Lex(*sources[index]);
        for (const Token &token : tokens)
            if (const auto found = toolkit.find(token.word); token.kind == TokenKind::kName && found != toolkit.end()) {
                sources.push_back(ReadSource(found->second));
                toolkit.erase(found);
            }
    }
    return sources;
}

Ending RunProgram(Session &session, const Sources &sources, const RunOptions &options) {
    Symbols symbols;
    AddBuiltIns(symbols);
    AddPluginSymbols(session.Host(), symbols);
    std::vector<ProgramSyntax> texts;
    for (const auto &source : sources)
        texts.push_back(Parse(*source));
    const CheckedProgram program = Check(texts, symbols);

    Execution execution(session.Host(), symbols, options.print, options.limits);
    for (const Type &type : program.globals)
        execution.globals.push_back(DefaultOf(type));
    try {
        program.run(execution, options.arguments);
        RunEventLoop(session, execution);
        return {};
    } catch (const Thrown &thrown) {
        return {Ending::Kind::kException, Describe(thrown)};
    } catch (const Stopped &) {
        return {Ending::Kind::kStopped, "stopped"};
    }
}

} // namespace sim::language
