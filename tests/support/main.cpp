// Runs the tests of one program; --plugin names the library under test for those that ask for it, the other arguments
// are doctest's. Of a test that fails it says how to run it again, alone and in a debugger.
#define DOCTEST_CONFIG_IMPLEMENT
#include <doctest/doctest.h>

#include "tests/support/plugin_path.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

// Defined by the sanitizers when the program is built with them.
extern "C" [[gnu::weak]] void __sanitizer_set_death_callback(void (*callback)());

// Asked by AddressSanitizer. Freed memory is kept from use until that much was freed after it, instead of until the
// process has grown by a quarter of a gigabyte: five times what a test case frees (the 238 of tests/convert: 726 MB).
// Of where memory came from eight calls are kept, a sixth quicker than thirty, which the line that says how to run a
// failed case again asks for.
extern "C" const char *__asan_default_options() { return "quarantine_size_mb=16:malloc_context_size=8"; }

namespace tests {

namespace {

std::filesystem::path &PathUnderTest() {
    static std::filesystem::path path;
    return path;
}

std::string &Program() {
    static std::string program;
    return program;
}

const char *running = nullptr; // the title of the test case

void SayHowToRepeat() {
    if (!running)
        return;
    std::string title = running;
    // A comma would part two titles, an apostrophe would end the shell's quotes.
    std::ranges::replace_if(
        title, [](char character) { return character == ',' || character == '\'' || character == '\\'; }, '?');
    std::string command = Program();
    if (!PathUnderTest().empty())
        command += " --plugin " + PathUnderTest().string();
    command += " -tc='" + title + "'";
    const char *const options = __sanitizer_set_death_callback ? "ASAN_OPTIONS=malloc_context_size=30 " : "";
    std::fprintf(stdout, "again:     %s%s\nin gdb:    ASAN_OPTIONS=detect_leaks=0 gdb --args %s\n\n", options,
                 command.c_str(), command.c_str());
    std::fflush(stdout);
}

class Repeater : public doctest::IReporter {
public:
    explicit Repeater(const doctest::ContextOptions &) {}

    void test_case_start(const doctest::TestCaseData &test) override { running = test.m_name; }
    void test_case_end(const doctest::CurrentTestCaseStats &stats) override {
        if (!stats.testCaseSuccess)
            SayHowToRepeat();
        running = nullptr;
    }

    void report_query(const doctest::QueryData &) override {}
    void test_run_start() override {}
    void test_run_end(const doctest::TestRunStats &) override {}
    void test_case_reenter(const doctest::TestCaseData &) override {}
    void test_case_exception(const doctest::TestCaseException &) override {}
    void subcase_start(const doctest::SubcaseSignature &) override {}
    void subcase_end() override {}
    void log_assert(const doctest::AssertData &) override {}
    void log_message(const doctest::MessageData &) override {}
    void test_case_skipped(const doctest::TestCaseData &) override {}
};

DOCTEST_REGISTER_LISTENER("repeater", 1, Repeater);

} // namespace

const std::filesystem::path &PluginPath() {
    if (PathUnderTest().empty()) {
        std::fputs("the library under test is missing: --plugin FILE\n", stderr);
        std::_Exit(2);
    }
    return PathUnderTest();
}

} // namespace tests

int main(int argc, char **argv) {
    tests::Program() = argv[0];
    for (int i = 1; i + 1 < argc; i++)
        if (std::strcmp(argv[i], "--plugin") == 0)
            tests::PathUnderTest() = argv[i + 1];
    if (__sanitizer_set_death_callback)
        __sanitizer_set_death_callback(tests::SayHowToRepeat);
    doctest::Context context;
    context.applyCommandLine(argc, argv);
    return context.run();
}
