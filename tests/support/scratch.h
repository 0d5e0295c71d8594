// A per-program scratch directory for the files the tests write: the
// program is compiled with ORV_SCRATCH_DIR naming it.
#ifndef ORVANE_TEST_SCRATCH_H
#define ORVANE_TEST_SCRATCH_H

#include <sys/stat.h>

#include <cstdio>
#include <string>

namespace orv_test {

// A path in the scratch directory, no file there yet.
inline std::string scratch_path(const std::string &name) {
    ::mkdir(ORV_SCRATCH_DIR, 0777); // its parent is made by the build
    const std::string path = std::string(ORV_SCRATCH_DIR) + "/" + name;
    std::remove(path.c_str());
    return path;
}

} // namespace orv_test

#endif // ORVANE_TEST_SCRATCH_H
