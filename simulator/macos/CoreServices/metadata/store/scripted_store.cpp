#include "simulator/macos/CoreServices/metadata/store/scripted_store.h"

#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "simulator/macos/CoreServices/metadata/store/scripted_session.h"
#include "simulator/macos/control/stop.h"

#include <algorithm>
#include <utility>

namespace sim::macos {

using store::FileEvent;

namespace {

constexpr CFAbsoluteTime kStart = 425833200; // 2014-06-30 15:00 GMT

std::string_view NameIn(std::string_view path) { return path.substr(path.rfind('/') + 1); }

} // namespace

CFTypeRef ScriptedFile::Copy(std::string_view key) const {
    return key == "kMDItemTextContent" ? nullptr : CopyForSearch(key);
}

CFTypeRef ScriptedFile::CopyForSearch(std::string_view key) const {
    const auto found = attributes_.find(key);
    if (found != attributes_.end())
        return found->second.Copy().Give();
    if (key == "kMDItemFSName")
        return MakeString(NameIn(path_)).Give();
    if (key == "kMDItemPath")
        return MakeString(path_).Give();
    return nullptr;
}

std::vector<std::string> ScriptedFile::Names() const {
    std::vector<std::string> names{"kMDItemFSName", "kMDItemPath"};
    for (const auto &[name, value] : attributes_) {
        if (std::find(names.begin(), names.end(), name) == names.end() && name != "kMDItemTextContent")
            names.push_back(name);
    }
    return names;
}

ScriptedStore::ScriptedStore() : clock_(kStart), override_(clock_), previous_(store::FileStore::Replace(this)) {}

ScriptedStore::~ScriptedStore() {
    store::FileStore::Replace(previous_);
    for (ScriptedSession *session : sessions_)
        session->StoreIsGone();
}

ScriptedStore::File ScriptedStore::Add(std::string path) {
    const File number = ++lastFile_;
    const auto file = std::make_shared<ScriptedFile>(number, std::move(path));
    files_[number] = file;
    for (ScriptedSession *session : sessions_) {
        if (session->IsInScope(file->path_))
            session->Tell({FileEvent::Kind::kFound, file->Identity(), file});
    }
    return number;
}

void ScriptedStore::Prepare(File file, std::string_view name, CFTypeRef value) {
    auto &attributes = files_.at(file)->attributes_;
    attributes.erase(std::string(name));
    if (value)
        attributes.emplace(name, CFRef<CFTypeRef>::Retain(value));
}

void ScriptedStore::Set(File file, std::string_view name, CFTypeRef value) {
    Prepare(file, name, value);
    TellChanged(file);
}

void ScriptedStore::SetText(File file, std::string_view name, std::string_view value) {
    Set(file, name, MakeString(value).Get());
}

void ScriptedStore::SetNumber(File file, std::string_view name, std::int64_t value) {
    Set(file, name, CFRef<CFNumberRef>::Adopt(CFNumberCreate(nullptr, kCFNumberSInt64Type, &value)).Get());
}

void ScriptedStore::Touch(File file) { TellChanged(file); }

void ScriptedStore::TellChanged(File number) {
    const auto &file = files_.at(number);
    for (ScriptedSession *session : sessions_) {
        if (session->IsInScope(file->path_))
            session->Tell({FileEvent::Kind::kChanged, file->Identity(), file});
    }
}

void ScriptedStore::Move(File number, std::string path) {
    const auto &file = files_.at(number);
    const std::string oldPath = std::exchange(file->path_, std::move(path));
    for (ScriptedSession *session : sessions_) {
        const bool was = session->IsInScope(oldPath);
        const bool is = session->IsInScope(file->path_);
        if (was && is)
            session->Tell({FileEvent::Kind::kChanged, file->Identity(), file});
        else if (was)
            session->Tell({FileEvent::Kind::kLost, file->Identity(), nullptr});
        else if (is)
            session->Tell({FileEvent::Kind::kFound, file->Identity(), file});
    }
}

void ScriptedStore::Remove(File number) {
    const auto file = files_.at(number);
    files_.erase(number);
    for (ScriptedSession *session : sessions_) {
        if (session->IsInScope(file->path_))
            session->Tell({FileEvent::Kind::kLost, file->Identity(), nullptr});
    }
}

void ScriptedStore::SetPace(std::size_t files, double milliseconds) {
    paceFiles_ = files;
    paceMilliseconds_ = milliseconds;
}

void ScriptedStore::Hold() { held_ = true; }

void ScriptedStore::Release() {
    held_ = false;
    for (ScriptedSession *session : sessions_)
        session->Wake();
}

MDItemRef ScriptedStore::CopyItem(File file) const { return Item::Create(files_.at(file)); }

ScriptedStore::File ScriptedStore::FileOf(MDItemRef item) {
    const FileIdentity identity = Item::From(item)->Source().Identity();
    if (identity.volume != 0)
        Stop("The item is not one of a scripted file.");
    return identity.file;
}

void ScriptedStore::Run(double milliseconds) {
    const CFAbsoluteTime end = clock_.Now() + milliseconds / 1000;
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, milliseconds / 1000, false);
    clock_.Advance(std::max(0.0, end - clock_.Now())); // a loop without sources does not wait
}

std::unique_ptr<store::Session> ScriptedStore::Open(const store::Scope &scope, bool live, std::function<void()> wake) {
    return std::make_unique<ScriptedSession>(*this, scope, live, std::move(wake));
}

std::vector<std::string> ScriptedStore::Mounted(bool onNetwork) const {
    return onNetwork ? std::vector<std::string>() : std::vector<std::string>{"/"};
}

} // namespace sim::macos
