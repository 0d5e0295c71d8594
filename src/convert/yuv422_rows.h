// The colour arithmetic of YUV 4:2:2 (bytes Y0, U, Y1, V per pair of
// pixels) and its row function: BT.601 full-range coefficients (1.402,
// 0.714, 0.344, 1.772) in fixed point with 10 fractional bits.
#ifndef ORVANE_CONVERT_YUV422_ROWS_H
#define ORVANE_CONVERT_YUV422_ROWS_H

#include "byte_layouts.h"
#include "kernels.h"

#include <cstdint>

namespace orv {
inline namespace ORV_ISA {
namespace yuv422 {

// floor(v / 1024) for a chroma product. Every product lies within
// +-2^18, so a bias that is a multiple of 1024 lifts it above zero and an
// ordinary division floors it, whatever a right shift would do with a
// negative value.
constexpr int32_t kChromaBias = 1 << 20;
constexpr int32_t floor_div_1024(int32_t v) {
    return (v + kChromaBias) / 1024 - kChromaBias / 1024;
}
static_assert(floor_div_1024(-1) == -1 && floor_div_1024(-1024) == -1 &&
                  floor_div_1024(-1025) == -2 && floor_div_1024(1023) == 0,
              "chroma terms round toward minus infinity");
static_assert(1815 * 128 < kChromaBias && (731 + 352) * 128 < kChromaBias,
              "the bias covers every chroma product");

constexpr uint32_t clamp_to_byte(int32_t v) {
    return v < 0 ? 0u : v > 255 ? 255u : static_cast<uint32_t>(v);
}

// The three chroma terms of a pair, each floored. G subtracts its floored
// term, so it rounds the other way from B and R.
struct ChromaTerms {
    int32_t b, g, r;
};

inline ChromaTerms chroma_terms(uint32_t u, uint32_t v) {
    const int32_t d = static_cast<int32_t>(u) - 128;
    const int32_t e = static_cast<int32_t>(v) - 128;
    return {floor_div_1024(1815 * d), floor_div_1024(731 * e + 352 * d),
            floor_div_1024(1436 * e)};
}

template <class Layout>
void put_pixel(uint8_t *d, uint32_t luma, const ChromaTerms &terms) {
    const int32_t y = static_cast<int32_t>(luma);
    Layout::put(d, clamp_to_byte(y + terms.r), clamp_to_byte(y - terms.g),
                clamp_to_byte(y + terms.b));
}

// One line, a pair at a time while the pixel counter is below the width:
// an odd width converts a full pair at the end, one pixel past the width
// on both sides.
template <class Layout>
void yuv422_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; x += 2) {
        const ChromaTerms terms = chroma_terms(src[1], src[3]);
        put_pixel<Layout>(dst, src[0], terms);
        put_pixel<Layout>(dst + Layout::bytes, src[2], terms);
        src += 4;
        dst += 2 * Layout::bytes;
    }
}

// A SIMD file may give a layout a bulk kernel by specialising this: `run`
// converts the first n pixels of the row (n even, n <= width) and returns
// n; the plain row converts the rest.
template <class Layout> struct YuvBulk {
    static constexpr bool present = false;
};

} // namespace yuv422
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_CONVERT_YUV422_ROWS_H
