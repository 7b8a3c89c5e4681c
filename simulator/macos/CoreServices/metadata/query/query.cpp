// How a query is made and set up, and what can be read of it. Its running is in query_run.cpp.
#include "simulator/macos/CoreServices/metadata/query/query.h"

#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/text.h"

#include <algorithm>

namespace sim::macos::query {

namespace {

/// Nobody can change what a query was made with: arrays are copied.
CFRef<CFArrayRef> CopyOf(CFArrayRef array) { return array ? MakeArray(ValuesOf(array)) : CFRef<CFArrayRef>(); }

/// Where in a list of names each name of an array stands; the list gets those that it lacks.
std::vector<std::size_t> PlacesOf(CFArrayRef array, std::vector<std::string> &names) {
    std::vector<std::size_t> places;
    if (!array)
        return places;
    for (const void *element : ValuesOf(array)) {
        std::string name = Utf8Of(static_cast<CFStringRef>(element));
        const auto found = std::find(names.begin(), names.end(), name);
        places.push_back(static_cast<std::size_t>(found - names.begin()));
        if (found == names.end())
            names.push_back(std::move(name));
    }
    return places;
}

/// All names of both arrays, each once, and where in them each array's names stand.
std::vector<std::string> NamesToRead(CFArrayRef valueNames, CFArrayRef sortNames, std::vector<std::size_t> &valueList,
                                     std::vector<std::size_t> &sortList) {
    std::vector<std::string> names;
    valueList = PlacesOf(valueNames, names);
    sortList = PlacesOf(sortNames, names);
    return names;
}

bool IsIn(const std::vector<std::size_t> &list, std::optional<std::size_t> name) {
    return name && std::find(list.begin(), list.end(), *name) != list.end();
}

} // namespace

MDQueryRef Query::Create(const Query *source, CFStringRef text, CFArrayRef valueNames, CFArrayRef sortNames) {
    auto parsed = expression::Expression::Parse(CharactersOf(text));
    if (!parsed)
        return nullptr;
    Expressions expressions = source ? source->expressions_ : Expressions();
    expressions.push_back(std::move(parsed));
    auto *query = new Query(std::move(expressions), text, valueNames, sortNames);
    if (source)
        query->scope_ = source->scope_.Copy();
    return query->Ref();
}

Query::Query(Expressions expressions, CFStringRef text, CFArrayRef valueNames, CFArrayRef sortNames)
    : expressions_(std::move(expressions)), text_(MakeString(CharactersOf(text))), valueNames_(CopyOf(valueNames)),
      sortNames_(CopyOf(sortNames)), results_(NamesToRead(valueNames, sortNames, valueList_, sortList_)) {
    SortOrder order;
    for (std::size_t name : sortList_)
        order.push_back({name});
    results_.SetOrder(std::move(order));
}

Query::~Query() { LeaveRunLoop(); }

CFTypeID Query::Type() {
    static const CFTypeID type = RegisterType("MDQuery");
    return type;
}

std::string Query::Description() const { return Quoted(CharactersOf(text_.Get())); }

void Query::SetScope(CFArrayRef entries) {
    if (state_ == State::kIdle)
        scope_ = CopyOf(entries);
}

void Query::SetMaxCount(CFIndex size) {
    if (state_ == State::kIdle)
        maxCount_ = size > 0 ? static_cast<std::size_t>(size) : 0;
}

std::optional<std::size_t> Query::ReadName(CFStringRef name) const {
    const auto &names = results_.Names();
    const auto found = std::find(names.begin(), names.end(), Utf8Of(name));
    if (found == names.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - names.begin());
}

const ValueList *Query::Values(CFStringRef name) {
    const auto place = ReadName(name);
    if (!IsIn(valueList_, place))
        return nullptr;
    const auto cached = values_.find(*place);
    if (cached != values_.end() && cached->second.generation == results_.Generation())
        return &cached->second.values;
    values_.erase(*place);
    const auto made = values_.emplace(*place, CachedValues{results_.Generation(), ValueList(results_, *place)});
    return &made.first->second.values;
}

std::uint32_t Query::SortFlags(CFStringRef name) const {
    const auto place = ReadName(name);
    const auto found = place ? sortFlags_.find(*place) : sortFlags_.end();
    return found == sortFlags_.end() ? 0 : found->second;
}

bool Query::SetSortFlags(CFStringRef name, std::uint32_t flags) {
    const auto place = ReadName(name);
    if (!IsIn(sortList_, place))
        return false;
    sortFlags_[*place] = flags;
    SortOrder order = laterOrder_ ? *laterOrder_ : results_.Order();
    for (SortKey &key : order) {
        if (key.name == *place)
            key.flags = flags;
    }
    Reorder(std::move(order));
    return true;
}

bool Query::SetSortOrder(CFArrayRef names) {
    SortOrder order;
    for (const void *name : ValuesOf(names)) {
        const auto place = ReadName(static_cast<CFStringRef>(name));
        if (!IsIn(sortList_, place))
            return false;
        order.push_back({*place, sortFlags_[*place]});
    }
    Reorder(std::move(order));
    return true;
}

void Query::Reorder(SortOrder order) {
    if (IsFrozen()) {
        laterOrder_ = std::move(order);
        return;
    }
    laterOrder_.reset();
    results_.SetOrder(std::move(order));
}

} // namespace sim::macos::query
