// The filled lines of the de-interlace methods as the header lays them
// out: how long each is for a field stride and how far the field and the
// frame move on after it.
#ifndef ORVANE_FUZZ_FIELD_LINES_H
#define ORVANE_FUZZ_FIELD_LINES_H

#include <algorithm>
#include <cstdint>

namespace orv_fuzz {

// bytes: LineDup and LineAve, whatever the format; the others are the
// layouts of Bilinear and Median.
enum class Shape { bytes, grey, triple, quad, yuv, unhandled };

// A filled line: how long it is and how far the field and the frame move
// on after it.
struct Filled {
    uint32_t least_stride, length, step;
};

inline Filled filled_line(Shape shape, bool median, uint32_t s) {
    switch (shape) {
    case Shape::grey:
        return median ? Filled{1, std::max(s, 2u), s} : Filled{2, s, s};
    case Shape::triple: return {3, std::max(s, 6u), s};
    case Shape::quad: {
        uint32_t inner = 0;
        if (median) {
            const uint32_t pixels = (s - 4) >> 2;
            inner = pixels > 4 ? pixels - 4 : 0;
        } else if (s - 8 >= 4) {
            inner = (s - 8) / 4;
        }
        return {8, 8 + 4 * inner, 8 + 4 * inner};
    }
    case Shape::yuv: return {8, s + (s & 1u), s};
    default: return {0, s, s};
    }
}

} // namespace orv_fuzz

#endif // ORVANE_FUZZ_FIELD_LINES_H
