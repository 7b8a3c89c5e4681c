// Any text is a query or is refused. A query means the same in parentheses, twice joined by "and" or "or", and with
// blanks around it; half of one is refused.
//
// Input: a line with the value of the attribute, then the query, in UTF-8.
#include "fuzz/input.h"
#include "simulator/macos/CoreFoundation/ledger.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/expression/expression.h"

#include <string>

namespace {

using namespace sim::macos;
using expression::Expression;
using fuzz::Require;

constexpr CFAbsoluteTime kNow = 425833445; // 2014-06-30 15:04:05

/// A file with a few attributes of every kind, of which the input decides the text.
class File final : public AttributeSource {
public:
    explicit File(std::string_view text) : text_(text) {}

    FileIdentity Identity() const override { return {0, 1, 0}; }
    std::string Path() const override { return "/file"; }
    std::vector<std::string> Names() const override { return {}; }

    CFTypeRef Copy(std::string_view key) const override {
        if (key == "a")
            return MakeString(text_).Give();
        if (key == "n") {
            const SInt64 number = static_cast<SInt64>(text_.size());
            return CFNumberCreate(nullptr, kCFNumberSInt64Type, &number);
        }
        if (key == "d")
            return CFDateCreate(nullptr, kNow - static_cast<double>(text_.size()) * 3600);
        if (key == "t")
            return CFRetain(kCFBooleanTrue);
        if (key == "l") {
            const auto text = MakeString(text_);
            const void *values[] = {text.Get(), kCFBooleanFalse};
            return CFArrayCreate(nullptr, values, 2, &kCFTypeArrayCallBacks);
        }
        return nullptr;
    }

private:
    std::string text_;
};

enum class Meaning { kRefused, kFits, kDoesNotFit };

Meaning MeaningOf(const std::u16string &query, const File &file) {
    const auto parsed = Expression::Parse(query);
    if (!parsed)
        return Meaning::kRefused;
    return parsed->Matches(file, kNow) ? Meaning::kFits : Meaning::kDoesNotFit;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    const std::string_view input(reinterpret_cast<const char *>(bytes), size);
    const size_t line = input.find('\n');
    const std::size_t before = ledger::LiveCount();
    {
        const File file(input.substr(0, line));
        const std::u16string query = line == input.npos ? std::u16string() : Utf16(input.substr(line + 1));
        const Meaning meaning = MeaningOf(query, file);
        if (meaning != Meaning::kRefused) {
            Require(MeaningOf(u" " + query + u"\n", file) == meaning);
            Require(MeaningOf(query + u" &&", file) == Meaning::kRefused);
            Require(MeaningOf(u"(" + query, file) == Meaning::kRefused);
            const std::u16string enclosed = u"(" + query + u")";
            const Meaning inside = MeaningOf(enclosed, file); // refused only when it now nests too deep
            Require(inside == meaning || (inside == Meaning::kRefused && query.size() > 200));
            if (inside != Meaning::kRefused) {
                Require(MeaningOf(enclosed + u"&&" + enclosed, file) == meaning);
                Require(MeaningOf(enclosed + u" || " + enclosed, file) == meaning);
            }
        }
    }
    Require(ledger::LiveCount() == before);
    return 0;
}
