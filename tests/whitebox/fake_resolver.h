// A resolver that offers what a test tells it to and counts every question.
#pragma once

#include "host/capabilities.h"

#include <map>
#include <string>

namespace whitebox {

class FakeResolver {
public:
    /// From now on the product's services are looked up here.
    FakeResolver() {
        current_ = this;
        gResolver = Resolve;
    }
    ~FakeResolver() {
        gResolver = nullptr;
        current_ = nullptr;
    }
    FakeResolver(const FakeResolver &) = delete;
    FakeResolver &operator=(const FakeResolver &) = delete;

    template <class Function> void Offer(const std::string &name, Function *function) {
        offered_[name] = reinterpret_cast<HostCode>(function);
    }

    /// How often a name was asked for.
    int Questions(const std::string &name) const {
        const auto found = questions_.find(name);
        return found == questions_.end() ? 0 : found->second;
    }
    int Questions() const {
        int sum = 0;
        for (const auto &[name, count] : questions_)
            sum += count;
        return sum;
    }

private:
    static HostCode Resolve(const char *name) {
        current_->questions_[name]++;
        const auto found = current_->offered_.find(name);
        return found == current_->offered_.end() ? nullptr : found->second;
    }

    static inline FakeResolver *current_ = nullptr;
    std::map<std::string, HostCode> offered_;
    std::map<std::string, int> questions_;
};

} // namespace whitebox
