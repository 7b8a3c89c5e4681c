// Strings. Null stands for a nil string and is accepted wherever a string is read: its text is empty, its encoding
// unknown.
#include "simulator/host/ground/stop.h"
#include "simulator/host/ground/text.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/host/services/table.h"
#include "simulator/host/services/truth.h"

namespace sim::host {

namespace {

StringEntity *StringOrNull(const void *string) {
    return Runtime::Current().heap.RequireOrNull<StringEntity>(string, "a string");
}

void LockString(const void *string) {
    if (StringEntity *entity = StringOrNull(string))
        entity->heap->Lock(*entity);
}

void UnlockString(const void *string) {
    if (StringEntity *entity = StringOrNull(string))
        entity->heap->Unlock(*entity);
}

void *BuildWithEncoding(const void *bytes, int32_t length, uint32_t encoding) {
    if (length < 0 || (length > 0 && !bytes))
        Stop("a string was to be built from " + std::to_string(length) + " bytes at " +
             (bytes ? "an address" : "null"));
    const char *start = static_cast<const char *>(bytes);
    std::string text = length ? std::string(start, start + length) : std::string();
    return Runtime::Current().NewString({std::move(text), encoding}).address;
}

void *Build(const void *bytes, int32_t length) { return BuildWithEncoding(bytes, length, kUnknownEncoding); }

uint32_t GetEncoding(const void *string) {
    StringEntity *entity = StringOrNull(string);
    return entity ? entity->GetText().encoding : static_cast<uint32_t>(kUnknownEncoding);
}

void SetEncoding(const void *string, uint32_t encoding) {
    if (StringEntity *entity = StringOrNull(string))
        entity->SetEncoding(encoding);
}

void *ConvertString(const void *string, uint32_t encoding) {
    StringEntity *entity = StringOrNull(string);
    return entity ? Runtime::Current().NewString(Convert(entity->GetText(), encoding)).address : nullptr;
}

const char *GetContents(const void *string) {
    StringEntity *entity = StringOrNull(string);
    return entity ? entity->Contents() : nullptr;
}

int32_t LenB(const void *string) {
    StringEntity *entity = StringOrNull(string);
    return entity ? static_cast<int32_t>(entity->GetText().bytes.size()) : 0;
}

/// The second argument is 0 in every call that is known.
const void *GetCFString(const void *string, int32_t options) {
    if (options)
        Stop("\"REALGetStringCFString\" was called with " + std::to_string(options) + ", which is not modelled");
    StringEntity *entity = StringOrNull(string);
    if (!entity || entity->GetText().encoding == kUnknownEncoding)
        return nullptr;
    return Runtime::Current().options.makeCFString(entity->GetText());
}

/// The bytes of a string in an encoding, on loan until they are disposed of.
struct StringData {
    const char *bytes;
    int32_t length;
    uint32_t encoding;
    void *string;
};

Truth GetStringData(const void *string, uint32_t encoding, StringData *data) {
    StringEntity *entity = StringOrNull(string);
    if (!entity || !data)
        return TruthOf(false);
    StringEntity &converted = Runtime::Current().NewString(Convert(entity->GetText(), encoding));
    *data = {converted.Contents(), static_cast<int32_t>(converted.GetText().bytes.size()), encoding, converted.address};
    return TruthOf(true);
}

void DisposeStringData(StringData *data) {
    if (data && data->string)
        UnlockString(data->string);
    if (data)
        *data = {};
}

} // namespace

std::span<const ServiceRow> StringServices() {
    static const ServiceRow rows[] = {
        Service<"REALLockString", LockString>(),
        Service<"REALUnlockString", UnlockString>(),
        Service<"REALBuildString", Build>(),
        Service<"REALBuildStringWithEncoding", BuildWithEncoding>(2012.0),
        Service<"REALGetStringEncoding", GetEncoding>(),
        Service<"REALSetStringEncoding", SetEncoding>(),
        Service<"REALConvertString", ConvertString>(),
        Service<"StringGetCString", GetContents>(),
        Service<"REALGetStringCFString", GetCFString>(2012.0),
        Service<"PluginGetStringData", GetStringData>(),
        Service<"PluginDisposeStringData", DisposeStringData>(),
        Service<"LenB( s as string ) as integer", LenB, Reach::kGlobalMethod>(),
    };
    return rows;
}

} // namespace sim::host
