// A per-program scratch directory for the files the tests write, and
// small helpers to read them back.
#ifndef ORVANE_TESTS_FILEIO_SCRATCH_H
#define ORVANE_TESTS_FILEIO_SCRATCH_H

#include <sys/stat.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace orv_test {

inline std::string scratch_path(const std::string &name) {
    ::mkdir(ORV_SCRATCH_DIR, 0777); // its parent is made by the build
    const std::string path = std::string(ORV_SCRATCH_DIR) + "/" + name;
    std::remove(path.c_str());
    return path;
}

inline bool file_exists(const std::string &path) {
    struct stat st;
    return ::stat(path.c_str(), &st) == 0;
}

inline std::vector<uint8_t> read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in),
            std::istreambuf_iterator<char>()};
}

} // namespace orv_test

#endif // ORVANE_TESTS_FILEIO_SCRATCH_H
