// Functions that the host language itself offers, such as LenB and VarType.
#pragma once

#include "host/services.h"

/// A function of the host language, described by its declaration and loaded on first use. Missing, it behaves as a
/// missing service does.
template <class Signature> class HostFunction;

template <class Result, class... Arguments> class HostFunction<Result(Arguments...)> {
public:
    using Function = Result (*)(Arguments...);

    constexpr explicit HostFunction(const char *declaration) : declaration_(declaration) {}

    explicit operator bool() { return Load() != nullptr; }

    Result operator()(Arguments... arguments) {
        const Function function = Load();
        return function ? function(arguments...) : Result();
    }

private:
    Function Load() {
        if (!cell_) [[unlikely]]
            cell_ = reinterpret_cast<Function>(REALLoadGlobalMethod(nullptr, declaration_));
        return cell_;
    }

    const char *declaration_;
    Function cell_ = nullptr;
};
