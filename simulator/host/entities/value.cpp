#include "simulator/host/entities/value.h"

#include "simulator/host/ground/number_text.h"

#include <cstdio>
#include <ostream>

namespace sim::host {

namespace {

/// One entry per alternative of a value, in their order.
constexpr const char *kTypeNames[] = {"nil",      "a boolean", "an integer", "a uint32", "an int64",
                                      "a single", "a double",  "a color",    "a string", "an object"};

struct Describer {
    std::string operator()(std::monostate) const { return "nil"; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(int32_t value) const { return NumberText(value); }
    std::string operator()(uint32_t value) const { return NumberText(value) + "u"; }
    std::string operator()(int64_t value) const { return NumberText(value) + "LL"; }
    std::string operator()(float value) const { return NumberText(value) + "f"; }
    std::string operator()(double value) const { return NumberText(value); }
    std::string operator()(Color value) const {
        char text[16];
        std::snprintf(text, sizeof text, "#%06X", value.rgb);
        return text;
    }
    std::string operator()(const Text &text) const {
        std::string described = "\"" + ToUTF8(text) + "\"";
        if (text.encoding == kUTF8 || text.encoding == kASCII)
            return described;
        char encoding[24];
        std::snprintf(encoding, sizeof encoding, " (0x%X)", text.encoding);
        return described + encoding;
    }
    std::string operator()(const Reference &reference) const { return reference.Describe(); }
};

struct Comparer {
    bool operator()(const Text &left, const Text &right) const { return SameCharacters(left, right); }
    template <class T> bool operator()(const T &left, const T &right) const { return left == right; }
    template <class L, class R> bool operator()(const L &, const R &) const { return false; }
};

} // namespace

Value::Value(Reference reference) {
    if (reference)
        held_ = std::move(reference);
}

bool Value::operator==(const Value &other) const { return std::visit(Comparer(), held_, other.held_); }

std::string Value::Describe() const { return std::visit(Describer(), held_); }

std::string Value::TypeName() const { return kTypeNames[held_.index()]; }

void Value::ThrowUnlike(const char *wanted) const {
    throw ProgramError(Describe() + " is " + TypeName() + ", not " + wanted);
}

std::string ArgumentsText(const std::vector<Value> &arguments) {
    std::string text;
    for (const Value &argument : arguments)
        text += (text.empty() ? "" : ", ") + argument.Describe();
    return "(" + text + ")";
}

std::ostream &operator<<(std::ostream &out, const Value &value) { return out << value.Describe(); }

std::ostream &operator<<(std::ostream &out, const Reference &reference) { return out << reference.Describe(); }

std::string DateText(const DateFields &date) {
    char text[96];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", date.year, date.month, date.day, date.hour,
                  date.minute, date.second);
    return text;
}

std::ostream &operator<<(std::ostream &out, const DateFields &date) { return out << DateText(date); }

} // namespace sim::host
