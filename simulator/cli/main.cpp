// A live Spotlight query on this machine's files, run by the plugin itself. See --help.
#include "simulator/cli/program.h"

int main(int count, char **words) {
    return sim::cli::Run({words + (count > 0), static_cast<size_t>(count > 0 ? count - 1 : 0)});
}
