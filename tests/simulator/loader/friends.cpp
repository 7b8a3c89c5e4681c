// The other library that library.cpp uses, for the build of this system.
extern "C" {
int friendsDatum = 42;
int friendsOptionalDatum = 43;
int friendsFunction(int number) { return number + 1000; }
}
