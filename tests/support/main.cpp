// Runs the tests of one program against the library that --plugin names; the other arguments are doctest's.
#define DOCTEST_CONFIG_IMPLEMENT
#include <doctest/doctest.h>

#include "tests/support/test_session.h"

#include <cstdio>
#include <cstring>

namespace tests {

namespace {

std::filesystem::path &PathUnderTest() {
    static std::filesystem::path path;
    return path;
}

} // namespace

const std::filesystem::path &PluginPath() { return PathUnderTest(); }

} // namespace tests

int main(int argc, char **argv) {
    for (int i = 1; i + 1 < argc; i++)
        if (std::strcmp(argv[i], "--plugin") == 0)
            tests::PathUnderTest() = argv[i + 1];
    if (tests::PluginPath().empty()) {
        std::fputs("the library under test is missing: --plugin FILE\n", stderr);
        return 2;
    }
    doctest::Context context;
    context.applyCommandLine(argc, argv);
    return context.run();
}
