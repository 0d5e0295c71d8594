// The SIMD levels whose kernels a twin test compares with the plain ones:
// every level this build has, up to the level in use (so ORVANE_SIMD
// narrows the comparison as it narrows the library).
#ifndef ORVANE_TEST_KERNEL_LEVELS_H
#define ORVANE_TEST_KERNEL_LEVELS_H

#include "common/simd_level.h"

#include <vector>

namespace orv_test {

template <class Table> struct LevelTable {
    const char *level;
    const Table *table;
};

// by_level[0] is the plain table; null entries are left out of the build.
template <class Table>
std::vector<LevelTable<Table>>
twin_tables(const Table *const (&by_level)[orv::kSimdLevels]) {
    std::vector<LevelTable<Table>> twins;
    const unsigned in_use = static_cast<unsigned>(orv::simd_level());
    for (unsigned level = 1; level <= in_use; ++level)
        if (by_level[level] != nullptr)
            twins.push_back({orv::simd_level_name(orv::SimdLevel(level)),
                             by_level[level]});
    return twins;
}

} // namespace orv_test

#endif // ORVANE_TEST_KERNEL_LEVELS_H
