#include "simulator/validate/child.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <poll.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace sim::validate {
namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
    std::array<int, 2> ends{};
    std::string text;

    Pipe() {
        if (pipe(ends.data()) != 0)
            throw std::system_error(errno, std::generic_category(), "no pipe");
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;
    ~Pipe() {
        CloseReader();
        CloseWriter();
    }

    void CloseReader() { Close(ends[0]); }
    void CloseWriter() { Close(ends[1]); }
    bool IsOpen() const { return ends[0] >= 0; }

    /// Reads what is there; closes at the end.
    void ReadSome() {
        std::array<char, 65536> bytes;
        const ssize_t count = read(ends[0], bytes.data(), bytes.size());
        if (count > 0)
            text.append(bytes.data(), static_cast<size_t>(count));
        else if (count == 0 || errno != EINTR)
            CloseReader();
    }

private:
    static void Close(int &end) {
        if (end >= 0)
            close(end);
        end = -1;
    }
};

void WriteAll(int end, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(end, text.data(), text.size());
        if (written < 0)
            return;
        text.remove_prefix(static_cast<size_t>(written));
    }
}

/// Never returns, and runs nothing that the parent meant to run at its own end.
[[noreturn]] void BeChild(const std::function<std::string()> &work, std::chrono::seconds patience, Pipe &result,
                          Pipe &messages) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const auto seconds = static_cast<rlim_t>(patience.count());
    const rlimit limit{seconds, seconds + 1};
    setrlimit(RLIMIT_CPU, &limit);
    dup2(messages.ends[1], STDOUT_FILENO);
    dup2(messages.ends[1], STDERR_FILENO);
    try {
        WriteAll(result.ends[1], work());
        _exit(0);
    } catch (const std::exception &error) {
        WriteAll(STDERR_FILENO, error.what());
    } catch (...) {
        WriteAll(STDERR_FILENO, "something that is no std::exception was thrown");
    }
    _exit(1);
}

/// Reads both pipes to their ends. False when that took too long.
bool ReadBoth(Pipe &result, Pipe &messages, Clock::time_point deadline) {
    while (result.IsOpen() || messages.IsOpen()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0)
            return false;
        std::array<pollfd, 2> watched{{{result.ends[0], POLLIN, 0}, {messages.ends[0], POLLIN, 0}}};
        if (poll(watched.data(), watched.size(), static_cast<int>(left)) < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "poll");
        if (watched[0].revents != 0)
            result.ReadSome();
        if (watched[1].revents != 0)
            messages.ReadSome();
    }
    return true;
}

int WaitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "waitpid");
    return status;
}

/// What the child said of its end: the first line with a word in it.
std::string FirstLine(const std::string &text) {
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        std::string line = text.substr(begin, end - begin);
        if (line.find_first_not_of(" =") != std::string::npos)
            return line;
        begin = end + 1;
    }
    return "";
}

} // namespace

Ended RunInChild(const std::function<std::string()> &work, std::chrono::seconds patience) {
    Pipe result;
    Pipe messages;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0)
        throw std::system_error(errno, std::generic_category(), "no process");
    if (child == 0)
        BeChild(work, patience, result, messages);
    result.CloseWriter();
    messages.CloseWriter();

    const bool inTime = ReadBoth(result, messages, Clock::now() + 20 * patience);
    if (!inTime)
        kill(child, SIGKILL);
    const int status = WaitFor(child);
    const std::string said = FirstLine(messages.text);
    if (!inTime)
        return {"", "not done after " + std::to_string(20 * patience.count()) + " seconds"};
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU)
        return {"", "not done after " + std::to_string(patience.count()) + " seconds of processor time"};
    if (WIFSIGNALED(status))
        return {"", "killed by signal " + std::to_string(WTERMSIG(status)) + " (" + strsignal(WTERMSIG(status)) + ")" +
                        (said.empty() ? "" : ": " + said)};
    if (WEXITSTATUS(status) != 0)
        return {"", said.empty() ? "ended with code " + std::to_string(WEXITSTATUS(status)) : said};
    return {result.text, ""};
}

} // namespace sim::validate
