#include "simulator/host/program/balance.h"

#include "simulator/host/ground/text.h"
#include "simulator/host/runtime/runtime.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace sim::host {

namespace {

/// Why an Entity's own account may differ from the references that are known to be held.
std::string Finding(const Entity &entity, int32_t difference) {
    const bool leaked = difference > 0;
    const int32_t count = std::abs(difference);
    return entity.Describe() + (leaked ? " has " : " lacks ") + std::to_string(count) +
           (count == 1 ? " reference" : " references") + (leaked ? " that nobody gives up" : " that somebody holds") +
           "; made by " + entity.madeAt.Describe();
}

/// Those of which there are more or fewer references than are known to be held, the oldest first. This is asked often
/// and finds nothing nearly always, so it makes no lists before there is something to tell.
std::vector<Entity *> Differing(const Heap &heap) {
    heap.VisitAllThatLive([](Entity &entity) { entity.holdersFound = entity.programReferences; });
    heap.VisitAllThatLive([](Entity &entity) { entity.VisitHeld([](Entity &inner) { ++inner.holdersFound; }); });
    std::vector<Entity *> differing;
    heap.VisitAllThatLive([&](Entity &entity) {
        if (entity.references != entity.holdersFound)
            differing.push_back(&entity);
    });
    return differing;
}

/// Tells of each that `isTold` wants to hear of, with how many references it has too many or, negative, too few.
template <class IsTold> std::vector<std::string> Findings(const Runtime &runtime, const IsTold &isTold) {
    std::map<std::string, int32_t> stillExpected;
    for (const auto &[kind, count] : runtime.expectedLeft)
        stillExpected[LowerCase(kind)] = count;
    std::vector<std::string> findings;
    for (Entity *entity : Differing(runtime.heap)) {
        int32_t difference = entity->references - entity->holdersFound;
        const auto expected =
            stillExpected.empty() ? stillExpected.end() : stillExpected.find(LowerCase(entity->ClassName()));
        if (expected != stillExpected.end() && difference > 0) {
            const int32_t excused = std::min(expected->second, difference);
            expected->second -= excused;
            difference -= excused;
        }
        if (difference != 0 && isTold(*entity, difference))
            findings.push_back(Finding(*entity, difference));
    }
    for (const auto &[kind, count] : stillExpected)
        if (count > 0)
            findings.push_back(std::to_string(count) + " more leaked references of " + kind + " were expected");
    return findings;
}

} // namespace

std::vector<std::string> Audit(const Runtime &runtime) {
    return Findings(runtime, [](const Entity &, int32_t) { return true; });
}

std::vector<std::string> AuditAnew(const Runtime &runtime) {
    return Findings(runtime, [](Entity &entity, int32_t difference) {
        return std::exchange(entity.differenceTold, difference) != difference;
    });
}

int32_t CountAlive(const Runtime &runtime, std::string_view kind) {
    int32_t count = 0;
    runtime.heap.VisitAllThatLive([&](Entity &entity) { count += EqualIgnoringCase(entity.ClassName(), kind); });
    return count;
}

} // namespace sim::host
