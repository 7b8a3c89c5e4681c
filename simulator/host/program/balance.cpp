#include "simulator/host/program/balance.h"

#include "simulator/host/ground/text.h"
#include "simulator/host/runtime/runtime.h"

#include <algorithm>

namespace sim::host {

namespace {

/// Why an Entity's own account may differ from the references that are known to be held.
std::string Finding(const Entity &entity, int32_t explained) {
    bool leaked = entity.references > explained;
    int32_t difference = leaked ? entity.references - explained : explained - entity.references;
    return entity.Describe() + (leaked ? " has " : " lacks ") + std::to_string(difference) +
           (difference == 1 ? " reference" : " references") +
           (leaked ? " that nobody gives up" : " that somebody holds") + "; made by " + entity.madeAt.Describe();
}

/// Those of which there are more or fewer references than are known to be held, the oldest first. This is asked often
/// and finds nothing nearly always, so it makes no lists before there is something to tell.
std::vector<const Entity *> Differing(const Heap &heap) {
    heap.VisitLiveUnordered([](Entity &entity) { entity.holdersFound = entity.programReferences; });
    heap.VisitLiveUnordered([](Entity &entity) { entity.VisitHeld([](Entity &inner) { ++inner.holdersFound; }); });
    std::vector<const Entity *> differing;
    heap.VisitLiveUnordered([&](const Entity &entity) {
        if (entity.references != entity.holdersFound)
            differing.push_back(&entity);
    });
    std::ranges::sort(differing, {}, &Entity::number);
    return differing;
}

} // namespace

std::vector<std::string> Audit(const Runtime &runtime) {
    std::map<std::string, int32_t> stillExpected;
    for (const auto &[kind, count] : runtime.expectedLeft)
        stillExpected[LowerCase(kind)] = count;
    std::vector<std::string> findings;
    for (const Entity *entity : Differing(runtime.heap)) {
        int32_t explained = entity->holdersFound;
        auto expected = stillExpected.find(LowerCase(entity->ClassName()));
        if (expected != stillExpected.end() && entity->references > explained) {
            const int32_t excused = std::min(expected->second, entity->references - explained);
            expected->second -= excused;
            explained += excused;
        }
        if (entity->references != explained)
            findings.push_back(Finding(*entity, explained));
    }
    for (const auto &[kind, count] : stillExpected)
        if (count > 0)
            findings.push_back(std::to_string(count) + " more leaked references of " + kind + " were expected");
    return findings;
}

int32_t CountAlive(const Runtime &runtime, std::string_view kind) {
    int32_t count = 0;
    runtime.heap.VisitLiveUnordered([&](Entity &entity) { count += EqualIgnoringCase(entity.ClassName(), kind); });
    return count;
}

} // namespace sim::host
