#include "simulator/validate/program.h"

#include <algorithm>

namespace sim::validate {
namespace {

using host::Object;
using host::Value;

constexpr std::string_view kHost = "host ";
constexpr std::string_view kSystem = "system ";
constexpr int kDeepest = 6;

SessionOptions OptionsFor(const std::filesystem::path &library, host::HostOptions host) {
    SessionOptions options;
    options.plugin = library;
    options.host = std::move(host);
    options.start = false;
    return options;
}

std::string OneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

} // namespace

bool IsCall(std::string_view line) { return line.starts_with(kHost) || line.starts_with(kSystem); }

Program::Program(const Subject &subject, const std::filesystem::path &library, host::HostOptions options)
    : random_(subject.seed), session_(std::make_unique<Session>(OptionsFor(library, std::move(options)))) {
    const auto entryPoint = session_->Plugin().EntryPoint();
    tracer_ =
        std::make_unique<CallTracer>(library, reinterpret_cast<const void *>(entryPoint),
                                     ImportLists::Read(subject.imports), [this](const std::string &function) {
                                         lines_.push_back({Host().Calls().size(), std::string(kSystem) + function});
                                     });
    session_->Start();
    store_ = std::make_unique<macos::ScriptedStore>();
}

void Program::Say(const std::string &what) { lines_.push_back({Host().Calls().size(), "program " + OneLine(what)}); }

void Program::SayRaised() {
    for (const host::RaisedException &raised : Host().TakeRaised())
        Say("raised " + raised.className + ": " + raised.message.value_or("(no message)"));
}

void Program::Try(const std::string &what, const std::function<Value()> &work) {
    Say(what);
    const Value value = work();
    Say("gave " + TextOf(value));
    SayRaised();
}

std::string Program::TextOf(const Value &value) { return TextOf(value, 0); }

std::string Program::TextOf(const Value &value, int depth) {
    if (value.IsNil() || !value.Is<Object>())
        return value.Describe();
    const Object object = value.As<Object>();
    const std::string name = object.ClassName();
    if (depth == kDeepest)
        return name + "...";
    std::string text = name + "{";
    if (name.ends_with("()"))
        for (const Value &element : object.Elements())
            text += " " + TextOf(element, depth + 1);
    else if (name == "Dictionary")
        for (const auto &[key, held] : object.Entries())
            text += " " + TextOf(key, depth + 1) + ": " + TextOf(held, depth + 1);
    else if (name == "Date")
        for (const host::DateFields date = object.Date();
             const int32_t field : {date.year, date.month, date.day, date.hour, date.minute, date.second})
            text += " " + std::to_string(field);
    else if (name == "FolderItem")
        text += " " + object.Path();
    else if (name == "MemoryBlock")
        text += " " + Value(host::Text{object.Bytes(), host::kISOLatin1}).Describe();
    else if (name == "MDItemQTX")
        text += " " + (object.Get<int32_t>("Handle") ? object.GetValue("FSName").Describe() : "no handle");
    else if (name == "variant")
        text += " " + TextOf(Host().Unbox(object), depth + 1);
    return text + " }";
}

std::string Program::Transcript() {
    SayRaised();
    for (const std::string &line : session_->Balance())
        Say("out of balance: " + line.substr(0, line.find(", made by")));
    std::string text;
    const auto &calls = Host().Calls();
    size_t written = 0;
    const auto writeCalls = [&](size_t upTo) {
        for (; written < std::min(upTo, calls.size()); written++)
            text += std::string(kHost) + OneLine(calls[written].text) + "\n";
    };
    for (const Line &line : lines_) {
        writeCalls(line.hostCalls);
        text += line.text + "\n";
    }
    writeCalls(calls.size());
    for (const host::Request &request : Host().Requests())
        text += "asked for " + request.name + (request.answered ? "" : ", in vain") + "\n";
    return text;
}

} // namespace sim::validate
