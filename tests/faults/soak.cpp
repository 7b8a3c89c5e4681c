// What ./dev soak starts: a million file changes under live queries, on hosts of every age, with memory and live
// objects held against those of the beginning; then every deed without every two services of the host. It ends when all
// is done or when the time is over, and says what there was time for.
#include "tests/faults/fault_matrix.h"
#include "tests/faults/live_queries.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>

using namespace tests::faults;

namespace {

constexpr uint32_t kChanges = 1'000'000;
constexpr uint32_t kSeed = 20140630;
constexpr int kPartsOfOneAge = 20;
/// Tables of the stand-ins keep the size that the busiest moment gave them, 4 KB at most. What is lost with one change
/// in three hundred is more.
constexpr size_t kMemoryThatMayDiffer = 8 * 1024;
constexpr double kHalfAnHour = 1800;

class Clock {
public:
    double Seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count(); }

private:
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

/// Says how far it is, every few seconds.
class Reporter {
public:
    explicit Reporter(const Clock &clock) : clock_(clock) {}

    void Tell(const char *what, double done) {
        if (clock_.Seconds() - last_ < 5)
            return;
        last_ = clock_.Seconds();
        std::fprintf(stderr, "soak: %s, %.0f of 100 done, %.0f s\n", what, 100 * done, last_);
    }

private:
    const Clock &clock_;
    double last_ = 0;
};

std::string AgeText(double version) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", version);
    return version > 0 ? text : "that does not tell";
}

struct Sums {
    uint64_t changes = 0;
    uint64_t events = 0;
    uint64_t cases = 0;
    uint64_t faults = 0;
    bool isWhole = true;

    void Complain(const std::string &what) {
        if (++faults <= 50)
            std::printf("fault: %s\n", what.c_str());
    }
};

/// Memory and live objects after the first tenth and at the end are the same. Where the time was over before, tables of
/// the stand-ins may still grow to their size.
void Compare(const Standing &first, const Standing &last, double version, bool isWhole, Sums &sums) {
    std::printf("host %-18s system objects %zu, then %zu; host objects %zu, then %zu; memory %zu KB, then %zu KB\n",
                AgeText(version).c_str(), first.systemObjects, last.systemObjects, first.hostObjects, last.hostObjects,
                first.memory / 1024, last.memory / 1024);
    if (first.systemObjects != last.systemObjects || first.hostObjects != last.hostObjects)
        sums.Complain("objects became more or fewer");
    if (isWhole && last.memory > first.memory + kMemoryThatMayDiffer)
        sums.Complain("memory became more");
}

constexpr uint32_t kPart = kChanges / std::size(kAges) / kPartsOfOneAge + 1;

Setting SettingFor(const char *plugin, double version) {
    Setting setting{plugin, version};
    setting.reusesAddresses = true;
    return setting;
}

/// What the whole process has of everything, the first one makes.
void WarmUp(const char *plugin) {
    LiveQueries queries(SettingFor(plugin, kAges[0]), kSeed);
    queries.Live(kPartsOfOneAge * kPart);
    queries.Rest();
}

void SoakAge(const char *plugin, double version, double until, const Clock &clock, Reporter &reporter, Sums &sums) {
    LiveQueries queries(SettingFor(plugin, version), kSeed);
    constexpr uint32_t kStep = 100;
    const std::string what = "live queries, host " + AgeText(version);
    Standing first, last;
    bool isWhole = true;
    for (int part = 0; part < kPartsOfOneAge; part++) {
        uint32_t done = 0;
        do {
            queries.Live(kStep);
            done += kStep;
        } while (done < kPart && clock.Seconds() < until);
        sums.changes += done;
        isWhole &= done >= kPart;
        last = queries.Rest();
        // Two parts of twenty are the first tenth.
        if (part == 1)
            first = last;
        reporter.Tell(what.c_str(), static_cast<double>(part + 1) / kPartsOfOneAge);
    }
    sums.events += queries.Events();
    for (const std::string &line : queries.OutOfBalance())
        sums.Complain(line);
    sums.isWhole &= isWhole;
    Compare(first, last, version, isWhole, sums);
}

void TryPairs(const char *plugin, double version, double until, const Clock &clock, Reporter &reporter, Sums &sums) {
    const FaultMatrix matrix(plugin, version);
    const Report report = matrix.WithoutEachPair([&](double done) {
        reporter.Tell(("two services missing, host " + AgeText(version)).c_str(), done);
        sums.isWhole &= clock.Seconds() < until || done == 1;
        return clock.Seconds() < until;
    });
    sums.cases += report.cases;
    for (const std::string &complaint : report.complaints)
        sums.Complain(complaint);
}

int Soak(const char *plugin, double seconds) {
    const Clock clock;
    Reporter reporter(clock);
    Sums sums;
    // Half of the time is for each; what the first leaves over, the second has.
    constexpr double kAgeCount = std::size(kAges);
    double begin = 0;
    WarmUp(plugin);
    for (const double version : kAges) {
        begin += seconds / 2 / kAgeCount;
        SoakAge(plugin, version, begin, clock, reporter, sums);
    }
    double left = kAgeCount;
    for (const double version : kAges) {
        const double until = clock.Seconds() + (seconds - clock.Seconds()) / left--;
        TryPairs(plugin, version, until, clock, reporter, sums);
    }
    std::printf("%llu file changes, %llu events, %llu cases of two missing services; %llu faults; %.0f s%s\n",
                static_cast<unsigned long long>(sums.changes), static_cast<unsigned long long>(sums.events),
                static_cast<unsigned long long>(sums.cases), static_cast<unsigned long long>(sums.faults),
                clock.Seconds(), sums.isWhole ? "" : "; the time was over before all was done");
    return sums.faults == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    double seconds = kHalfAnHour;
    const char *const end = argc == 3 ? argv[2] + std::strlen(argv[2]) : nullptr;
    int whole = 0;
    if (argc < 2 || argc > 3 || (end && std::from_chars(argv[2], end, whole).ptr != end)) {
        std::fprintf(stderr, "usage: soak PLUGIN [SECONDS]\n");
        return 2;
    }
    return Soak(argv[1], end ? whole : seconds);
}
