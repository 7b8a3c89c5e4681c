#include "tests/faults/live_queries.h"

#include "simulator/macos/CoreFoundation/ledger.h"
#include "simulator/macos/CoreFoundation/number.h"
#include "simulator/macos/CoreFoundation/registry.h"

#include <malloc.h>

namespace tests::faults {

namespace {

using sim::host::EventCall;
using sim::host::Object;
using sim::host::Value;

constexpr size_t kUsualFiles = 60;
constexpr size_t kQueries = 4;
constexpr size_t kKept = 50;
constexpr const char *kEvents[] = {"Progress", "Finish", "Update"};
constexpr const char *kHostKinds[] = {"MDQueryQTX", "MDItemQTX", "string", "variant", "MDItemQTX()", "Dictionary"};

/// The system remembers the objects that died last, and here they are the same ones whatever died before.
void ForgetTheDead() {
    for (size_t dead = 0; dead < sim::macos::Registry::kRemembered; dead++)
        sim::macos::MakeNumber(0.5);
}

} // namespace

LiveQueries::LiveQueries(const Setting &setting, uint32_t seed) : random_(seed), stage_(setting) {}

std::string LiveQueries::NewName() {
    // As long as all others, so that it takes as much memory.
    const std::string number = std::to_string(added_++);
    return "number " + std::string(10 - number.size(), '0') + number;
}

void LiveQueries::AddFile() {
    const File file = stage_.store.Add("/files/" + NewName());
    stage_.store.SetNumber(file, "kMDItemAltitude", Random(100));
    files_.push_back(file);
}

void LiveQueries::ChangeFile() {
    if (files_.empty() || (files_.size() < 2 * kUsualFiles && Random(4) == 0)) {
        AddFile();
        return;
    }
    const size_t index = Random(static_cast<uint32_t>(files_.size()));
    const File file = files_[index];
    switch (Random(4)) {
    case 0:
        stage_.store.Remove(file);
        files_.erase(files_.begin() + static_cast<ptrdiff_t>(index));
        break;
    case 1:
        stage_.store.Move(file, (Random(2) ? "/files/" : "/elsewhere/") + NewName());
        break;
    case 2:
        stage_.store.SetText(file, "kMDItemTitle", std::string(Random(40), 'x'));
        break;
    default:
        stage_.store.SetNumber(file, "kMDItemAltitude", Random(100));
    }
}

void LiveQueries::AddQuery() {
    static constexpr const char *kExpressions[] = {"kMDItemFSName == '*'", "kMDItemAltitude > 50",
                                                   "kMDItemTitle == 'x*' && kMDItemAltitude < 90", "nonsense =="};
    Object query = stage_.Host().Create("MDQueryQTX");
    query.CallWith("Constructor",
                   {kExpressions[Random(4)], stage_.Strings({"kMDItemTitle"}), stage_.Strings({"kMDItemAltitude"})});
    for (uint32_t handlers = Random(4); handlers > 0; handlers--)
        Attach(query);
    if (query.Get<int32_t>("Handle"))
        query.CallWith("Execute", {4});
    stage_.Host().TakeRaised();
    queries_.push_back(std::move(query));
}

void LiveQueries::DropQuery() {
    if (!queries_.empty())
        queries_.erase(queries_.begin() + static_cast<ptrdiff_t>(Random(static_cast<uint32_t>(queries_.size()))));
}

void LiveQueries::Attach(const Object &query) {
    query.OnEvent(kEvents[Random(3)], [this](const EventCall &call) { Handle(call); });
}

void LiveQueries::Handle(const EventCall &call) {
    events_++;
    for (const Value &list : call.arguments)
        if (!list.IsNil())
            for (const Object &item : list.As<Object>().As<Object>()) {
                item.GetValue("FSName");
                if (kept_.size() < kKept)
                    kept_.push_back(item);
            }
    switch (Random(8)) {
    case 0:
        call.object.RemoveEvent(call.name);
        break;
    case 1:
        // The query that is reporting may be among those that go; the call holds it until it returns.
        DropQuery();
        break;
    case 2:
        call.object.CallWith("Stop", {});
        break;
    case 3:
        call.object.CallWith("Results", {10});
        break;
    default:
        break;
    }
    stage_.Host().TakeRaised();
}

void LiveQueries::DoBeside() {
    switch (Random(12)) {
    case 0:
    case 1:
    case 2:
        if (queries_.size() < kQueries)
            AddQuery();
        break;
    case 3:
        DropQuery();
        break;
    case 4:
        kept_.clear();
        break;
    default:
        if (!queries_.empty()) {
            const Object query = queries_[Random(static_cast<uint32_t>(queries_.size()))];
            if (Random(2))
                Attach(query);
            else
                query.RemoveEvent(kEvents[Random(3)]);
            query.CallWith(Random(2) ? "DisableUpdates" : "EnableUpdates", {});
            stage_.Host().TakeRaised();
        }
    }
}

void LiveQueries::Live(uint32_t changes) {
    for (uint32_t done = 0; done < changes; done++) {
        ChangeFile();
        if (Random(8) == 0)
            DoBeside();
        if (Random(20) == 0)
            stage_.store.Run(Random(2000));
    }
}

Standing LiveQueries::Rest() {
    queries_.clear();
    kept_.clear();
    for (const File file : files_)
        stage_.store.Remove(file);
    files_.clear();
    stage_.store.Run(5000);
    stage_.Host().RethrowFromHandlers();
    stage_.Host().FreeUnused();
    ForgetTheDead();
    Standing standing;
    standing.systemObjects = sim::macos::ledger::LiveCount();
    for (const char *kind : kHostKinds)
        standing.hostObjects += static_cast<size_t>(stage_.Host().Alive(kind));
    standing.memory = mallinfo2().uordblks;
    return standing;
}

} // namespace tests::faults
