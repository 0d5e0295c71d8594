// The driver of a fuzz target built without libFuzzer: runs the target
// once on every file named on the command line, and on every file inside
// each directory named there, so any build replays the seed corpus.
#include "fuzz_support.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

int main(int argc, char **argv) {
    namespace fs = std::filesystem;
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        if (!fs::is_directory(argv[i])) inputs.emplace_back(argv[i]);
        else
            for (const auto &entry : fs::directory_iterator(argv[i]))
                if (entry.is_regular_file()) inputs.push_back(entry.path());
    }
    std::sort(inputs.begin(), inputs.end());
    for (const auto &path : inputs) {
        const orv_fuzz::Bytes data = orv_fuzz::read_file(path);
        LLVMFuzzerTestOneInput(data.data(), data.size());
    }
    std::printf("replayed %zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
