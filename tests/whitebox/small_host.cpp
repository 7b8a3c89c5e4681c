#include "tests/whitebox/small_host.h"

#include "host/strings.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace whitebox {

namespace {

constexpr int32_t kUntrue = 0x7FFFFFFF;

/// Nothing may be read there.
const UInt8 *Fault() { return reinterpret_cast<const UInt8 *>(uintptr_t{16}); }

void AppendUTF8(std::string &text, UChar32 point) {
    constexpr UChar32 kReplacement = 0xFFFD;
    if (point < 0 || point > 0x10FFFF || U_IS_SURROGATE(point))
        point = kReplacement;
    UInt8 bytes[U8_MAX_LENGTH];
    int32_t count = 0;
    U8_APPEND_UNSAFE(bytes, count, point);
    text.append(reinterpret_cast<const char *>(bytes), static_cast<size_t>(count));
}

template <class Unit> std::vector<Unit> UnitsOf(const std::string &bytes) {
    std::vector<Unit> units(bytes.size() / sizeof(Unit));
    if (!units.empty())
        std::memcpy(units.data(), bytes.data(), units.size() * sizeof(Unit));
    return units;
}

/// From the wide encodings to UTF-8; of other texts the bytes stay as they are.
HostText Converted(const HostText &text, CFStringEncoding encoding) {
    HostText converted{text.bytes, encoding};
    if (encoding != kCFStringEncodingUTF8)
        return converted;
    if (text.encoding == kCFStringEncodingUnicode) {
        const auto units = UnitsOf<char16_t>(text.bytes);
        converted.bytes.clear();
        for (size_t index = 0; index < units.size();) {
            UChar32 point;
            U16_NEXT(units.data(), index, units.size(), point);
            AppendUTF8(converted.bytes, point);
        }
    } else if (text.encoding == kCFStringEncodingUTF32) {
        converted.bytes.clear();
        for (const UChar32 point : UnitsOf<UChar32>(text.bytes))
            AppendUTF8(converted.bytes, point);
    }
    return converted;
}

} // namespace

/// The first four words are those that old hosts showed.
struct SmallHost::String {
    uint32_t unknown1 = 0xB0B0B0B0;
    const UInt8 *shownStorage;
    uint32_t unknown2 = 0xB0B0B0B0;
    int32_t shownLength;
    int32_t references = 1;
    HostText text;
    std::unique_ptr<UInt8[]> storage;

    String(HostText itsText, bool isShown)
        : text(std::move(itsText)), storage(std::make_unique<UInt8[]>(text.bytes.size() + 1)) {
        std::copy(text.bytes.begin(), text.bytes.end(), storage.get() + 1);
        shownStorage = isShown ? storage.get() : Fault();
        shownLength = isShown ? static_cast<int32_t>(text.bytes.size()) : kUntrue;
    }
    static String *Of(REALstringStruct *handle) { return reinterpret_cast<String *>(handle); }
    REALstringStruct *Handle() { return reinterpret_cast<REALstringStruct *>(this); }
};

struct SmallHost::Object {
    int32_t references = 1;
    HostException exception;

    static Object *Of(REALobjectStruct *handle) { return reinterpret_cast<Object *>(handle); }
};

/// The first eight words are those that old hosts showed.
struct SmallHost::Array {
    uint32_t unknown[7] = {};
    void *shownElements = nullptr;
    int32_t upperBound = -1;
    std::vector<REALstringStruct *> elements;

    static Array *Of(_REALarray *handle) { return reinterpret_cast<Array *>(handle); }
};

struct SmallHost::Services {
    static SmallHost &Host() { return *current_; }

    static void LockString(REALstringStruct *string) {
        Host().Enter("REALLockString");
        String::Of(string)->references++;
    }
    static void UnlockString(REALstringStruct *string) {
        if (--String::Of(string)->references == 0) {
            delete String::Of(string);
            Host().alive_--;
        }
        Host().Enter("REALUnlockString");
    }
    static CFStringEncoding GetStringEncoding(REALstringStruct *string) {
        Host().Enter("REALGetStringEncoding");
        return String::Of(string)->text.encoding;
    }
    static void SetStringEncoding(REALstringStruct *string, CFStringEncoding encoding) {
        Host().Enter("REALSetStringEncoding", std::to_string(encoding));
        String::Of(string)->text.encoding = encoding;
    }
    static REALstringStruct *ConvertString(REALstringStruct *string, CFStringEncoding encoding) {
        Host().Enter("REALConvertString", std::to_string(encoding));
        const HostText converted = Converted(String::Of(string)->text, encoding);
        return Host().NewString(converted.bytes, converted.encoding);
    }
    static REALstringStruct *BuildString(const void *bytes, int32_t length) {
        Host().Enter("REALBuildString", std::to_string(length));
        return Host().Build(bytes, length, kHostUnknownEncoding);
    }
    static REALstringStruct *BuildStringWithEncoding(const void *bytes, int32_t length, CFStringEncoding encoding) {
        Host().Enter("REALBuildStringWithEncoding", std::to_string(length) + ", " + std::to_string(encoding));
        return Host().Build(bytes, length, encoding);
    }
    static const UInt8 *GetStringContents(REALstringStruct *string) {
        Host().Enter("StringGetCString");
        return String::Of(string)->storage.get() + 1;
    }
    static CFStringRef GetStringCFString(REALstringStruct *, int32_t flags) {
        if (Host().Lacks("REALGetStringCFString"))
            return nullptr;
        Host().Enter("REALGetStringCFString", std::to_string(flags));
        return Host().cfString ? Host().cfString() : nullptr;
    }
    static int32_t LenB(REALstringStruct *string) {
        if (Host().Lacks("LenB"))
            return 0;
        Host().Enter("LenB");
        return static_cast<int32_t>(String::Of(string)->text.bytes.size());
    }
    static HostCode LoadGlobalMethod(REALmoduleStruct *, const char *declaration) {
        const bool isLenB = std::string_view(declaration) == "LenB( s as string ) as integer";
        return isLenB && !Host().Lacks("LenB") ? reinterpret_cast<HostCode>(LenB) : nullptr;
    }
    static REALobjectStruct *NewInstance(const char *className) {
        Host().Enter("PluginNewInstance", className);
        constexpr std::string_view kClasses[] = {"NilObjectException", "RuntimeException", "OutOfBoundsException",
                                                 "IllegalCastException", "OutOfMemoryException"};
        if (std::find(std::begin(kClasses), std::end(kClasses), className) == std::end(kClasses) ||
            Host().Lacks(className))
            return nullptr;
        Host().alive_++;
        return reinterpret_cast<REALobjectStruct *>(new Object{.exception = {.className = className}});
    }
    static void SetPropValueString(REALobjectStruct *object, const char *name, REALstringStruct *value) {
        Host().Enter("REALSetPropValueString", name);
        Object::Of(object)->exception.message = String::Of(value)->text;
    }
    static void SetPropValueInteger(REALobjectStruct *object, const char *name, int32_t value) {
        Host().Enter("REALSetPropValueInteger", std::string(name) + ", " + std::to_string(value));
        Object::Of(object)->exception.errorNumber = value;
    }
    static void SetPropValueInt(REALobjectStruct *object, const char *name, int32_t value) {
        Host().Enter("REALSetPropValueInt", std::string(name) + ", " + std::to_string(value));
        Object::Of(object)->exception.errorNumber = value;
    }
    static void RaiseException(REALobjectStruct *exception) {
        Host().Enter("RuntimeRaiseException");
        Host().raised.push_back(Object::Of(exception)->exception);
    }
    static void UnlockObject(REALobjectStruct *object) {
        Host().Enter("REALUnlockObject");
        if (--Object::Of(object)->references == 0) {
            delete Object::Of(object);
            Host().alive_--;
        }
    }
    static int32_t GetArrayUBound(_REALarray *array) {
        Host().Enter("RuntimeUBound");
        return Array::Of(array)->upperBound;
    }
    static REALstringStruct *ReadStringArray(_REALarray *array, int32_t index) {
        Host().Enter("RuntimeDirectReadStringArray", std::to_string(index));
        REALstringStruct *string = Array::Of(array)->elements.at(static_cast<size_t>(index));
        if (string)
            String::Of(string)->references++;
        return string;
    }

    static void InsertString(_REALarray *array, int32_t index, REALstringStruct *string) {
        Host().Enter("insert", std::to_string(index));
        auto &elements = Array::Of(array)->elements;
        elements.insert(elements.begin() + index, string);
        if (string)
            String::Of(string)->references++;
        Array::Of(array)->upperBound = static_cast<int32_t>(elements.size()) - 1;
    }
    static ArrayInserter<REALstringStruct *>::ElementFunction StringArrayInsertProc(_REALarray *) {
        Host().Enter("PluginStringArrayInsertProc");
        return InsertString;
    }

    using Table = std::map<std::string, HostCode, std::less<>>;

    /// The compiler holds each function against the shape of the service.
    template <class Signature>
    static void Add(Table &table, EntryPoint<Signature> &, const char *name,
                    typename EntryPoint<Signature>::Function function) {
        table[name] = reinterpret_cast<HostCode>(function);
    }

    static const Table &All() {
        static const Table table = [] {
            Table rows;
            Add(rows, REALLockString, "REALLockString", LockString);
            Add(rows, REALUnlockString, "REALUnlockString", UnlockString);
            Add(rows, REALGetStringEncoding, "REALGetStringEncoding", GetStringEncoding);
            Add(rows, REALSetStringEncoding, "REALSetStringEncoding", SetStringEncoding);
            Add(rows, REALConvertString, "REALConvertString", ConvertString);
            Add(rows, REALBuildString, "REALBuildString", BuildString);
            Add(rows, REALBuildStringWithEncoding, "REALBuildStringWithEncoding", BuildStringWithEncoding);
            Add(rows, REALGetStringContents, "StringGetCString", GetStringContents);
            Add(rows, REALGetStringCFString, "REALGetStringCFString", GetStringCFString);
            Add(rows, REALLoadGlobalMethod, "REALLoadGlobalMethod", LoadGlobalMethod);
            Add(rows, REALnewInstance, "PluginNewInstance", NewInstance);
            Add(rows, REALSetPropValueString, "REALSetPropValueString", SetPropValueString);
            Add(rows, REALSetPropValueInteger, "REALSetPropValueInteger", SetPropValueInteger);
            Add(rows, REALSetPropValueInteger, "REALSetPropValueInt", SetPropValueInt);
            Add(rows, REALRaiseException, "RuntimeRaiseException", RaiseException);
            Add(rows, REALUnlockObject, "REALUnlockObject", UnlockObject);
            Add(rows, REALGetArrayUBound, "RuntimeUBound", GetArrayUBound);
            Add(rows, REALReadStringArray, "RuntimeDirectReadStringArray", ReadStringArray);
            rows["PluginStringArrayInsertProc"] = reinterpret_cast<HostCode>(StringArrayInsertProc);
            return rows;
        }();
        return table;
    }
};

SmallHost::SmallHost(double version)
    : restored_(REALLockString, REALUnlockString, REALGetStringEncoding, REALSetStringEncoding, REALConvertString,
                REALBuildString, REALBuildStringWithEncoding, REALGetStringContents, REALGetStringCFString,
                REALLoadGlobalMethod, REALnewInstance, REALSetPropValueString, REALSetPropValueInteger,
                REALRaiseException, REALUnlockObject, REALGetArrayUBound, REALReadStringArray,
                REALInsertArrayValueString) {
    current_ = this;
    gResolver = Resolve;
    rbversion = version;
}

SmallHost::~SmallHost() {
    for (const auto &array : arrays_)
        for (REALstringStruct *string : array->elements)
            if (string)
                Services::UnlockString(string);
    current_ = nullptr;
    gResolver = nullptr;
    rbversion = 0.0;
}

HostCode SmallHost::Resolve(const char *name) {
    const auto found = Services::All().find(std::string_view(name));
    return found == Services::All().end() || current_->Lacks(name) ? nullptr : found->second;
}

void SmallHost::Enter(const char *service, const std::string &arguments) {
    if (keepsCalls)
        calls_.push_back(std::string(service) + "(" + arguments + ")");
    if (const auto action = actions_.find(std::string_view(service)); action != actions_.end())
        action->second();
}

int32_t SmallHost::CallCount(std::string_view service) const {
    return static_cast<int32_t>(std::count_if(calls_.begin(), calls_.end(), [&](const std::string &call) {
        return call.starts_with(service) && call[service.size()] == '(';
    }));
}

REALstringStruct *SmallHost::NewString(std::string_view bytes, CFStringEncoding encoding) {
    alive_++;
    return (new String({std::string(bytes), encoding}, !HostHidesLayouts()))->Handle();
}

REALstringStruct *SmallHost::Build(const void *bytes, int32_t length, CFStringEncoding encoding) {
    built = {std::string(static_cast<const char *>(bytes), static_cast<size_t>(length)), encoding};
    return NewString(built.bytes, encoding);
}

HostText SmallHost::Read(REALstringStruct *string) const { return String::Of(string)->text; }

std::optional<HostText> SmallHost::Take(REALstringStruct *string) {
    if (!string)
        return std::nullopt;
    HostText text = Read(string);
    Services::UnlockString(string);
    return text;
}

_REALarrayString *SmallHost::NewArray(std::vector<REALstringStruct *> strings, bool isDirect) {
    auto array = std::make_unique<Array>();
    array->upperBound = static_cast<int32_t>(strings.size()) - 1;
    array->elements = std::move(strings);
    if (isDirect)
        array->shownElements =
            HostHidesLayouts() ? const_cast<UInt8 *>(Fault()) : static_cast<void *>(array->elements.data());
    arrays_.push_back(std::move(array));
    return reinterpret_cast<_REALarrayString *>(arrays_.back().get());
}

std::vector<std::optional<HostText>> SmallHost::Elements(_REALarrayString *array) const {
    std::vector<std::optional<HostText>> texts;
    for (REALstringStruct *string : Array::Of(array)->elements)
        texts.push_back(string ? std::optional(Read(string)) : std::nullopt);
    return texts;
}

void SmallHost::SetUpperBound(_REALarrayString *array, int32_t upperBound) {
    Array::Of(array)->upperBound = upperBound;
}

} // namespace whitebox
