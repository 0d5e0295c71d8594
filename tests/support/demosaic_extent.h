// What a demosaic routine reads and writes, as the header states it: the
// fuzz targets and the twin tests size their buffers by it, so that any
// access beyond is caught.
#ifndef ORVANE_TEST_DEMOSAIC_EXTENT_H
#define ORVANE_TEST_DEMOSAIC_EXTENT_H

#include <orvaneimage.h>

#include <cstddef>
#include <cstdint>

namespace orv_test {

// The extent of `lines` lines `pitch` bytes apart, the last one
// `last_line` bytes long; 0 for no line.
inline size_t lines_extent(uint32_t lines, size_t pitch, size_t last_line) {
    return lines == 0 ? 0 : (lines - 1) * pitch + last_line;
}

// Bytes of an output pixel of a demosaic routine, by the low byte of the
// destination format: BGR24 3, BGRX32 and RGBX32 4, RGB16 and BGR16 2.
inline uint32_t demosaic_pixel_bytes(uint32_t output) {
    switch (output) {
    case ORV_FORMAT_BGR24 & 0xFFu: return 3;
    case ORV_FORMAT_BGRX32 & 0xFFu: case ORV_FORMAT_RGBX32 & 0xFFu: return 4;
    default: return 2;
    }
}

// What a demosaic routine touches, for a source of W x H samples of
// `sample_bytes` each and a destination of `pixel_bytes` a pixel, both
// buffers' strides at least a line long (and even for 16-bit samples):
// line 0 reads line 1, so at least two source lines are read; dup writes
// at least one line, ave and med at least two; with an odd width ave and
// med read the sample after each line, and the RGB16 med_C routines read
// one more sample of the line below (two past it with an odd width once
// there are inner lines, one with an even width when line 1 is the last).
struct DemosaicExtent {
    size_t source, destination;
};
enum class DemosaicMethod { dup, ave, med };
inline DemosaicMethod method_of(uint32_t method) {
    return method == ORV_BAYER_METHOD_DUP   ? DemosaicMethod::dup
           : method == ORV_BAYER_METHOD_AVE ? DemosaicMethod::ave
                                            : DemosaicMethod::med;
}

inline DemosaicExtent demosaic_extent(DemosaicMethod method, bool rgb16_phase_c,
                               uint32_t width, uint32_t height,
                               uint32_t sample_bytes, uint32_t source_stride,
                               uint32_t pixel_bytes,
                               uint32_t destination_stride) {
    const bool dup = method == DemosaicMethod::dup;
    const uint32_t read = height > 2 ? height : 2;
    const uint32_t written = height > 1 ? height : dup ? 1 : 2;
    const bool odd = width & 1u;
    uint32_t past = !dup && odd ? 1 : 0;
    if (method == DemosaicMethod::med && rgb16_phase_c)
        past = odd ? (read > 2 ? 2 : 1) : (read == 2 ? 1 : 0);
    return {lines_extent(read, source_stride,
                         size_t(width + past) * sample_bytes),
            lines_extent(written, destination_stride,
                         size_t(width) * pixel_bytes)};
}

} // namespace orv_test

#endif // ORVANE_TEST_DEMOSAIC_EXTENT_H
