// Hearing what passes between the host and the plugin while it happens.
#pragma once

#include <string>

namespace sim::host {

/// What is called.
enum class Callee {
    kService, ///< one of the host's, by the plugin
    kHandler, ///< the program's code for an event, by the plugin
    kPlugin,  ///< a function of the plugin's, by the host
};

class CallListener {
public:
    virtual ~CallListener() = default;

    /// A call begins. It is named with its arguments: texts, numbers, the contents of strings, the classes of objects.
    virtual void Begins(Callee callee, const std::string &call) = 0;
    /// Of the calls under way, the one that began last ends, and gives this; "" when it gives nothing.
    virtual void Ends(const std::string &) {}
    /// The plugin asked for a service, by its name or its declaration, and got it or not.
    virtual void Asked(const std::string &, bool) {}
    /// Whether things are told apart that are of one kind: objects by their numbers, variants by what they hold, large
    /// numbers that are codes by hexadecimal digits.
    virtual bool TellsApart() const { return false; }
};

/// A call that a listener hears of, from its beginning to its end. What it is, and what it gives, are put into words
/// only where somebody listens.
class HeardCall {
public:
    /// The listener is borrowed; null when nobody listens.
    template <class Describe>
    HeardCall(CallListener *listener, Callee callee, const Describe &describe) : listener_(listener) {
        if (listener_)
            listener_->Begins(callee, describe());
    }
    HeardCall(const HeardCall &) = delete;
    HeardCall &operator=(const HeardCall &) = delete;
    ~HeardCall() {
        if (listener_)
            listener_->Ends(result_);
    }

    template <class Describe> void Gives(const Describe &describe) {
        if (listener_)
            result_ = describe();
    }

private:
    CallListener *listener_;
    std::string result_;
};

} // namespace sim::host
