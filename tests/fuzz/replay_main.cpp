// The driver of a fuzz target built without libFuzzer: runs the target
// once on every file named on the command line, and on every file inside
// each directory named there, so any build replays the seed corpus.
#include "fuzz_support.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

int main(int argc, char **argv) {
    namespace fs = std::filesystem;
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const fs::path arg(argv[i]);
        if (fs::is_directory(arg)) {
            for (const auto &entry : fs::directory_iterator(arg))
                if (entry.is_regular_file()) inputs.push_back(entry.path());
        } else {
            inputs.push_back(arg);
        }
    }
    std::sort(inputs.begin(), inputs.end());
    for (const auto &path : inputs) {
        std::ifstream in(path, std::ios::binary);
        const std::vector<uint8_t> data{std::istreambuf_iterator<char>(in),
                                        std::istreambuf_iterator<char>()};
        LLVMFuzzerTestOneInput(data.data(), data.size());
    }
    std::printf("replayed %zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
