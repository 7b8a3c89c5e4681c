// Functions of text. Positions count characters from 1, as the host language has it.
#include "simulator/language/builtin.h"
#include "simulator/language/characters.h"

#include <algorithm>

namespace sim::language {

namespace {

/// In characters.
constexpr size_t kLongestReplaced = 1 << 22;

std::u32string CharactersAt(const Call &call, size_t index) { return CharactersOf(TextAt(call, index)); }

/// A count of characters, at least 0 and at most all of them.
size_t CountAt(const Call &call, size_t index, size_t most) {
    const int32_t count = IntegerAt(call, index);
    return count < 0 ? 0 : std::min(static_cast<size_t>(count), most);
}

host::Value Len(Call &call) { return static_cast<int32_t>(CharactersAt(call, 0).size()); }

host::Value Left(Call &call) {
    const std::u32string text = CharactersAt(call, 0);
    return TextOf(text.substr(0, CountAt(call, 1, text.size())));
}

host::Value Right(Call &call) {
    const std::u32string text = CharactersAt(call, 0);
    return TextOf(text.substr(text.size() - CountAt(call, 1, text.size())));
}

host::Value Mid(Call &call) {
    const std::u32string text = CharactersAt(call, 0);
    const auto first = static_cast<size_t>(std::max(IntegerAt(call, 1), 1) - 1);
    if (first >= text.size())
        return "";
    return TextOf(text.substr(first, CountAt(call, 2, text.size())));
}

/// Where one text stands in another from a position on, ignoring case; npos when it does not.
size_t Find(const std::u32string &folded, const std::u32string &foldedWanted, size_t from) {
    return foldedWanted.empty() ? std::u32string::npos : folded.find(foldedWanted, from);
}

host::Value InStr(Call &call) {
    const auto from = static_cast<size_t>(std::max(IntegerAt(call, 0), 1) - 1);
    const size_t found = Find(Folded(CharactersAt(call, 1)), Folded(CharactersAt(call, 2)), from);
    return found == std::u32string::npos ? 0 : static_cast<int32_t>(found) + 1;
}

host::Value InStrFromStart(Call &call) {
    call.arguments.insert(call.arguments.begin(), 1);
    return InStr(call);
}

std::string Replaced(const Call &call, size_t most) {
    const std::u32string text = CharactersAt(call, 0), wanted = CharactersAt(call, 1), other = CharactersAt(call, 2);
    const std::u32string folded = Folded(text), foldedWanted = Folded(wanted);
    std::u32string result;
    size_t at = 0;
    for (size_t found; most > 0 && (found = Find(folded, foldedWanted, at)) != std::u32string::npos; --most) {
        result += text.substr(at, found - at) + other;
        if (result.size() > kLongestReplaced)
            call.execution.Raise("OutOfMemoryException", "no text can be that long", call.where);
        at = found + wanted.size();
    }
    return TextOf(result + text.substr(at));
}

host::Value Replace(Call &call) { return Replaced(call, 1); }
host::Value ReplaceAll(Call &call) { return Replaced(call, SIZE_MAX); }

host::Value TrimLeft(Call &call) {
    std::u32string text = CharactersAt(call, 0);
    text.erase(text.begin(), std::find_if_not(text.begin(), text.end(), IsBlank));
    return TextOf(text);
}

host::Value TrimRight(Call &call) {
    std::u32string text = CharactersAt(call, 0);
    text.erase(std::find_if_not(text.rbegin(), text.rend(), IsBlank).base(), text.end());
    return TextOf(text);
}

host::Value Trim(Call &call) {
    call.arguments[0] = TrimLeft(call);
    return TrimRight(call);
}

host::Value Uppercase(Call &call) { return TextOf(Upper(CharactersAt(call, 0))); }
host::Value Lowercase(Call &call) { return TextOf(Lower(CharactersAt(call, 0))); }

host::Value Chr(Call &call) {
    const int32_t code = IntegerAt(call, 0);
    constexpr int32_t kLast = 0x10FFFF;
    if (code < 0 || code > kLast)
        call.execution.Raise("OutOfBoundsException", "there is no character " + std::to_string(code), call.where);
    return TextOf(std::u32string(1, static_cast<char32_t>(code)));
}

host::Value Asc(Call &call) {
    const std::u32string text = CharactersAt(call, 0);
    return text.empty() ? 0 : static_cast<int32_t>(text[0]);
}

std::vector<std::string> Fields(const std::string &text, const std::string &separator) {
    std::vector<std::string> fields;
    size_t at = 0;
    for (size_t found; !separator.empty() && (found = text.find(separator, at)) != std::string::npos;) {
        fields.push_back(text.substr(at, found - at));
        at = found + separator.size();
    }
    fields.push_back(text.substr(at));
    return fields;
}

host::Value Split(Call &call) {
    host::Object fields = call.execution.Host().NewArray("string");
    const std::string text = TextAt(call, 0);
    if (!text.empty())
        for (const std::string &field : Fields(text, TextAt(call, 1)))
            fields.Append(field);
    return fields;
}

host::Value Join(Call &call) {
    if (call.arguments[0].IsNil())
        call.execution.Raise("NilObjectException", "there is no array to join, only Nil", call.where);
    std::string joined;
    const std::string separator = TextAt(call, 1);
    const host::Object texts = call.arguments[0].As<host::Object>();
    for (int32_t index = 0; index <= texts.UpperBound(); ++index)
        joined += (index ? separator : "") + texts.At(index).As<std::string>();
    return joined;
}

host::Value CountFields(Call &call) {
    const std::string text = TextAt(call, 0);
    return text.empty() ? 0 : static_cast<int32_t>(Fields(text, TextAt(call, 1)).size());
}

host::Value NthField(Call &call) {
    const std::vector<std::string> fields = Fields(TextAt(call, 0), TextAt(call, 1));
    const auto index = static_cast<size_t>(IntegerAt(call, 2)) - 1;
    return index < fields.size() ? fields[index] : "";
}

/// Mode 0 minds case, mode 1 does not.
host::Value StrComp(Call &call) {
    const std::string left = TextAt(call, 0), right = TextAt(call, 1);
    const int order = IntegerAt(call, 2) == 0 ? left.compare(right) : Compare(left, right);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

} // namespace

std::span<const FunctionRow> TextFunctions() {
    static constexpr FunctionRow rows[] = {
        {"Len(text As String) As Integer", Len},
        {"Left(text As String, count As Integer) As String", Left},
        {"Right(text As String, count As Integer) As String", Right},
        {"Mid(text As String, start As Integer, count As Integer = 2147483647) As String", Mid},
        {"InStr(text As String, wanted As String) As Integer", InStrFromStart},
        {"InStr(start As Integer, text As String, wanted As String) As Integer", InStr},
        {"Replace(text As String, wanted As String, other As String) As String", Replace},
        {"ReplaceAll(text As String, wanted As String, other As String) As String", ReplaceAll},
        {"Trim(text As String) As String", Trim},
        {"LTrim(text As String) As String", TrimLeft},
        {"RTrim(text As String) As String", TrimRight},
        {"Uppercase(text As String) As String", Uppercase},
        {"Lowercase(text As String) As String", Lowercase},
        {"Chr(code As Integer) As String", Chr},
        {"Asc(text As String) As Integer", Asc},
        {"Split(text As String, separator As String = \" \") As String()", Split},
        {"Join(texts() As String, separator As String = \" \") As String", Join},
        {"CountFields(text As String, separator As String) As Integer", CountFields},
        {"NthField(text As String, separator As String, index As Integer) As String", NthField},
        {"StrComp(left As String, right As String, mode As Integer) As Integer", StrComp},
    };
    return rows;
}

} // namespace sim::language
