// The plain conversion table, the reference for every SIMD table, and the
// choice of the table for the level in use.
#include "kernel_table.h"

#include "../common/simd_level.h"

namespace orv {

const ConvertKernels &convert_kernels_in_use() {
    static const ConvertKernels *const by_level[kSimdLevels] =
        ORV_TABLES_BY_LEVEL(convert_kernels);
    static const ConvertKernels &chosen = table_for_level(by_level);
    return chosen;
}

} // namespace orv
