#include "tests/plugin/bare_start.h"

#include "tests/support/plugin_watch.h"
#include "tests/support/test_session.h"

#include <string_view>

namespace tests {

namespace {

constexpr size_t kClassWords = 25, kModuleWords = 24, kMethodWords = 4;

BareStart::Words Read(const uint32_t *record, size_t count) { return {record, record + count}; }

template <class Function> void (*Code(Function function))() { return reinterpret_cast<void (*)()>(+function); }

} // namespace

BareStart::BareStart(double version)
    : version_(version), image_(sim::loader::PluginImage::Load(PluginPath(), {.watch = &PluginWatch::Instance()})) {
    current_ = this;
    asked_.clear();
    image_.EntryPoint()(Resolve);
    current_ = nullptr;
}

void (*BareStart::Resolve(const char *name))() {
    const std::string_view asked = asked_.emplace_back(name);
    if (asked == "REALGetRBVersion" && current_->version_ > 0)
        return Code([] { return current_->version_; });
    if (asked == "RegisterPluginVersion")
        return Code([](int32_t) {});
    if (asked == "PluginRegisterClass")
        return Code([](const uint32_t *record) {
            current_->handed_.classes[reinterpret_cast<const char *>(record[1])] = Read(record, kClassWords);
        });
    if (asked == "PluginRegisterModule")
        return Code([](const uint32_t *record) { current_->handed_.module = Read(record, kModuleWords); });
    if (asked == "PluginRegisterMethod")
        return Code([](const uint32_t *record) { current_->handed_.method = Read(record, kMethodWords); });
    return nullptr;
}

} // namespace tests
