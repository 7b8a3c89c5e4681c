#include "tests/simulator/loader/library.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <typeinfo>

#if defined(__APPLE__)
#define WEAK_IMPORT __attribute__((weak_import))
#else
#define WEAK_IMPORT __attribute__((weak))
#endif

extern "C" {
extern int friendsDatum;
extern int friendsOptionalDatum WEAK_IMPORT;
int friendsFunction(int number);
}

namespace {

int calls;
int words[] = {7, 11, 13};
int *second = &words[1];
int cleanups;
void *kept;

struct CleanUp {
    ~CleanUp() { ++cleanups; }
};

int Count() { return ++calls; }
int Pointed() { return *second; }

int Sum(int (*callBack)(int), int last) {
    int sum = 0;
    for (int number = 1; number <= last; ++number)
        sum += callBack(number);
    return friendsFunction(sum);
}

const char *Caught(void (*throwing)()) {
    try {
        throwing();
        return "nothing";
    } catch (const std::out_of_range &) {
        return "out_of_range";
    } catch (const std::bad_cast &) {
        return "bad_cast";
    } catch (const std::exception &) {
        return "exception";
    } catch (...) {
        return "other";
    }
}

void Pass(void (*throwing)()) {
    const CleanUp cleanUp;
    throwing();
}

int Cleanups() { return cleanups; }
void KeepBlock() { kept = std::calloc(1, 100); }
int Datum() { return friendsDatum; }
const int *OptionalDatum() { return &friendsOptionalDatum; }
long long Divide(long long dividend, long long divisor) { return dividend / divisor; }
long long Remainder(long long dividend, long long divisor) { return dividend % divisor; }

int Allocated(int count) {
    volatile int *numbers = new int[static_cast<unsigned>(count)];
    int sum = 0;
    for (int i = 0; i < count; ++i)
        numbers[i] = i;
    for (int i = 0; i < count; ++i)
        sum += numbers[i];
    delete[] const_cast<int *>(numbers);
    return sum;
}

void Clear(char *bytes, unsigned long count) { std::memset(bytes, 0, count); }

const LibraryFunctions kFunctions = {Count, Pointed,       Sum,    Caught,    Pass,      Cleanups, KeepBlock,
                                     Datum, OptionalDatum, Divide, Remainder, Allocated, Clear};

} // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(void (*(*resolver)(const char *))()) {
    reinterpret_cast<void (*)(const LibraryFunctions *)>(resolver("TakeFunctions"))(&kFunctions);
}
