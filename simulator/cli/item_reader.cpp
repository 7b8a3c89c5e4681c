#include "simulator/cli/item_reader.h"

namespace sim::cli {

using host::Host;
using host::Object;
using host::Value;

ItemReader::ItemReader(Host &host)
    : kind_(host.Shared<std::string>("MDItemQTX", "kMDItemKind")),
      size_(host.Shared<std::string>("MDItemQTX", "kMDItemFSSize")),
      modified_(host.Shared<std::string>("MDItemQTX", "kMDItemFSContentChangeDate")) {}

ItemFacts ItemReader::Read(Object &item) const {
    const bool hasSize = !item.Call("GetAttribute", size_).IsNil();
    return {.name = item.Get<std::string>("FSName"),
            .kind = item.Call("GetAttribute", kind_),
            .size = hasSize ? Value(item.Get<int64_t>("FSSize")) : Value(),
            .modified = item.Call("GetAttribute", modified_),
            .path = item.Get<std::string>("Path")};
}

std::string PathFrom(const std::filesystem::path &folder, const std::string &path) {
    const std::string before = folder == "/" ? "/" : folder.string() + "/";
    return path.starts_with(before) ? path.substr(before.size()) : path;
}

} // namespace sim::cli
