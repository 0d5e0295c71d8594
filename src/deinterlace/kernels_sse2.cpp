// The SSE2 de-interlace table: the mean line and the weighted and
// median runs sixteen bytes a step.
#include "simd_lines.h"

namespace orv {
inline namespace ORV_ISA {

constexpr deinterlace::DeinterlaceKernels deinterlace_kernels =
    field_lines::vector_kernels();

} // namespace ORV_ISA
} // namespace orv
