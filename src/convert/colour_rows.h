// The per-pixel pieces of the colour conversions and the row functions
// built from them: one source line into one destination line.
//
// Plain repacking: no colour matrix and no rounding. A source reads a pixel
// into its three raw samples and says how a sample becomes a byte, a
// 48-bit word, and the packed 15-, 16- and 30-bit words. A destination
// says where the results go. The packed words are written from the
// channel that lands in the top field ("hi") to the one in the bottom
// field ("lo"): R then B for the RGB words, B then R for the BGR words.
//
// The 16-bit sources pack their words from one channel's top bits and
// reduce the others to 0/1 presence flags. That is the defined result of
// those pairs, reproduced as it stands.
//
// Every pair's row is pair_row<Src, Dst>: the shared loop, unless the pair
// names a row of its own at the end of this file.
#ifndef ORVANE_CONVERT_COLOUR_ROWS_H
#define ORVANE_CONVERT_COLOUR_ROWS_H

#include "../common/query.h"
#include "byte_layouts.h"
#include "kernels.h"

#include <cstdint>

namespace orv {
inline namespace ORV_ISA {
namespace colour {

struct Samples {
    uint32_t r, g, b;
};

constexpr uint32_t flag(uint32_t sample) { return sample != 0 ? 1u : 0u; }

// ---- Sources ---------------------------------------------------------------

// Bytes B, G, R.
struct FromBgr24 {
    static constexpr ColourSource index = kFromBgr24;
    static constexpr uint32_t bytes = 3;
    static constexpr unsigned unit_shift = 0;
    static Samples read(const uint8_t *s) { return {s[2], s[1], s[0]}; }
    static uint32_t to_byte(uint32_t v) { return v; }
    static uint32_t to_word(uint32_t v) { return v; } // zero-extended
    static uint32_t pack15(uint32_t hi, uint32_t g, uint32_t lo) {
        return ((hi << 7) & 0x7C00u) + ((g << 2) & 0x3E0u) + (lo >> 3);
    }
    static uint32_t pack16(uint32_t hi, uint32_t g, uint32_t lo) {
        return ((hi << 8) & 0xF800u) + ((g << 3) & 0x7E0u) + (lo >> 3);
    }
    // The 8-bit values placed unscaled at bits 22, 10 and 0.
    static uint32_t pack30(uint32_t hi, uint32_t g, uint32_t lo) {
        return (hi << 22) + (g << 10) + lo;
    }
};

// Three u16 words B, G, R with 16 significant bits.
struct FromBgr48 {
    static constexpr ColourSource index = kFromBgr48;
    static constexpr uint32_t bytes = 6;
    static constexpr unsigned unit_shift = 1;
    static Samples read(const uint8_t *s) {
        return {load_u16(s + 4), load_u16(s + 2), load_u16(s)};
    }
    static uint32_t to_byte(uint32_t v) { return v >> 8; }
    static uint32_t to_word(uint32_t v) { return v; }
    // Only the bottom channel's top five bits; the top channel becomes a
    // flag in bit 0 (15-bit words drop it altogether).
    static uint32_t pack15(uint32_t, uint32_t, uint32_t lo) { return lo >> 11; }
    static uint32_t pack16(uint32_t hi, uint32_t, uint32_t lo) {
        return (lo >> 11) | flag(hi);
    }
    // The bottom channel's top ten bits, G and the top channel as flags.
    static uint32_t pack30(uint32_t hi, uint32_t g, uint32_t lo) {
        return (lo >> 6) | (flag(g) << 6) | (flag(hi) << 16);
    }
};

// Three u16 words B, G, R holding 12-bit samples; bits above the twelfth
// are not masked and reach the results as computed.
struct FromBgr36 {
    static constexpr ColourSource index = kFromBgr36;
    static constexpr uint32_t bytes = 6;
    static constexpr unsigned unit_shift = 1;
    static Samples read(const uint8_t *s) { return FromBgr48::read(s); }
    static uint32_t to_byte(uint32_t v) { return v >> 4; } // low 8 bits kept
    static uint32_t to_word(uint32_t v) { return v << 4; } // stored as u16
    // The bottom channel shifted by 7, the top channel as a flag bit.
    static uint32_t pack15(uint32_t hi, uint32_t, uint32_t lo) {
        return (lo >> 7) | (flag(hi) << 3);
    }
    static uint32_t pack16(uint32_t hi, uint32_t, uint32_t lo) {
        return (lo >> 7) | (flag(hi) << 4);
    }
    static uint32_t pack30(uint32_t hi, uint32_t g, uint32_t lo) {
        return (lo >> 2) | (flag(g) << 10) | (flag(hi) << 20);
    }
};

// One u32 per pixel, read as B in bits 0-9, G in bits 12-21 and R in bits
// 22-31: not the mirror of the BGR24 writer, which puts G at bit 10.
// Its 30-bit destinations have rows of their own, so it packs no 30-bit word.
struct FromRgb30 {
    static constexpr ColourSource index = kFromRgb30;
    static constexpr uint32_t bytes = 4;
    static constexpr unsigned unit_shift = 2;
    static Samples read(const uint8_t *s) {
        const uint32_t v = load_u32(s);
        return {v >> 22, (v >> 12) & 0x3FFu, v & 0x3FFu};
    }
    static uint32_t to_byte(uint32_t v) { return v >> 2; }
    static uint32_t to_word(uint32_t v) { return v; } // 10-bit, not scaled
    static uint32_t pack15(uint32_t hi, uint32_t g, uint32_t lo) {
        return ((hi >> 5) << 10) | ((g >> 5) << 5) | (lo >> 5);
    }
    static uint32_t pack16(uint32_t hi, uint32_t g, uint32_t lo) {
        return ((hi >> 5) << 11) | ((g >> 4) << 5) | (lo >> 5);
    }
};

// Bytes B, G, R, X: converted only into BGR24, by a row of its own.
struct FromBgrx32 {
    static constexpr uint32_t bytes = 4;
};

// ---- Destinations ----------------------------------------------------------

// Which channel a packed word carries in its top field.
struct RedHigh {
    static uint32_t hi(const Samples &p) { return p.r; }
    static uint32_t lo(const Samples &p) { return p.b; }
};
struct BlueHigh {
    static uint32_t hi(const Samples &p) { return p.b; }
    static uint32_t lo(const Samples &p) { return p.r; }
};

template <class Order> struct To15 { // bit 15 stays 0
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        store_u16(d, Src::pack15(Order::hi(p), p.g, Order::lo(p)));
    }
};

template <class Order> struct To16 {
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        store_u16(d, Src::pack16(Order::hi(p), p.g, Order::lo(p)));
    }
};

// The 30-bit words are walked in u32 units.
template <class Order> struct To30 {
    static constexpr uint32_t bytes = 4;
    static constexpr unsigned unit_shift = 2;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        store_u32(d, Src::pack30(Order::hi(p), p.g, Order::lo(p)));
    }
};

// One byte per channel, walked in bytes; the X byte of a 32-bit layout is
// never written.
template <class Layout> struct ToBytes {
    static constexpr uint32_t bytes = Layout::bytes;
    static constexpr unsigned unit_shift = 0;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        Layout::put(d, Src::to_byte(p.r), Src::to_byte(p.g),
                    Src::to_byte(p.b));
    }
};

// Three u16 words; R, G and B are the word offsets of the channels.
template <unsigned R, unsigned G, unsigned B> struct ToWords48 {
    static constexpr uint32_t bytes = 6;
    static constexpr unsigned unit_shift = 1;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        store_u16(d + 2 * R, Src::to_word(p.r));
        store_u16(d + 2 * G, Src::to_word(p.g));
        store_u16(d + 2 * B, Src::to_word(p.b));
    }
};

using ToRgb15 = To15<RedHigh>;             // 05
using ToRgb16 = To16<RedHigh>;             // 06
using ToXbgr32 = ToBytes<LayoutXbgr32>;    // 07
using ToBgrx32 = ToBytes<LayoutBgrx32>;    // 08
using ToBgr48 = ToWords48<2, 1, 0>;        // 09
using ToBgr15 = To15<BlueHigh>;            // 0A
using ToBgr16 = To16<BlueHigh>;            // 0B
using ToXrgb32 = ToBytes<LayoutXrgb32>;    // 0C
using ToRgbx32 = ToBytes<LayoutRgbx32>;    // 0D
using ToRgb48 = ToWords48<0, 1, 2>;        // 0E
using ToRgb30 = To30<RedHigh>;             // 0F
using ToBgr30 = To30<BlueHigh>;            // 10
using ToBgr24 = ToBytes<LayoutBgr24>;      // 11
using ToRgb24 = ToBytes<LayoutRgb24>;      // 12

// ---- Rows ------------------------------------------------------------------

// The shared row: read a pixel, write a pixel, W times.
template <class Src, class Dst>
void colour_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x)
        Dst::template put<Src>(dst + x * Dst::bytes,
                               Src::read(src + x * Src::bytes));
}

// RGB30 into RGB48 takes R from its own pixel but G and B from the next
// one, so each line reads one pixel past its end.
inline void rgb30_to_rgb48_row(const uint8_t *src, uint8_t *dst,
                               uint32_t width) {
    for (uint32_t x = 0; x < width; ++x) {
        const uint32_t v = load_u32(src + 4 * x);
        const uint32_t next = load_u32(src + 4 * x + 4);
        store_u16(dst + 6 * x, v >> 22);
        store_u16(dst + 6 * x + 2, (next >> 12) & 0x3FFu);
        store_u16(dst + 6 * x + 4, next & 0x3FFu);
    }
}

// RGB30 into RGB30: the word as it is, bits 10 and 11 included.
inline void rgb30_copy_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x)
        store_u32(dst + 4 * x, load_u32(src + 4 * x));
}

// RGB30 into BGR30: bits 0-9 and 22-31 exchanged, bits 10-21 kept.
inline void rgb30_to_bgr30_row(const uint8_t *src, uint8_t *dst,
                               uint32_t width) {
    for (uint32_t x = 0; x < width; ++x) {
        const uint32_t v = load_u32(src + 4 * x);
        store_u32(dst + 4 * x, (v << 22) + (v & 0x3FFC00u) + (v >> 22));
    }
}

// BGRX32 into BGR24 writes the source's bytes 2, 1, 0: red and blue are
// exchanged against the destination's B, G, R order.
inline void bgrx32_to_bgr24_row(const uint8_t *src, uint8_t *dst,
                                uint32_t width) {
    for (uint32_t x = 0; x < width; ++x) {
        dst[3 * x] = src[4 * x + 2];
        dst[3 * x + 1] = src[4 * x + 1];
        dst[3 * x + 2] = src[4 * x];
    }
}

// A SIMD file may give a pair a bulk kernel by specialising this: `run`
// converts the first n pixels of the row (n even, n <= width) and returns
// n; the pair's plain row converts the rest.
template <class Src, class Dst> struct ColourBulk {
    static constexpr bool present = false;
};

// The row of each (source, destination) pair.
template <class Src, class Dst>
inline constexpr RowFunction pair_row = colour_row<Src, Dst>;
// RGB30 into RGB48 reads G and B from the next pixel.
template <> inline constexpr RowFunction pair_row<FromRgb30, ToRgb48> = rgb30_to_rgb48_row;
// RGB30 into RGB30 copies the whole word.
template <> inline constexpr RowFunction pair_row<FromRgb30, ToRgb30> = rgb30_copy_row;
// RGB30 into BGR30 exchanges the outer fields of the word.
template <> inline constexpr RowFunction pair_row<FromRgb30, ToBgr30> = rgb30_to_bgr30_row;
// BGRX32 into BGR24 exchanges red and blue.
template <> inline constexpr RowFunction pair_row<FromBgrx32, ToBgr24> = bgrx32_to_bgr24_row;

} // namespace colour
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_CONVERT_COLOUR_ROWS_H
