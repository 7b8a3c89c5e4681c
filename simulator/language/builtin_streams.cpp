// TextInputStream and TextOutputStream: files of text.
#include "simulator/language/builtin.h"
#include "simulator/language/program_object.h"

#include <fstream>

namespace sim::language {

namespace {

class StreamInstance : public host::Instance {
public:
    using Instance::Instance;

    std::fstream file;
};

std::fstream &FileAt(const host::Object &object) { return dynamic_cast<StreamInstance &>(*object.Get()).file; }

host::Value Opened(Call &call, const char *className, std::ios::openmode mode) {
    if (call.arguments[0].IsNil())
        call.execution.Raise("NilObjectException", "there is no file, only Nil", call.where);
    const std::string path = call.arguments[0].As<host::Object>().Path();
    host::Object stream = call.execution.New(*call.execution.GetSymbols().Find(className));
    FileAt(stream).open(path, mode | std::ios::binary);
    if (!FileAt(stream))
        call.execution.Raise("IOException", path + " cannot be opened", call.where);
    return stream;
}

host::Value Open(Call &call) { return Opened(call, "TextInputStream", std::ios::in); }
host::Value Create(Call &call) { return Opened(call, "TextOutputStream", std::ios::out | std::ios::trunc); }
host::Value Append(Call &call) { return Opened(call, "TextOutputStream", std::ios::out | std::ios::app); }

host::Value Close(Call &call) {
    FileAt(call.self).close();
    return {};
}

host::Value ReadLine(Call &call) {
    std::string line;
    std::getline(FileAt(call.self), line);
    return line;
}

host::Value ReadAll(Call &call) {
    return std::string(std::istreambuf_iterator<char>(FileAt(call.self)), std::istreambuf_iterator<char>());
}

host::Value AtEnd(Call &call) { return FileAt(call.self).peek() == std::char_traits<char>::eof(); }

host::Value Write(Call &call) {
    FileAt(call.self) << TextAt(call, 0);
    return {};
}

host::Value WriteLine(Call &call) {
    FileAt(call.self) << TextAt(call, 0) << '\n';
    return {};
}

constexpr FunctionRow kInput[] = {
    {"Open(file As FolderItem) As TextInputStream", Open, true},
    {"ReadLine As String", ReadLine},
    {"ReadAll As String", ReadAll},
    {"Close", Close},
};
constexpr PropertyRow kInputProperties[] = {{"EOF As Boolean", AtEnd}};

constexpr FunctionRow kOutput[] = {
    {"Create(file As FolderItem) As TextOutputStream", Create, true},
    {"Append(file As FolderItem) As TextOutputStream", Append, true},
    {"Write(text As String)", Write},
    {"WriteLine(text As String = \"\")", WriteLine},
    {"Close", Close},
};

} // namespace

std::span<const BuiltInClass> StreamClasses() {
    static constexpr BuiltInClass rows[] = {
        {"TextInputStream", nullptr, MakeInstance<StreamInstance>, kInput, kInputProperties},
        {"TextOutputStream", nullptr, MakeInstance<StreamInstance>, kOutput},
    };
    return rows;
}

} // namespace sim::language
