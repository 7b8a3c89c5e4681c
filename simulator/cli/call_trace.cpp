#include "simulator/cli/call_trace.h"

#include "simulator/cli/text_width.h"
#include "simulator/cli/value_text.h"
#include "simulator/session/system_functions.h"

#include <string_view>

namespace sim::cli {

namespace {

constexpr size_t kCalleeWidth = 10;
constexpr size_t kIndent = 2;

constexpr TraceHead kAsks = {"asks", Style::kYellow};
constexpr TraceHead kCallsHost = {"host", Style::kCyan};
constexpr TraceHead kCallsPlugin = {"plugin", Style::kBold};
constexpr TraceHead kCallsProgram = {"program", Style::kGreen};
constexpr TraceHead kCallsSystem = {"system", Style::kDim};

// There are some fifty of them, and all are named so.
bool AsksForType(std::string_view function) { return function.ends_with("GetTypeID") && function != "CFGetTypeID"; }

} // namespace

CallTrace::~CallTrace() {
    Close();
    macos::notifications::Watch(nullptr);
}

SessionOptions CallTrace::Heard(SessionOptions options) {
    options.watch = this;
    options.start = false;
    return options;
}

void CallTrace::Start(Session &session) {
    host::Host &host = session.Host();
    const auto &version = host.Options().version;
    screen_.Line(screen_.Styled(PaddedRight("Host", kCalleeWidth), Style::kBold) + AgeText(version));
    host.Listen(this);
    macos::notifications::Watch(this);
    session.Start();
    const auto &classes = host.Arrived().classes;
    std::string text = "of version " + ValueText(classes.empty() ? host::Value() : classes.front().version);
    for (const host::ClassRecord &record : classes)
        text += (&record == &classes.front() ? ": " : ", ") + record.name;
    screen_.Line(screen_.Styled(PaddedRight("Records", kCalleeWidth), Style::kBold) + Printable(text));
}

void CallTrace::Begins(host::Callee callee, const std::string &call) {
    switch (callee) {
    case host::Callee::kService:
        Enter(kCallsHost, call);
        break;
    case host::Callee::kPlugin:
        Enter(kCallsPlugin, call);
        break;
    case host::Callee::kHandler:
        Enter(kCallsProgram, call);
        Close(); // the program may print
        break;
    }
}

void CallTrace::Ends(const std::string &result) {
    const TraceHead &head = *calls_.back();
    calls_.pop_back();
    const bool isItsLine = isOpen_ && !asksForTypes_;
    if (!result.empty() && !isItsLine)
        Open(head, "");
    Close(result.empty() ? "" : (isItsLine ? " → " : "→ ") + result);
}

void CallTrace::Asked(const std::string &name, bool answered) {
    Open(kAsks, name + ": ");
    Close(answered ? "found" : "not found");
}

bool CallTrace::Wants(const std::string &name) const { return FindSystemFunction(name) || AsksForType(name); }

bool CallTrace::Hear(const char *name, const uint32_t *arguments) noexcept {
    if (AsksForType(name)) {
        if (asksForTypes_)
            screen_.Write(std::string(", ") + name + "()");
        else
            Open(kCallsSystem, std::string(name) + "()");
        asksForTypes_ = true;
        return true;
    }
    Open(kCallsSystem, DescribeCall(*FindSystemFunction(name), arguments, Detail::kContents));
    Close();
    return true;
}

void CallTrace::ObserverBegins(const std::string &notification) { Enter(kCallsPlugin, "hears " + notification); }

void CallTrace::ObserverEnds() { Ends(""); }

void CallTrace::Enter(const TraceHead &head, const std::string &call) {
    Open(head, call);
    calls_.push_back(&head);
}

void CallTrace::Open(const TraceHead &head, const std::string &text) {
    Close();
    screen_.Write(screen_.Styled(PaddedRight(head.word, kCalleeWidth), head.style) +
                  std::string(kIndent * calls_.size(), ' ') + Printable(text));
    isOpen_ = true;
}

void CallTrace::Close(const std::string &rest) {
    if (isOpen_)
        screen_.Line(Printable(rest));
    isOpen_ = asksForTypes_ = false;
}

} // namespace sim::cli
