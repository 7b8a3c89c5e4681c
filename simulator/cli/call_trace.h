// Prints all that passes between the plugin and what is around it while it happens: what it asks the host for, the
// calls of its functions, and those that it makes of the host and of the system. A line begins with who is called; it
// is indented by the calls that it is made in, and ends with what the call gave, where that can be heard.
#pragma once

#include "simulator/cli/screen.h"
#include "simulator/macos/CoreFoundation/notifications.h"
#include "simulator/session/session.h"

#include <string>
#include <vector>

namespace sim::cli {

/// What lines begin with that are of one kind.
struct TraceHead {
    const char *word;
    Style style;
};

class CallTrace final : host::CallListener, loader::ImportWatch, macos::notifications::CallWatch {
public:
    explicit CallTrace(const Screen &screen) : screen_(screen) {}
    CallTrace(const CallTrace &) = delete;
    CallTrace &operator=(const CallTrace &) = delete;
    ~CallTrace() override;

    /// The options of a session that this can hear. The trace must live as long as the session.
    SessionOptions Heard(SessionOptions options);
    /// Starts that session's plugin, and hears it from its first call on.
    void Start(Session &session);

private:
    void Begins(host::Callee callee, const std::string &call) override;
    void Ends(const std::string &result) override;
    void Asked(const std::string &name, bool answered) override;
    bool TellsApart() const override { return true; }
    bool Wants(const std::string &name) const override;
    bool Hear(const char *name, const uint32_t *arguments) noexcept override;
    void ObserverBegins(const std::string &notification) override;
    void ObserverEnds() override;

    void Enter(const TraceHead &head, const std::string &call);
    /// Begins a line, and leaves it open for what is still to be said of the call.
    void Open(const TraceHead &head, const std::string &text);
    void Close(const std::string &rest = "");

    Screen screen_;
    /// The calls under way, outermost first.
    std::vector<const TraceHead *> calls_;
    bool isOpen_ = false;
    /// The open line has questions for identifiers of types; more of them join it.
    bool asksForTypes_ = false;
};

} // namespace sim::cli
