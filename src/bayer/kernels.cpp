// The plain demosaic table, which has no runs (every line is done by the
// plain walk), and the choice of the table for the level in use. There
// is no SSE2 table: SSE2 lacks the unsigned 16-bit minimum and maximum
// that the runs are built on, so that level uses the plain walk.
#include "kernels.h"

#include "../common/simd_level.h"

namespace orv {
namespace plain {

constexpr bayer::BayerKernels bayer_kernels{};

} // namespace plain

namespace bayer {

const BayerKernels &kernels_in_use() {
#if ORV_SIMD_TWINS
    static const BayerKernels *const by_level[kSimdLevels] = {
        &plain::bayer_kernels, nullptr, &avx2::bayer_kernels,
        &avx512::bayer_kernels};
#else
    static const BayerKernels *const by_level[kSimdLevels] =
        ORV_TABLES_BY_LEVEL(bayer_kernels);
#endif
    static const BayerKernels &chosen = table_for_level(by_level);
    return chosen;
}

} // namespace bayer
} // namespace orv
