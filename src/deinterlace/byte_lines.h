// The byte-wise line pairs, each a field line's copy and the filled line
// after it: LineDup's, LineAve's and the Y8, 24-bit, 32-bit and YUV 4:2:2
// line shapes of Bilinear and Median, with the values of a neighbourhood
// (the weighted kernel and the median of six), as memory copies and plain
// byte loops. They are the reference for the vector twins (simd_lines.h)
// and are compiled again by every SIMD file, which finishes its lines with
// them, so they live in orv::ORV_ISA like all kernel code.
#ifndef ORVANE_DEINTERLACE_BYTE_LINES_H
#define ORVANE_DEINTERLACE_BYTE_LINES_H

#include "kernels.h"

#include "../common/query.h"

#include <cstdint>
#include <cstring>

namespace orv {
inline namespace ORV_ISA {
namespace field_lines {

using deinterlace::LinePair;

inline uint8_t vertical_mean(const uint8_t *a, const uint8_t *b, uint32_t i) {
    return static_cast<uint8_t>((a[i] + b[i]) >> 1);
}

// The bytes [begin, end) of a line, each the mean of the bytes above and
// below it.
inline void mean_run(const uint8_t *a, const uint8_t *b, uint32_t begin,
                     uint32_t end, uint8_t *out) {
    for (uint32_t i = begin; i < end; ++i) out[i] = vertical_mean(a, b, i);
}

// The bytes [begin, end) of the line above in its copy.
inline void copy_run(const uint8_t *a, uint32_t begin, uint32_t end,
                     uint8_t *copy) {
    std::memmove(copy + begin, a + begin, end - begin);
}

// LineDup: the line twice, one copy after the other.
inline uintptr_t line_twice(const uint8_t *line, uint32_t stride,
                            uint8_t *copy) {
    std::memmove(copy, line, stride);
    std::memmove(advance(copy, stride), line, stride);
    return stride;
}

// LineAve: the copy, then the mean, rounded down, of each byte and the
// byte below it. The bytes of a multi-byte sample are averaged separately,
// with no carry between them.
inline uintptr_t average_lines(const uint8_t *above, uint32_t stride,
                               uint8_t *copy) {
    std::memmove(copy, above, stride);
    mean_run(above, advance(above, stride), 0, stride, advance(copy, stride));
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

inline uint32_t lesser(uint32_t a, uint32_t b) { return a < b ? a : b; }
inline uint32_t greater(uint32_t a, uint32_t b) { return a < b ? b : a; }

// The median of six bytes: the mean, rounded down, of the third and fourth
// smallest. Three pair orderings, one comparison of the pair maxima and a
// short decision tree; nothing is sorted.
inline uint32_t median_of_six(uint32_t x0, uint32_t x1, uint32_t x2,
                              uint32_t x3, uint32_t x4, uint32_t x5) {
    x0 &= 0xFFu, x1 &= 0xFFu, x2 &= 0xFFu, x3 &= 0xFFu, x4 &= 0xFFu,
        x5 &= 0xFFu;
    const uint32_t lo01 = lesser(x0, x1), hi01 = greater(x0, x1);
    const uint32_t lo23 = lesser(x2, x3), hi23 = greater(x2, x3);
    const uint32_t r_lo = lesser(x4, x5), r_hi = greater(x4, x5);
    // P: of the first two pairs the one with the larger high value (the
    // first on a tie); Q: the other.
    const bool first_is_p = hi01 >= hi23;
    const uint32_t p_lo = first_is_p ? lo01 : lo23;
    const uint32_t p_hi = first_is_p ? hi01 : hi23;
    const uint32_t q_lo = first_is_p ? lo23 : lo01;
    const uint32_t q_hi = first_is_p ? hi23 : hi01;
    // The four values of P and Q in order: a <= b <= c <= d = p_hi.
    const uint32_t a = lesser(p_lo, q_lo);
    const uint32_t inner = greater(p_lo, q_lo);
    const uint32_t b = lesser(inner, q_hi);
    const uint32_t c = greater(inner, q_hi);
    const uint32_t d = p_hi;
    // Where the third pair falls among them decides the middle two.
    if (r_hi <= b) return (greater(a, r_hi) + b) >> 1;
    if (r_lo >= c) return (c + lesser(d, r_lo)) >> 1;
    return (greater(b, r_lo) + lesser(c, r_hi)) >> 1;
}

struct MedianOfSix {
    static uint8_t at(const uint8_t *a, const uint8_t *b, uint32_t i,
                      uint32_t d) {
        return static_cast<uint8_t>(
            median_of_six(a[i - d], a[i], a[i + d], b[i - d], b[i], b[i + d]));
    }
    // 32-bit lines stop three pixels short of the kernel's: the line is
    // 12 bytes shorter than the stride, and since the field and the frame
    // move on by the line written, later lines shear left by 12 bytes each.
    static uint32_t inner_pixels_32(uint32_t stride) {
        const uint32_t pixels = (stride - 4) >> 2;
        return pixels > 4 ? pixels - 4 : 0;
    }
    // A one-byte stride makes a two-byte line of vertical means.
    static constexpr uint32_t least_grey_stride = 1;
};

// How far a byte's side neighbours are, and the byte loop over a run with
// them. Apart<D>: D bytes for every byte.
template <uint32_t D> struct Apart {
    template <class Rule>
    static void run(const uint8_t *a, const uint8_t *b, uint32_t begin,
                    uint32_t end, uint8_t *out) {
        for (uint32_t i = begin; i < end; ++i) out[i] = Rule::at(a, b, i, D);
    }
};

// YUV 4:2:2 (Y0 U Y1 V): luma, the even bytes, two bytes; chroma, the odd
// bytes, four. A run starts on a luma byte and goes a luma and chroma pair
// at a time, so no byte asks which it is; a run of odd length ends on luma.
struct LumaChroma {
    template <class Rule>
    static void run(const uint8_t *a, const uint8_t *b, uint32_t begin,
                    uint32_t end, uint8_t *out) {
        uint32_t i = begin;
        for (; end - i >= 2; i += 2) {
            out[i] = Rule::at(a, b, i, 2);
            out[i + 1] = Rule::at(a, b, i + 1, 4);
        }
        if (i < end) out[i] = Rule::at(a, b, i, 2);
    }
};

// The bytes [begin, end) of a line, each the rule's value of its own
// neighbourhood, the side neighbours as Spacing places them, one byte at a
// time; and the same bytes of the line above in its copy.
template <class Rule> struct ByteRuns {
    template <class Spacing>
    static void fill(const uint8_t *a, const uint8_t *b, uint32_t begin,
                     uint32_t end, uint8_t *out, uint8_t *copy) {
        copy_run(a, begin, end, copy);
        Spacing::template run<Rule>(a, b, begin, end, out);
    }
};

// The shapes below write the copy of the line above at `copy` and the
// filled line after it; the runs copy their own bytes and the shapes the
// bytes around them.

// Y8: a mean, the neighbourhood values, a mean. Strides of 1 and 2 give
// two means; with a stride of 1 the second is read from one byte past the
// line below and written over the first byte of the next frame line, which
// the copy that follows overwrites.
template <class Rule, class Runs = ByteRuns<Rule>>
uintptr_t grey_line(const uint8_t *a, uint32_t stride, uint8_t *copy) {
    const uint8_t *b = advance(a, stride);
    uint8_t *out = advance(copy, stride);
    out[0] = vertical_mean(a, b, 0);
    if (stride <= 2) {
        copy_run(a, 0, stride, copy);
        out[1] = vertical_mean(a, b, 1);
        return stride;
    }
    Runs::template fill<Apart<1>>(a, b, 1, stride - 1, out, copy);
    copy_run(a, 0, 1, copy);
    copy_run(a, stride - 1, stride, copy);
    out[stride - 1] = vertical_mean(a, b, stride - 1);
    return stride;
}

// 24-bit: a pixel of means, the neighbourhood values, a pixel of means.
// Strides of 3 to 6 give two pixels of means: six bytes even when the
// stride is shorter, read partly past the line below and written partly
// over the next frame line, which the copy that follows overwrites.
template <class Rule, class Runs = ByteRuns<Rule>>
uintptr_t triple_line(const uint8_t *a, uint32_t stride, uint8_t *copy) {
    const uint8_t *b = advance(a, stride);
    uint8_t *out = advance(copy, stride);
    for (uint32_t i = 0; i < 3; ++i) out[i] = vertical_mean(a, b, i);
    if (stride <= 6) {
        copy_run(a, 0, stride, copy);
        for (uint32_t i = 3; i < 6; ++i) out[i] = vertical_mean(a, b, i);
        return stride;
    }
    Runs::template fill<Apart<3>>(a, b, 3, stride - 3, out, copy);
    copy_run(a, 0, 3, copy);
    copy_run(a, stride - 3, stride, copy);
    for (uint32_t i = stride - 3; i < stride; ++i)
        out[i] = vertical_mean(a, b, i);
    return stride;
}

// 32-bit: a pixel of means, the rule's inner pixels (the X byte computed
// like the others), a pixel of means. The field and the frame move on by
// the line written, which is shorter than the stride when the stride is
// not a multiple of 4 or for the median's bound; the copy is always the
// whole stride.
template <class Rule, class Runs = ByteRuns<Rule>>
uintptr_t quad_line(const uint8_t *a, uint32_t stride, uint8_t *copy) {
    const uint8_t *b = advance(a, stride);
    uint8_t *out = advance(copy, stride);
    const uint32_t inner_end = 4 + 4 * Rule::inner_pixels_32(stride);
    for (uint32_t i = 0; i < 4; ++i) out[i] = vertical_mean(a, b, i);
    Runs::template fill<Apart<4>>(a, b, 4, inner_end, out, copy);
    copy_run(a, 0, 4, copy);
    copy_run(a, inner_end, stride, copy);
    for (uint32_t i = inner_end; i < inner_end + 4; ++i)
        out[i] = vertical_mean(a, b, i);
    return inner_end + 4;
}

// YUV 4:2:2: bytes 0, 1 and 3 are means, byte 2 a neighbourhood value;
// then a run of luma and chroma values while a chroma byte has its right
// neighbour, ending on a luma byte, and the three bytes after it are means.
// An odd stride makes the line one byte longer than the stride (read past
// the line below, written over the next frame line's first byte, which the
// next copy overwrites); the field and the frame still move on by the
// stride.
template <class Rule, class Runs = ByteRuns<Rule>>
uintptr_t yuv_line(const uint8_t *a, uint32_t stride, uint8_t *copy) {
    const uint8_t *b = advance(a, stride);
    uint8_t *out = advance(copy, stride);
    out[0] = vertical_mean(a, b, 0);
    out[1] = vertical_mean(a, b, 1);
    out[2] = Rule::at(a, b, 2, 2);
    out[3] = vertical_mean(a, b, 3);
    // The last luma byte of the run: the first from byte 4 on whose chroma
    // byte would have no right neighbour within the line's reach.
    const uint32_t last_luma = 4 + ((stride - 7) & ~1u);
    Runs::template fill<LumaChroma>(a, b, 4, last_luma + 1, out, copy);
    copy_run(a, 0, 4, copy);
    copy_run(a, last_luma + 1, stride, copy);
    for (uint32_t i = last_luma + 1; i < last_luma + 4; ++i)
        out[i] = vertical_mean(a, b, i);
    return stride;
}

// The table of this file's instruction set with LineDup's pair `twice`,
// LineAve's pair `average`, the weighted kernel's runs done by
// WeightedRuns and the median's by MedianRuns.
template <class WeightedRuns, class MedianRuns>
constexpr deinterlace::DeinterlaceKernels kernels_with(LinePair twice,
                                                       LinePair average) {
    return {twice,
            average,
            grey_line<WeightedKernel, WeightedRuns>,
            triple_line<WeightedKernel, WeightedRuns>,
            quad_line<WeightedKernel, WeightedRuns>,
            yuv_line<WeightedKernel, WeightedRuns>,
            grey_line<MedianOfSix, MedianRuns>,
            triple_line<MedianOfSix, MedianRuns>,
            quad_line<MedianOfSix, MedianRuns>,
            yuv_line<MedianOfSix, MedianRuns>};
}

} // namespace field_lines
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_DEINTERLACE_BYTE_LINES_H
