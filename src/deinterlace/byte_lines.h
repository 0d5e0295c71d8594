// The byte-wise filled lines: LineAve's mean line and the Y8, 24-bit and
// 32-bit line shapes of Bilinear and Median, as plain byte loops. They are
// the reference for the vector twins (simd_lines.h) and are compiled again
// by every SIMD file, which finishes its lines with them, so they live in
// orv::ORV_ISA like all kernel code.
#ifndef ORVANE_DEINTERLACE_BYTE_LINES_H
#define ORVANE_DEINTERLACE_BYTE_LINES_H

#include "kernels.h"

#include "../common/query.h"

#include <cstdint>

namespace orv {
inline namespace ORV_ISA {
namespace field_lines {

using deinterlace::FillLine;

inline uint8_t vertical_mean(const uint8_t *a, const uint8_t *b, uint32_t i) {
    return static_cast<uint8_t>((a[i] + b[i]) >> 1);
}

// The bytes [begin, end) of a line, each the mean of the bytes above and
// below it.
inline void mean_run(const uint8_t *a, const uint8_t *b, uint32_t begin,
                     uint32_t end, uint8_t *out) {
    for (uint32_t i = begin; i < end; ++i) out[i] = vertical_mean(a, b, i);
}

// The mean, rounded down, of each byte and the byte below it. The bytes of
// a multi-byte sample are averaged separately, with no carry between them.
inline uintptr_t average_lines(const uint8_t *above, uint32_t stride,
                               uint8_t *out) {
    mean_run(above, advance(above, stride), 0, stride, out);
    return stride;
}

// The weighted 3 x 2 kernel: 105 for the two vertical neighbours, 75 for
// the four side ones. The weights sum to 510, not 512, so a flat area
// comes out one level darker (200 gives 199); that is the method's result.
struct WeightedKernel {
    static uint8_t at(const uint8_t *a, const uint8_t *b, uint32_t i,
                      uint32_t d) {
        const uint32_t centre = a[i] + b[i];
        const uint32_t sides = a[i - d] + b[i - d] + a[i + d] + b[i + d];
        return static_cast<uint8_t>((105u * centre + 75u * sides) >> 9);
    }
    // 32-bit lines: every pixel between the first and the last.
    static uint32_t inner_pixels_32(uint32_t stride) {
        const uint32_t rest = stride - 8;
        return rest >= 4 ? rest / 4 : 0;
    }
    static constexpr uint32_t least_grey_stride = 2;
};

// The bytes [begin, end) of a line, each the rule's value of its own
// neighbourhood, the side neighbours D bytes away: one byte at a time.
template <class Rule> struct ByteRuns {
    template <uint32_t D>
    static void fill(const uint8_t *a, const uint8_t *b, uint32_t begin,
                     uint32_t end, uint8_t *out) {
        for (uint32_t i = begin; i < end; ++i) out[i] = Rule::at(a, b, i, D);
    }
};

// Y8: a mean, the neighbourhood values, a mean. Strides of 1 and 2 give
// two means; with a stride of 1 the second is read from one byte past the
// line below and written over the first byte of the next frame line, which
// the copy that follows overwrites.
template <class Rule, class Runs = ByteRuns<Rule>>
uintptr_t grey_line(const uint8_t *a, uint32_t stride, uint8_t *out) {
    const uint8_t *b = advance(a, stride);
    out[0] = vertical_mean(a, b, 0);
    if (stride <= 2) {
        out[1] = vertical_mean(a, b, 1);
        return stride;
    }
    Runs::template fill<1>(a, b, 1, stride - 1, out);
    out[stride - 1] = vertical_mean(a, b, stride - 1);
    return stride;
}

// 24-bit: a pixel of means, the neighbourhood values, a pixel of means.
// Strides of 3 to 6 give two pixels of means: six bytes even when the
// stride is shorter, read partly past the line below and written partly
// over the next frame line, which the copy that follows overwrites.
template <class Rule, class Runs = ByteRuns<Rule>>
uintptr_t triple_line(const uint8_t *a, uint32_t stride, uint8_t *out) {
    const uint8_t *b = advance(a, stride);
    for (uint32_t i = 0; i < 3; ++i) out[i] = vertical_mean(a, b, i);
    if (stride <= 6) {
        for (uint32_t i = 3; i < 6; ++i) out[i] = vertical_mean(a, b, i);
        return stride;
    }
    Runs::template fill<3>(a, b, 3, stride - 3, out);
    for (uint32_t i = stride - 3; i < stride; ++i)
        out[i] = vertical_mean(a, b, i);
    return stride;
}

// 32-bit: a pixel of means, the rule's inner pixels (the X byte computed
// like the others), a pixel of means. The field and the frame move on by
// the line written, which is shorter than the stride when the stride is
// not a multiple of 4 or for the median's bound.
template <class Rule, class Runs = ByteRuns<Rule>>
uintptr_t quad_line(const uint8_t *a, uint32_t stride, uint8_t *out) {
    const uint8_t *b = advance(a, stride);
    const uint32_t inner_bytes = 4 * Rule::inner_pixels_32(stride);
    for (uint32_t i = 0; i < 4; ++i) out[i] = vertical_mean(a, b, i);
    Runs::template fill<4>(a, b, 4, 4 + inner_bytes, out);
    for (uint32_t i = 4 + inner_bytes; i < 8 + inner_bytes; ++i)
        out[i] = vertical_mean(a, b, i);
    return 8 + inner_bytes;
}

// The table of this file's instruction set with the mean line `average`
// and the weighted kernel's runs done by Runs.
template <class Runs>
constexpr deinterlace::DeinterlaceKernels kernels_with(FillLine average) {
    return {average, grey_line<WeightedKernel, Runs>,
            triple_line<WeightedKernel, Runs>,
            quad_line<WeightedKernel, Runs>};
}

} // namespace field_lines
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_DEINTERLACE_BYTE_LINES_H
