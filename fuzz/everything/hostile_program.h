// A host program that means no good, made of the bytes of an input: it calls whatever the library declares, with
// whatever fits the declarations, on a host of which any service may fail; its handlers and its services in the middle
// of a call do the same again, and drop the objects that are calling.
#pragma once

#include "fuzz/input.h"
#include "simulator/host/declarations/declaration.h"
#include "simulator/host/declarations/records.h"
#include "tests/faults/stage.h"

#include <string>
#include <vector>

namespace fuzz {

/// References cannot do without those that count them. An array whose bound nobody tells counts as one of a single
/// element, and hostile ones have none.
bool MayFail(const std::string &service);

class HostileProgram {
public:
    HostileProgram(Input &input, tests::faults::Stage &stage);
    HostileProgram(const HostileProgram &) = delete;
    HostileProgram &operator=(const HostileProgram &) = delete;

    void Run();
    /// Drops everything, so that only what the library lost is left.
    void End();

private:
    void Step();
    void StepsInside();
    void Make();
    sim::host::Object Constructed(const sim::host::ClassRecord &record);
    void Drop();
    void CallMethod();
    void CallShared();
    void UseProperty();
    void Attach();
    void ChangeFile();
    void BreakService();
    void Interrupt();

    sim::host::Object ChooseObject();
    std::string ClassOf(const sim::host::Object &object) const;
    std::vector<sim::host::Value> ArgumentsFor(const sim::host::Declaration &declaration);
    sim::host::Value ArgumentOf(const sim::host::Type &type);
    sim::host::Object ArrayOf(const std::string &type);
    sim::host::Object ObjectOf(const std::string &className);
    const std::string &ChooseService();

    Input &input_;
    tests::faults::Stage &stage_;
    std::vector<sim::host::Object> objects_;
    std::vector<sim::macos::ScriptedStore::File> files_;
    std::vector<std::string> broken_;
    int stepsLeft_ = 60;
    int depth_ = 0;
};

} // namespace fuzz
