// The rows of the grey conversions: Y8, Y16, Y10, Y12, Y14 and packed
// 12-bit Y12P into each destination class.
//
// A grey value is replicated into every channel, so each RGB/BGR pair of
// destinations shares one destination class. Y8 behaves as a grey source
// of depth 8 in every class but the 30-bit one; Y12P yields 8-bit values
// two pixels at a time and reuses the depth-8 classes.
#ifndef ORVANE_CONVERT_GREY_ROWS_H
#define ORVANE_CONVERT_GREY_ROWS_H

#include "../common/query.h"
#include "kernels.h"

#include <cstdint>

namespace orv {
inline namespace ORV_ISA {
namespace grey {

// v shifted left by N, or right by -N when N is negative.
template <int N> constexpr uint32_t shift_left(uint32_t v) {
    if constexpr (N >= 0) return v << N;
    else return v >> -N;
}

// The 8-bit value of a sample of depth D: its top eight bits, kept to the
// low byte, so bits above the depth wrap instead of saturating.
template <unsigned D> constexpr uint32_t narrow(uint32_t v) {
    return (v >> (D - 8)) & 0xFFu;
}

// ---- Sources: one sample per pixel ----------------------------------------

struct FromY8 {
    static constexpr GreySource index = kFromY8;
    static constexpr unsigned depth = 8;
    static constexpr uint32_t bytes = 1;
    static constexpr unsigned unit_shift = 0;
    static uint32_t read(const uint8_t *s) { return s[0]; }
};

// Y16, Y10, Y12, Y14: a u16 per pixel with the sample in the low D bits.
// Bits above D are not masked off; they reach the results as computed.
template <unsigned D> struct FromU16 {
    static constexpr GreySource index =
        D == 16 ? kFromY16 : D == 10 ? kFromY10 : D == 12 ? kFromY12 : kFromY14;
    static constexpr unsigned depth = D;
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    static uint32_t read(const uint8_t *s) { return load_u16(s); }
};

// ---- Destination classes: how a sample v of depth D is stored --------------

struct ToGrey8 { // 01
    static constexpr GreyClass index = kToGrey8;
    static constexpr uint32_t bytes = 1;
    static constexpr unsigned unit_shift = 0;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        d[0] = static_cast<uint8_t>(narrow<D>(v));
    }
};

struct ToGrey16 { // 02, 13, 14, 15: the sample as it is, never rescaled
    static constexpr GreyClass index = kToGrey16;
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        store_u16(d, v);
    }
};

struct ToGrey32 { // 03
    static constexpr GreyClass index = kToGrey32;
    static constexpr uint32_t bytes = 4;
    static constexpr unsigned unit_shift = 2;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        store_u32(d, v);
    }
};

// 05, 0A: the top five bits of the sample in each field. The low field is
// v >> (D - 5) unmasked: bits above the depth leak into the other fields.
struct To555 {
    static constexpr GreyClass index = kTo555;
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        store_u16(d, (shift_left<15 - int(D)>(v) & 0x7C00u) |
                         (shift_left<10 - int(D)>(v) & 0x3E0u) |
                         (v >> (D - 5)));
    }
};

// 06, 0B: five, six and five top bits; the low field is again unmasked.
struct To565 {
    static constexpr GreyClass index = kTo565;
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        store_u16(d, (shift_left<16 - int(D)>(v) & 0xF800u) |
                         (shift_left<11 - int(D)>(v) & 0x7E0u) |
                         (v >> (D - 5)));
    }
};

// 07, 08, 0C, 0D: all four bytes get the value, the X byte included.
struct ToBytes32 {
    static constexpr GreyClass index = kToBytes32;
    static constexpr uint32_t bytes = 4;
    static constexpr unsigned unit_shift = 0;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        const uint8_t p = static_cast<uint8_t>(narrow<D>(v));
        d[0] = p;
        d[1] = p;
        d[2] = p;
        d[3] = p;
    }
};

// 09, 0E, 1C, 1D: three u16 words holding the sample, not rescaled.
struct ToWords48 {
    static constexpr GreyClass index = kToWords48;
    static constexpr uint32_t bytes = 6;
    static constexpr unsigned unit_shift = 1;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        store_u16(d, v);
        store_u16(d + 2, v);
        store_u16(d + 4, v);
    }
};

// Y8's departure in the 30-bit class: v unscaled at bits 0, 10 and 22,
// so its top field holds v x 4, instead of the deeper sources' sample
// and presence flags.
constexpr uint32_t y8_unscaled_packed30(uint32_t v) {
    return v + (v << 10) + (v << 22);
}

// 0F, 10. Only the low 10-bit field carries the sample (v >> (D - 10));
// the two upper fields each get a single presence flag bit, set when the
// sample is non-zero.
struct ToPacked30 {
    static constexpr GreyClass index = kToPacked30;
    static constexpr uint32_t bytes = 4;
    static constexpr unsigned unit_shift = 2;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        if constexpr (D == 8) {
            store_u32(d, y8_unscaled_packed30(v));
        } else {
            constexpr unsigned s = D - 10;
            const uint32_t present = v != 0;
            store_u32(d, (v >> s) | (present << (12 - s)) |
                             (present << (22 - s)));
        }
    }
};

// 11, 12: three equal bytes.
struct ToBytes24 {
    static constexpr GreyClass index = kToBytes24;
    static constexpr uint32_t bytes = 3;
    static constexpr unsigned unit_shift = 0;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        const uint8_t p = static_cast<uint8_t>(narrow<D>(v));
        d[0] = p;
        d[1] = p;
        d[2] = p;
    }
};

// ---- Rows ------------------------------------------------------------------

template <class Src, class Dst>
void grey_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x)
        Dst::template put<Src::depth>(dst + x * Dst::bytes,
                                      Src::read(src + x * Src::bytes));
}

// Y12P: three bytes hold two 12-bit samples; each pixel takes the top eight
// bits of its sample. The row goes by pairs while the pixel counter is
// below the width, so an odd width converts one pixel past it.
template <class Dst>
void y12p_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; x += 2) {
        const uint32_t p0 = src[0];
        const uint32_t p1 = ((uint32_t(src[1]) << 4) | (src[2] >> 4)) & 0xFFu;
        Dst::template put<8>(dst, p0);
        Dst::template put<8>(dst + Dst::bytes, p1);
        src += 3;
        dst += 2 * Dst::bytes;
    }
}

// A SIMD file may give a row a bulk kernel by specialising these: `run`
// converts the first n pixels of the row (n even, n <= width) and returns
// n; the plain row converts the rest.
template <class Src, class Dst> struct GreyBulk {
    static constexpr bool present = false;
};
template <class Dst> struct Y12pBulk {
    static constexpr bool present = false;
};

} // namespace grey
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_CONVERT_GREY_ROWS_H
