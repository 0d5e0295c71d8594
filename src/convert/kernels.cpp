// The plain conversion table, the reference for every SIMD table, and the
// choice of the table for the level in use.
#include "kernel_table.h"

#include "../common/simd_level.h"

namespace orv {

const ConvertKernels &convert_kernels_in_use() {
#if ORV_SIMD_TWINS
    static const ConvertKernels *const by_level[kSimdLevels] = {
        &plain::convert_kernels, &sse2::convert_kernels,
        &avx2::convert_kernels, &avx512::convert_kernels};
#else
    static const ConvertKernels *const by_level[kSimdLevels] = {
        &plain::convert_kernels, nullptr, nullptr, nullptr};
#endif
    static const ConvertKernels &chosen = table_for_level(by_level);
    return chosen;
}

} // namespace orv
