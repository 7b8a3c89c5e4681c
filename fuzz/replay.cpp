// Stands in for the fuzzing engine: runs the target once for each file of the folders that the command line names. Each
// folder must hold one at least; an empty corpus proves nothing.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size);

int main(int argc, char **argv) {
    int count = 0;
    bool isAnyEmpty = argc < 2;
    for (int i = 1; i < argc; i++) {
        const int before = count;
        for (const auto &entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
            // Exactly as long as the input, so that a read beyond it is caught.
            const std::vector<uint8_t> input(bytes.begin(), bytes.end());
            std::fprintf(stderr, "%s\n", entry.path().c_str());
            LLVMFuzzerTestOneInput(input.data(), input.size());
            count++;
        }
        isAnyEmpty |= count == before;
    }
    std::printf("%d inputs\n", count);
    return isAnyEmpty ? 1 : 0;
}
