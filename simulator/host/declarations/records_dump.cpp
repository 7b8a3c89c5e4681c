#include "simulator/host/declarations/records.h"

#include <cstdio>

namespace sim::host {

namespace {

const char *Presence(Word word) { return word ? "present" : "none"; }

std::string Accessor(Word word) { return word == 0xFFFFFFFF ? "standard" : word ? "function" : "none"; }

std::string Quoted(const std::string &text) { return "\"" + text + "\""; }

/// The words that no named field stands for, so that a stray one shows.
std::string OtherWords(const RawRecord &record, size_t from) {
    std::string text;
    for (size_t index = from; index < record.words.size(); ++index) {
        char word[16];
        std::snprintf(word, sizeof word, " %x", record.words[index]);
        text += word;
    }
    return text.empty() ? text : " other" + text;
}

std::string Line(const PropertyRecord &record) {
    return "  property " + Quoted(record.name) + " as " + Quoted(record.type) + " group " + Quoted(record.group) +
           " flags " + std::to_string(record.flags) + " getter " + Accessor(record.getter) + " setter " +
           Accessor(record.setter) + " param " + std::to_string(record.param) + OtherWords(record, 7) + "\n";
}

std::string Line(const char *kind, const MethodRecord &record) {
    return std::string("  ") + kind + " " + Quoted(record.declaration) + " flags " + std::to_string(record.flags) +
           " function " + Presence(record.function) + " setter " + Presence(record.setterFunction) +
           OtherWords(record, 4) + "\n";
}

std::string Line(const EventRecord &record) {
    return "  event " + Quoted(record.declaration) + " link word " + Presence(record.linkWord) + OtherWords(record, 2) +
           "\n";
}

std::string Line(const ConstantRecord &record) {
    return "  constant " + Quoted(record.declaration) + OtherWords(record, 1) + "\n";
}

std::string Field(const char *name, const std::string &text) { return std::string("  ") + name + " " + text + "\n"; }

} // namespace

std::string Dump(const ClassRecord &record) {
    std::string text = "class " + Quoted(record.name) + " version " + std::to_string(record.version) + " words " +
                       std::to_string(record.words.size()) + "\n";
    text += Field("superclass", Quoted(record.superName));
    text += Field("data size", std::to_string(record.dataSize));
    text += Field("constructor", Presence(record.constructor));
    text += Field("destructor", Presence(record.destructor));
    text += Field("flags", std::to_string(record.flags));
    text += Field("event instances",
                  std::string(Presence(record.words[13])) + " count " + std::to_string(record.words[14]));
    text += Field("interfaces", Presence(record.words[15]));
    text += Field("bind descriptions",
                  std::string(Presence(record.words[16])) + " count " + std::to_string(record.words[17]));
    for (const PropertyRecord &property : record.properties)
        text += Line(property);
    for (const MethodRecord &method : record.methods)
        text += Line("method", method);
    for (const EventRecord &event : record.events)
        text += Line(event);
    for (const ConstantRecord &constant : record.constants)
        text += Line(constant);
    for (const PropertyRecord &property : record.sharedProperties)
        text += "  shared" + Line(property).substr(1);
    for (const MethodRecord &method : record.sharedMethods)
        text += Line("shared method", method);
    if (record.words.size() > 25)
        text += Field("rest", OtherWords(record, 25).substr(1));
    return text;
}

std::string Dump(const ModuleRecord &record) {
    std::string text = "module " + Quoted(record.name) + " version " + std::to_string(record.version) + "\n";
    for (const MethodRecord &method : record.methods)
        text += Line("method", method);
    return text + Field("rest", OtherWords(record, 4).substr(1));
}

std::string Dump(const MethodRecord &record) { return "global" + Line("method", record).substr(1); }

} // namespace sim::host
