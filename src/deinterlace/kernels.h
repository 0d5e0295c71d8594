// The table of line pairs (a field line's copy and the filled line after
// it) that have vector twins: LineDup's, LineAve's and the Y8, 24-bit,
// 32-bit and YUV 4:2:2 pairs of Bilinear and Median.
//
// The plain table (kernels.cpp) is the reference. Each SIMD file builds
// the same table with the copies, the mean line and the runs of
// neighbourhood values done a vector at a time; every entry writes exactly
// the bytes of the plain entry, reads nothing more and returns the same
// step. The table for the level in use is chosen once, on first use.
#ifndef ORVANE_DEINTERLACE_KERNELS_H
#define ORVANE_DEINTERLACE_KERNELS_H

#include "frame_assembly.h"

#include "../common/isa.h"

namespace orv {
namespace deinterlace {

struct DeinterlaceKernels {
    LinePair line_twice, average;
    LinePair bilinear_grey, bilinear_triple, bilinear_quad, bilinear_yuv;
    LinePair median_grey, median_triple, median_quad, median_yuv;
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
