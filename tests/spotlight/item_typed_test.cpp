// The four getters of one type each: what they take, what they refuse, and what they give for nothing.
#include <doctest/doctest.h>

#include "tests/spotlight/support/item_files.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace {

constexpr const char *kWrongType = "RuntimeException: Wrong type used for getting attribute value.";

struct Getter {
    std::string name;
    CFTypeID (*accepted)();
};

const Getter kGetters[] = {
    {"AttributeString", CFStringGetTypeID},
    {"AttributeBoolean", CFBooleanGetTypeID},
    {"AttributeDouble", CFNumberGetTypeID},
    {"AttributeStringArray", CFArrayGetTypeID},
};

template <class Ref> CFRef<CFTypeRef> Owned(Ref reference) { return CFRef<CFTypeRef>::Adopt(reference); }

template <class Number> CFRef<CFTypeRef> NumberOf(CFNumberType type, Number number) {
    return Owned(CFNumberCreate(kCFAllocatorDefault, type, &number));
}

CFRef<CFArrayRef> ArrayOfTexts(const Names &texts) {
    const auto array = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (const std::string &text : texts)
        CFArrayAppendValue(array, MakeString(text).Get());
    return CFRef<CFArrayRef>::Adopt(array);
}

struct TypedItem : QueryProgram {
    explicit TypedItem(double version = 2013.04) : QueryProgram(version), file(Add("letter")), item(NewItem(file)) {}
    void Set(CFTypeRef value) { store.Set(file, "attribute", value); }
    void Set(const CFRef<CFTypeRef> &value) { Set(value.Get()); }
    template <class Result> Result Read(const char *getter) { return item.Call<Result>(getter, "attribute"); }
    /// Whether it is what the getter gives for nothing.
    static bool IsNeutral(const std::string &getter, const Value &value) {
        if (getter == "AttributeBoolean")
            return value == Value(false);
        if (getter == "AttributeDouble")
            return value == Value(0.0);
        if (getter == "AttributeString")
            return value.IsNil();
        const auto array = value.As<Object>();
        return array && array.ClassName() == "string()" && array.UpperBound() == -1 && array.References() == 2;
    }
    File file;
    Object item;
};

} // namespace

TEST_CASE("AttributeString gives the text of a string") {
    AtUsualAges([&](double version) {
        TypedItem program(version);
        const std::string texts[] = {"A letter", "Zo\xC3\xAB \xF0\x9F\x98\x80", std::string(99, 'x'),
                                     std::string(100, 'x')};
        for (const std::string &text : texts) {
            program.Set(MakeString(text).Get());
            CHECK(program.Read<std::string>("AttributeString") == text);
        }
        CHECK(program.Host().Raised().empty());
    });
}

TEST_CASE("AttributeBoolean gives true and false") {
    TypedItem program;
    program.Set(kCFBooleanTrue);
    CHECK(program.Read<bool>("AttributeBoolean") == true);
    program.Set(kCFBooleanFalse);
    CHECK(program.Read<bool>("AttributeBoolean") == false);
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("AttributeDouble gives numbers of every kind") {
    AtUsualAges([&](double version) {
        TypedItem program(version);
        const auto read = [&](const CFRef<CFTypeRef> &number) {
            program.Set(number);
            return program.Read<double>("AttributeDouble");
        };
        CHECK(read(NumberOf(kCFNumberDoubleType, 2.5)) == 2.5);
        CHECK(read(NumberOf(kCFNumberFloat32Type, 1.5F)) == 1.5);
        CHECK(read(NumberOf(kCFNumberSInt8Type, SInt8{-7})) == -7);
        CHECK(read(NumberOf(kCFNumberSInt32Type, SInt32{300})) == 300);
        CHECK(read(NumberOf(kCFNumberSInt64Type, SInt64{3'000'000'000})) == 3e9);
        CHECK(program.Host().Raised().empty());
    });
}

TEST_CASE("AttributeDouble of a number that loses digits as a double gives 0.0 without an exception") {
    TypedItem program;
    const auto number = NumberOf(kCFNumberSInt64Type, (SInt64{1} << 53) + 1);
    double best = 0;
    REQUIRE_FALSE(CFNumberGetValue(static_cast<CFNumberRef>(number.Get()), kCFNumberDoubleType, &best));
    program.Set(number);
    CHECK(program.Read<double>("AttributeDouble") == 0);
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("AttributeStringArray gives the elements of an array in their order, and an empty one for an empty one") {
    AtUsualAges([&](double version) {
        TypedItem program(version);
        for (const Names &texts : {Names{"one", "two", "", "zwei"}, Names{"only"}, Names{}}) {
            program.Set(ArrayOfTexts(texts).Get());
            const auto array = program.Read<Object>("AttributeStringArray");
            REQUIRE(array);
            CHECK(array.ClassName() == "string()");
            CHECK(array.References() == 1);
            CHECK(array.As<std::string>() == texts);
        }
        CHECK(program.Host().Raised().empty());
    });
}

TEST_CASE("A value of any other type raises the wrong type, full stop included, and gives the neutral value") {
    AtUsualAges([&](double version) {
        TypedItem program(version);
        CFRef<CFTypeRef> values[] = {
            Owned(MakeString("text").Give()),
            CFRef<CFTypeRef>::Retain(kCFBooleanTrue),
            NumberOf(kCFNumberSInt32Type, SInt32{1}),
            NumberOf(kCFNumberDoubleType, 1.5),
            Owned(ArrayOfTexts({"a"}).Give()),
            Owned(CFDateCreate(kCFAllocatorDefault, 0)),
            Owned(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>("bytes"), 5)),
            Owned(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr)),
            CFRef<CFTypeRef>::Retain(kCFNull),
        };
        for (const auto &value : values) {
            program.Set(value);
            const auto retained = CFGetRetainCount(value.Get());
            int32_t refusals = 0;
            for (const Getter &getter : kGetters) {
                CAPTURE(getter.name);
                const Value given = program.item.Call(getter.name, "attribute");
                const std::string raised = program.TakeException();
                if (CFGetTypeID(value.Get()) == getter.accepted()) {
                    CHECK(raised == "");
                    CHECK_FALSE(TypedItem::IsNeutral(getter.name, given));
                    continue;
                }
                refusals++;
                CHECK(raised == kWrongType);
                CHECK(TypedItem::IsNeutral(getter.name, given));
            }
            CHECK(refusals >= 3);
            CHECK(CFGetRetainCount(value.Get()) == retained);
        }
    });
}

TEST_CASE("Of an attribute that the item lacks, or that the framework does not give, each getter gives its neutral "
          "value without an exception") {
    TypedItem program;
    program.Set(MakeString("there").Get());
    for (const Getter &getter : kGetters) {
        CAPTURE(getter.name);
        CHECK(TypedItem::IsNeutral(getter.name, program.item.Call(getter.name, "missing")));
        CHECK(TypedItem::IsNeutral(getter.name, program.item.Call(getter.name, "")));
        const Fault fault("MDItemCopyAttribute", 1);
        CHECK(TypedItem::IsNeutral(getter.name, program.item.Call(getter.name, "attribute")));
    }
    CHECK(program.item.Call<std::string>("AttributeString", "missing").empty());
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("For a name that does not convert each getter gives its neutral value and asks for no attribute") {
    TypedItem program;
    program.Set(MakeString("there").Get());
    {
        const Fault fault("MDItemCopyAttribute");
        for (const Getter &getter : kGetters) {
            CAPTURE(getter.name);
            CHECK(TypedItem::IsNeutral(getter.name, program.item.Call(getter.name, nullptr)));
            CHECK(TypedItem::IsNeutral(getter.name, program.item.Call(getter.name, kMalformed)));
        }
        CHECK(fault.Failed() == 0);
    }
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("AttributeDouble of a file's creation date raises the wrong type, and of its size gives the bytes") {
    const TemporaryFolder folder;
    const std::string path = folder.File("letter.txt", "Dear Ann");
    TestSession session;
    Object item = ConstructItem(session.Host(), path);
    CHECK(item.Call<double>("AttributeDouble", "kMDItemContentCreationDate") == 0);
    CHECK(session.TakeException() == kWrongType);
    CHECK(item.Call<double>("AttributeDouble", "kMDItemFSSize") == 8);
    CHECK(session.TakeException() == "");
}

TEST_CASE("The wrong type is raised with an ASCII message and the number 0") {
    TypedItem program;
    program.Set(kCFBooleanTrue);
    program.Read<Value>("AttributeString");
    const auto raised = program.Host().TakeRaised();
    REQUIRE(raised.size() == 1);
    CHECK(raised.front().errorNumber == 0);
    CHECK(raised.front().messageEncoding == sim::host::kASCII);
}
