// The byte-wise filled lines: LineAve's mean line and the Y8, 24-bit and
// 32-bit line shapes of Bilinear and Median, each as the plain byte loop
// and, where the target has SSE2, a twin of the mean line and of the
// weighted kernel's runs that does sixteen bytes a step, reads and writes
// exactly the bytes the loop does and gives the same values. The methods
// fill with the `fastest_` / `Fastest` choice of each.
#ifndef ORVANE_DEINTERLACE_BYTE_LINES_H
#define ORVANE_DEINTERLACE_BYTE_LINES_H

#include "frame.h"

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace orv {
namespace deinterlace {

inline uint8_t vertical_mean(const uint8_t *a, const uint8_t *b, uint32_t i) {
    return static_cast<uint8_t>((a[i] + b[i]) >> 1);
}

// The mean, rounded down, of each byte and the byte below it. The bytes of
// a multi-byte sample are averaged separately, with no carry between them.
inline uintptr_t average_lines(const uint8_t *above, uint32_t stride,
                               uint8_t *out) {
    const uint8_t *below = advance(above, stride);
    for (uint32_t b = 0; b < stride; ++b)
        out[b] = static_cast<uint8_t>((above[b] + below[b]) >> 1);
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

#if defined(__SSE2__)

namespace sse2 {

inline __m128i load(const uint8_t *p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}

// Eight byte sums of two lines, from their low or high eight bytes.
inline __m128i sum_lo(__m128i x, __m128i y) {
    const __m128i zero = _mm_setzero_si128();
    return _mm_add_epi16(_mm_unpacklo_epi8(x, zero),
                         _mm_unpacklo_epi8(y, zero));
}
inline __m128i sum_hi(__m128i x, __m128i y) {
    const __m128i zero = _mm_setzero_si128();
    return _mm_add_epi16(_mm_unpackhi_epi8(x, zero),
                         _mm_unpackhi_epi8(y, zero));
}

// 105 c + 75 s is 15 (7 c + 5 s); 7 c + 5 s stays below 8671, and the
// high half of its product with 1920 is exactly floor(15 (7 c + 5 s) / 512).
inline __m128i weighted(__m128i centre, __m128i sides) {
    const __m128i t = _mm_add_epi16(_mm_mullo_epi16(centre, _mm_set1_epi16(7)),
                                    _mm_mullo_epi16(sides, _mm_set1_epi16(5)));
    return _mm_mulhi_epu16(t, _mm_set1_epi16(1920));
}

// The weighted bytes i to i + 15, their side neighbours D bytes away.
template <uint32_t D>
inline void weighted_step(const uint8_t *a, const uint8_t *b, uint32_t i,
                          uint8_t *out) {
    const __m128i al = load(a + i - D), bl = load(b + i - D);
    const __m128i ac = load(a + i), bc = load(b + i);
    const __m128i ar = load(a + i + D), br = load(b + i + D);
    const __m128i lo = weighted(
        sum_lo(ac, bc), _mm_add_epi16(sum_lo(al, bl), sum_lo(ar, br)));
    const __m128i hi = weighted(
        sum_hi(ac, bc), _mm_add_epi16(sum_hi(al, bl), sum_hi(ar, br)));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i),
                     _mm_packus_epi16(lo, hi));
}

} // namespace sse2

// average_lines' twin. The average of two bytes rounded up, less one where
// their sum is odd, is their mean rounded down.
inline uintptr_t average_lines_sse2(const uint8_t *above, uint32_t stride,
                                    uint8_t *out) {
    const uint8_t *below = advance(above, stride);
    const __m128i one = _mm_set1_epi8(1);
    uint32_t b = 0;
    for (; stride - b >= 16; b += 16) {
        const __m128i x = sse2::load(above + b), y = sse2::load(below + b);
        const __m128i odd = _mm_and_si128(_mm_xor_si128(x, y), one);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + b),
                         _mm_sub_epi8(_mm_avg_epu8(x, y), odd));
    }
    for (; b < stride; ++b)
        out[b] = static_cast<uint8_t>((above[b] + below[b]) >> 1);
    return stride;
}

// ByteRuns<WeightedKernel>'s twin: sixteen weighted bytes a step while
// the step's last byte is inside the run, then the byte loop. A step's
// right-hand neighbours end D bytes past the run, where the plain loop's
// last ones do. Every shape starts its run D bytes or more into the line
// and never past its end.
struct WeightedRunsSse2 {
    template <uint32_t D>
    static void fill(const uint8_t *a, const uint8_t *b, uint32_t begin,
                     uint32_t end, uint8_t *out) {
        uint32_t i = begin;
        for (; end - i >= 16; i += 16) sse2::weighted_step<D>(a, b, i, out);
        ByteRuns<WeightedKernel>::fill<D>(a, b, i, end, out);
    }
};

#endif // __SSE2__

// The runs and the mean line the methods fill with.
template <class Rule> struct Fastest {
    using Runs = ByteRuns<Rule>;
};
#if defined(__SSE2__)
template <> struct Fastest<WeightedKernel> {
    using Runs = WeightedRunsSse2;
};
inline constexpr FillLine fastest_average_lines = average_lines_sse2;
#else
inline constexpr FillLine fastest_average_lines = average_lines;
#endif

} // namespace deinterlace
} // namespace orv

#endif // ORVANE_DEINTERLACE_BYTE_LINES_H
