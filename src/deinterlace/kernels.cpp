// The plain de-interlace table, the reference for every SIMD table, and
// the choice of the table for the level in use.
#include "byte_lines.h"

#include "../common/simd_level.h"

namespace orv {
inline namespace ORV_ISA {

constexpr deinterlace::DeinterlaceKernels deinterlace_kernels =
    field_lines::kernels_with<
        field_lines::ByteRuns<field_lines::WeightedKernel>,
        field_lines::ByteRuns<field_lines::MedianOfSix>>(
        field_lines::line_twice, field_lines::average_lines);

} // namespace ORV_ISA

namespace deinterlace {

const DeinterlaceKernels &kernels_in_use() {
    static const DeinterlaceKernels *const by_level[kSimdLevels] =
        ORV_TABLES_BY_LEVEL(deinterlace_kernels);
    static const DeinterlaceKernels &chosen = table_for_level(by_level);
    return chosen;
}

} // namespace deinterlace
} // namespace orv
