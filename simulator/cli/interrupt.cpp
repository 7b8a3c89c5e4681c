#include "simulator/cli/interrupt.h"

#include <csignal>

namespace sim::cli {
namespace {

volatile std::sig_atomic_t interrupted = 0;

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

void Handle(int signal) {
    interrupted = signal;
    std::signal(signal, SIG_DFL);
}

void ForEachSignal(void (*handler)(int)) {
    for (const int signal : kSignals) {
        struct sigaction action {};
        action.sa_handler = handler;
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

InterruptWatch::InterruptWatch() {
    interrupted = 0;
    ForEachSignal(Handle);
}

InterruptWatch::~InterruptWatch() { ForEachSignal(SIG_DFL); }

int InterruptWatch::Signal() const { return interrupted; }

} // namespace sim::cli
