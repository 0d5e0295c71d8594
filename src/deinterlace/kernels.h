// The table of filled lines that have vector twins: LineAve's mean line
// and Bilinear's Y8, 24-bit and 32-bit lines.
//
// The plain table (kernels.cpp) is the reference. Each SIMD file builds
// the same table with the weighted kernel's runs and the mean line done a
// vector at a time; every entry writes exactly the bytes of the plain
// entry, reads nothing more and returns the same step. The table for the
// level in use is chosen once, on first use. Median's lines and the
// YUV 4:2:2 lines are plain at every level and are not in the table.
#ifndef ORVANE_DEINTERLACE_KERNELS_H
#define ORVANE_DEINTERLACE_KERNELS_H

#include "frame.h"

#include "../common/isa.h"

namespace orv {
namespace deinterlace {

struct DeinterlaceKernels {
    FillLine average;
    FillLine bilinear_grey, bilinear_triple, bilinear_quad;
};

// The table for the level in use.
const DeinterlaceKernels &kernels_in_use();

} // namespace deinterlace

namespace plain { extern const deinterlace::DeinterlaceKernels deinterlace_kernels; }
namespace sse2 { extern const deinterlace::DeinterlaceKernels deinterlace_kernels; }
namespace avx2 { extern const deinterlace::DeinterlaceKernels deinterlace_kernels; }
namespace avx512 { extern const deinterlace::DeinterlaceKernels deinterlace_kernels; }

} // namespace orv

#endif // ORVANE_DEINTERLACE_KERNELS_H
