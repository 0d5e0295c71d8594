// The SIMD level the kernels run at: the best the CPU and the operating
// system support, capped by the environment variable ORVANE_SIMD (none,
// sse2, avx2, avx512). Worked out once, on first use, and fixed for the
// life of the process.
#ifndef ORVANE_COMMON_SIMD_LEVEL_H
#define ORVANE_COMMON_SIMD_LEVEL_H

#include <cstdint>

namespace orv {

enum class SimdLevel : uint8_t { none, sse2, avx2, avx512 };
constexpr unsigned kSimdLevels = 4;

// The level in use. Thread-safe; the first call reads the CPU and the cap.
SimdLevel simd_level();

// "none", "sse2", "avx2" or "avx512".
const char *simd_level_name(SimdLevel level);

// The initialiser of a family's by_level array: the tables named NAME in
// orv::plain, orv::sse2, orv::avx2 and orv::avx512, the SIMD ones only
// where this build has them.
#if ORV_SIMD_TWINS
#define ORV_TABLES_BY_LEVEL(NAME)                                            \
    {&::orv::plain::NAME, &::orv::sse2::NAME, &::orv::avx2::NAME,           \
     &::orv::avx512::NAME}
#else
#define ORV_TABLES_BY_LEVEL(NAME) {&::orv::plain::NAME, nullptr, nullptr, nullptr}
#endif

// A family's kernel table for the level in use: the one of the highest
// level at or below it that this build has (null entries are levels left
// out of the build). by_level[0], the plain table, is always there.
template <class Table>
const Table &table_for_level(const Table *const (&by_level)[kSimdLevels]) {
    for (unsigned level = static_cast<unsigned>(simd_level()); level > 0;
         --level)
        if (by_level[level] != nullptr) return *by_level[level];
    return *by_level[0];
}

} // namespace orv

#endif // ORVANE_COMMON_SIMD_LEVEL_H
