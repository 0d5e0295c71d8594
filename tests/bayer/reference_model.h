// A slow, site-by-site model of the demosaic routines, written from the
// rules each method follows rather than from the routines' code: for every
// output pixel it works out which source samples make each channel, then
// packs the channels as the destination format wants them. The tests run
// the library's routines and this model on the same images and compare
// every destination byte.
#ifndef ORVANE_TESTS_BAYER_REFERENCE_MODEL_H
#define ORVANE_TESTS_BAYER_REFERENCE_MODEL_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bayer_model {

enum class Source { BAY8, BAYn };
enum class Output { BGRX32, RGBX32, BGR24, RGB16, BGR16 };
enum class Method { dup, ave, med };
enum class Phase { A, B, C, D };

// Which routine: OVC_<source>_to_<output>_<method>_<phase>.
struct Kind {
    Source source;
    Output output;
    Method method;
    Phase phase;
};

struct Geometry {
    uint32_t width;
    uint32_t height;
    uint32_t source_stride;      // bytes
    uint32_t destination_stride; // bytes
    uint32_t depth;              // significant bits of a BAYn word; 8 for BAY8
};

uint32_t sample_size(Source source);
uint32_t bytes_per_pixel(Output output);

// Lines a routine writes for a source of `height` lines: dup writes line 0
// even for a height of 0, ave and med always write at least two lines.
uint32_t lines_written(Method method, uint32_t height);

// Bytes of a destination that holds every line the routine writes,
// including the padding of the last line of the image.
size_t destination_size(const Kind &kind, const Geometry &g);

// One channel before packing: a full-depth value (a sample, or a mean of
// samples) that the packer narrows by the depth shift, unless `unscaled`,
// where the routine packs the value without that shift. With `sum_of_two`
// the value is the sum of two samples whose halving the packer folds into
// its shifts (depth - 7 to a byte, depth - 4 to a five-bit blue field).
struct Channel {
    uint32_t value;
    bool unscaled = false;
    bool sum_of_two = false;
};

// Stores one pixel's channels the way `kind.output` lays them out (X
// bytes are left alone).
void pack(const Kind &kind, uint32_t depth, Channel red, Channel green,
          Channel blue, uint8_t *pixel);

struct Result {
    std::vector<uint8_t> destination; // every destination byte expected
    std::vector<bool> compared;       // false where the value is left open
    size_t source_extent;             // source bytes the routine may read
};

// The destination the routine must leave, starting from `destination`
// (of destination_size bytes), for the mosaic in `source`. `source` must
// extend at least three lines and two samples beyond the last line written.
Result demosaic(const Kind &kind, const Geometry &g,
                const std::vector<uint8_t> &source,
                std::vector<uint8_t> destination);

} // namespace bayer_model

#endif // ORVANE_TESTS_BAYER_REFERENCE_MODEL_H
