// Level 2: what arrives at hosts of every age.
#include "simulator/validate/checks.h"

#include "simulator/host/declarations/declaration.h"
#include "simulator/session/session.h"
#include "simulator/validate/child.h"
#include "simulator/validate/host_ages.h"
#include "simulator/validate/import_lists.h"
#include "simulator/validate/library_file.h"

namespace sim::validate {
namespace {

using host::Arrivals;

std::string ArrivalsText(const Arrivals &arrived) {
    std::string text;
    for (const int32_t version : arrived.pluginVersions)
        text += "plugin version " + std::to_string(version) + "\n";
    for (const auto &record : arrived.classes)
        text += host::Dump(record);
    for (const auto &record : arrived.modules)
        text += host::Dump(record);
    for (const auto &record : arrived.globalMethods)
        text += host::Dump(record);
    return text;
}

/// Every function that a registered record names, with what it is for.
std::vector<std::pair<host::Word, std::string>> Functions(const Arrivals &arrived) {
    std::vector<std::pair<host::Word, std::string>> found;
    const auto add = [&](host::Word function, const std::string &name) {
        if (function != 0 && function != 0xFFFFFFFF)
            found.emplace_back(function, name);
    };
    const auto addMethods = [&](const std::vector<host::MethodRecord> &methods) {
        for (const host::MethodRecord &method : methods) {
            add(method.function, method.declaration);
            add(method.setterFunction, method.declaration);
        }
    };
    for (const host::ClassRecord &record : arrived.classes) {
        add(record.constructor, record.name + "'s constructor");
        add(record.destructor, record.name + "'s destructor");
        addMethods(record.methods);
        addMethods(record.sharedMethods);
        for (const host::PropertyRecord &property : record.properties) {
            add(property.getter, record.name + "." + property.name);
            add(property.setter, record.name + "." + property.name);
        }
    }
    for (const host::ModuleRecord &record : arrived.modules)
        addMethods(record.methods);
    addMethods(arrived.globalMethods);
    return found;
}

void LookAtDeclarations(const Subject &subject, Findings &findings) {
    const LibraryFile file = LibraryFile::Read(subject.library);
    Session session({.plugin = subject.library});
    const Arrivals &arrived = session.Host().Arrived();
    const auto entryPoint = reinterpret_cast<uintptr_t>(session.Plugin().EntryPoint());
    const uint32_t slide = static_cast<uint32_t>(entryPoint) - file.image.FindExport("_REALPluginMain")->address;
    for (const auto &[function, name] : Functions(arrived))
        findings.Expect(file.IsFunction(function - slide), "no function begins where " + name + " points");
    for (const host::ClassRecord &record : arrived.classes) {
        for (const auto *methods : {&record.methods, &record.sharedMethods})
            for (const host::MethodRecord &method : *methods)
                findings.Expect(method.function != 0, method.declaration + " has no function");
        for (const host::EventRecord &event : record.events)
            findings.Expect(!host::ParseDeclaration(event.declaration).name.empty(), "an event without a name");
        for (const host::ConstantRecord &constant : record.constants)
            findings.Expect(!host::ParseConstant(constant.declaration).name.empty(), "a constant without a name");
    }
}

void LookAtOldestSystem(const Subject &subject, Findings &findings) {
    SessionOptions options{.plugin = subject.library};
    for (const auto &[symbol, home] : ImportLists::Read(subject.imports).homes)
        if (home.isWeak)
            options.absentSymbols.insert(symbol.substr(1));
    const size_t absent = options.absentSymbols.size();
    Session session(std::move(options));
    findings.Expect(!session.Host().Arrived().classes.empty(),
                    "nothing is registered on a system without " + std::to_string(absent) + " symbols");
    for (const std::string &line : session.Balance())
        findings.Expect(false, "out of balance: " + line);
}

Findings CompareArrivals(const Subject &subject, const HostAge &age) {
    const auto text = [&](const std::filesystem::path &library) {
        return RunInChild(
            [&] {
                SessionOptions options{.plugin = library};
                options.host = age.Options();
                Session session(std::move(options));
                return ArrivalsText(session.Host().Arrived());
            },
            subject.patience);
    };
    Findings findings;
    const Ended expected = text(subject.native), found = text(subject.library);
    if (!expected.fault.empty() || !found.fault.empty()) {
        findings.broken = expected.fault.empty() ? found.fault : "the native build: " + expected.fault;
        return findings;
    }
    // Line by line, so that a fault names its record.
    for (size_t at = 0, end = 0, other = 0, otherEnd = 0; at < found.output.size();
         at = end + 1, other = otherEnd + 1) {
        end = std::min(found.output.find('\n', at), found.output.size());
        otherEnd = other < expected.output.size() ? expected.output.find('\n', other) : other;
        const std::string line = found.output.substr(at, end - at);
        const std::string should =
            other < expected.output.size() ? expected.output.substr(other, otherEnd - other) : "(nothing)";
        std::string fault = "it registers \"";
        fault.append(line).append("\", and the native build \"").append(should).append("\"");
        findings.Expect(line == should, fault);
    }
    findings.Expect(found.output.size() == expected.output.size(), "it registers less or more than the native build");
    return findings;
}

} // namespace

std::vector<Check> RegistrationChecks() {
    std::vector<Check> checks{Look("the declared functions", 2, LookAtDeclarations),
                              Look("the start on the oldest system", 2, LookAtOldestSystem)};
    for (const HostAge &age : kHostAges)
        checks.push_back({std::string("what is registered with ") + age.title, 2,
                          [age](const Subject &subject) { return CompareArrivals(subject, age); }});
    return checks;
}

} // namespace sim::validate
