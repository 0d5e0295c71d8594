// The AVX2 demosaic table: every method's inner line stretch
// sixteen pixels a step.
#include "simd_runs.h"

namespace orv {
inline namespace ORV_ISA {

constexpr bayer::BayerKernels bayer_kernels = bayer_runs::vector_kernels();

} // namespace ORV_ISA
} // namespace orv
