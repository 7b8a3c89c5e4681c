// The functions of the system that a plugin calls, and a call of one in words.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sim {

struct SystemFunction {
    std::string_view name;
    /// What its arguments are: o an object, i a number, e an encoding, b a truth, c a code of four characters, r a
    /// reference of the File Manager, p a place for an answer, - nothing that can be shown. What stands behind them is
    /// not shown either.
    std::string_view arguments;
    /// It only looks: at a length, an element, a number.
    bool onlyLooks = false;
};

/// The function of that C name; null when it is unknown, or asks for a type's identifier.
const SystemFunction *FindSystemFunction(std::string_view name);

/// How much is said of an object that is no text and no list: its type, or also what it holds.
enum class Detail { kType, kContents };

/// `CFRelease("name")`, given the words on the stack. Texts are in quotes and lists in brackets.
std::string DescribeCall(const SystemFunction &function, const uint32_t *arguments, Detail detail);

} // namespace sim
