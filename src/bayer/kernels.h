// The table of demosaic line runs: for each method, sample class, packer
// and line kind, the function that produces the inner stretch of a line a
// vector at a time.
//
// A run starts at column 1, the first column of the pair loop, and covers
// an even number of columns; the plain line takes over from the pair
// after it, so column 0, the last pair or two and the lone last column of
// an even width always stay on the plain path. A run writes exactly the
// bytes the plain pairs would, and reads no sample they do not read.
// The plain table's runs cover nothing; the table for the level in use is
// chosen once, on first use.
#ifndef ORVANE_BAYER_KERNELS_H
#define ORVANE_BAYER_KERNELS_H

#include "../common/isa.h"

#include <cstdint>

namespace orv {
namespace bayer {

// The three source lines a run reads: for ave and med the lines above and
// below the current one, for dup only `partner`, the other line of the
// two-by-two block. `to8` and `to5` narrow a full-depth value to the 8-bit
// channel and to RGB16's five-bit low field.
struct RunLines {
    const uint8_t *line;
    const uint8_t *above; // dup: the block's partner line
    const uint8_t *below; // dup: unused
    uint32_t width;
    uint32_t to8, to5;
};

// Produces pixels 1 to n of a line at `d` (pixel 0's address) and
// returns n: zero, or an even count that leaves the plain pair loop
// whole pairs to finish.
using LineRun = uint32_t (*)(const RunLines &lines, uint8_t *d);

// Indices of the table, as the plain templates name them.
constexpr unsigned kMethods = 3;     // dup, ave, med
constexpr unsigned kSampleClasses = 2; // bytes, 16-bit words
constexpr unsigned kPackers = 5;     // BGRX32, RGBX32, BGR24, RGB16, BGR16
constexpr unsigned kLineKinds = 4;   // (red or blue) x (green first or not)

enum class Method : unsigned { dup, ave, med };

struct BayerKernels {
    LineRun run[kMethods][kSampleClasses][kPackers][kLineKinds];
};

// The table for the level in use.
const BayerKernels &kernels_in_use();

} // namespace bayer

namespace plain { extern const bayer::BayerKernels bayer_kernels; }
namespace avx2 { extern const bayer::BayerKernels bayer_kernels; }
namespace avx512 { extern const bayer::BayerKernels bayer_kernels; }

} // namespace orv

#endif // ORVANE_BAYER_KERNELS_H
