// A small library in the shape of a plugin: one entry point, which hands over a table of functions. It is built twice,
// as a Mach-O library and as one of this system, and does what makes a loader sweat.
#pragma once

struct LibraryFunctions {
    /// Counts its calls in static data.
    int (*count)();
    /// A word that static data points to through a pointer which the loader has to move.
    int (*pointed)();
    /// Calls `callBack` with each number from 1 to `last` and returns the sum of what it gave.
    int (*sum)(int (*callBack)(int), int last);
    /// Runs `throwing` and says what came out of it: "nothing", "out_of_range", "bad_cast", "exception" or "other".
    const char *(*caught)(void (*throwing)());
    /// Runs `throwing` with something to clean up in between; what is thrown goes on to the caller.
    void (*pass)(void (*throwing)());
    /// How many clean-ups `pass` has made.
    int (*cleanups)();
    /// Keeps a block of the heap that only static data knows about.
    void (*keepBlock)();
    /// Reads a variable of another library.
    int (*datum)();
    /// The address of a variable that not every system has, or null.
    const int *(*optionalDatum)();
    /// 64-bit division and remainder, which the compiler calls by names of its own.
    long long (*divide)(long long dividend, long long divisor);
    long long (*remainder)(long long dividend, long long divisor);
    /// operator new[] and back.
    int (*allocated)(int count);
    /// A block of memory is zero after this.
    void (*clear)(char *bytes, unsigned long count);
};
