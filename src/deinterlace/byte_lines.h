// The filled lines that have an SSE2 twin: LineAve's mean line and
// Bilinear's weighted Y8 line, each as the plain byte loop and, where the
// target has SSE2, a twin that does sixteen bytes a step, reads and writes
// exactly the bytes the loop does and gives the same values. The methods
// fill with the `fastest_` choice of each.
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

// Y8: a mean, the neighbourhood values, a mean. Strides of 1 and 2 give
// two means; with a stride of 1 the second is read from one byte past the
// line below and written over the first byte of the next frame line, which
// the copy that follows overwrites.
template <class Rule>
uintptr_t grey_line(const uint8_t *a, uint32_t stride, uint8_t *out) {
    const uint8_t *b = advance(a, stride);
    out[0] = vertical_mean(a, b, 0);
    if (stride <= 2) {
        out[1] = vertical_mean(a, b, 1);
        return stride;
    }
    for (uint32_t i = 1; i < stride - 1; ++i) out[i] = Rule::at(a, b, i, 1);
    out[stride - 1] = vertical_mean(a, b, stride - 1);
    return stride;
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

// grey_line<WeightedKernel>'s twin: sixteen weighted bytes a step while
// the right-hand neighbours stay inside the line, then the byte loop.
inline uintptr_t weighted_grey_line_sse2(const uint8_t *a, uint32_t stride,
                                         uint8_t *out) {
    if (stride <= 2) return grey_line<WeightedKernel>(a, stride, out);
    const uint8_t *b = advance(a, stride);
    out[0] = vertical_mean(a, b, 0);
    uint32_t i = 1;
    for (; stride - 1 - i >= 16; i += 16) {
        const __m128i al = sse2::load(a + i - 1), bl = sse2::load(b + i - 1);
        const __m128i ac = sse2::load(a + i), bc = sse2::load(b + i);
        const __m128i ar = sse2::load(a + i + 1), br = sse2::load(b + i + 1);
        const __m128i lo = sse2::weighted(
            sse2::sum_lo(ac, bc),
            _mm_add_epi16(sse2::sum_lo(al, bl), sse2::sum_lo(ar, br)));
        const __m128i hi = sse2::weighted(
            sse2::sum_hi(ac, bc),
            _mm_add_epi16(sse2::sum_hi(al, bl), sse2::sum_hi(ar, br)));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i),
                         _mm_packus_epi16(lo, hi));
    }
    for (; i < stride - 1; ++i) out[i] = WeightedKernel::at(a, b, i, 1);
    out[stride - 1] = vertical_mean(a, b, stride - 1);
    return stride;
}

#endif // __SSE2__

// The lines the methods fill with.
template <class Rule>
inline constexpr FillLine fastest_grey_line = grey_line<Rule>;
#if defined(__SSE2__)
template <>
inline constexpr FillLine fastest_grey_line<WeightedKernel> =
    weighted_grey_line_sse2;
inline constexpr FillLine fastest_average_lines = average_lines_sse2;
#else
inline constexpr FillLine fastest_average_lines = average_lines;
#endif

} // namespace deinterlace
} // namespace orv

#endif // ORVANE_DEINTERLACE_BYTE_LINES_H
