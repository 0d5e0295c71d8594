// Conversions from the colour sources BGR24, BGR48, BGR36 and RGB30 into
// the fourteen colour destinations, and from BGRX32 into BGR24.
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
#include "byte_layouts.h"
#include "frame.h"

#include <type_traits>

namespace orv {
namespace {

struct Samples {
    uint32_t r, g, b;
};

constexpr uint32_t flag(uint32_t sample) { return sample != 0 ? 1u : 0u; }

// ---- Sources ---------------------------------------------------------------------

// Bytes B, G, R.
struct FromBgr24 {
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
// are not masked.
struct FromBgr36 {
    static constexpr uint32_t bytes = 6;
    static constexpr unsigned unit_shift = 1;
    static Samples read(const uint8_t *s) { return FromBgr48::read(s); }
    static uint32_t to_byte(uint32_t v) { return v >> 4; }
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
struct FromRgb30 {
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
    // RGB30 into the 30-bit words has pairs of its own below.
};

// ---- Destinations ----------------------------------------------------------------

// Which channel a packed word carries in its top field.
struct RedHigh {
    static uint32_t hi(const Samples &p) { return p.r; }
    static uint32_t lo(const Samples &p) { return p.b; }
};
struct BlueHigh {
    static uint32_t hi(const Samples &p) { return p.b; }
    static uint32_t lo(const Samples &p) { return p.r; }
};

template <class Order> struct To15 { // 05 RGB15, 0A BGR15; bit 15 stays 0
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        store_u16(d, Src::pack15(Order::hi(p), p.g, Order::lo(p)));
    }
};

template <class Order> struct To16 { // 06 RGB16, 0B BGR16
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        store_u16(d, Src::pack16(Order::hi(p), p.g, Order::lo(p)));
    }
};

template <class Order> struct To30 { // 0F RGB30, 10 BGR30
    static constexpr uint32_t bytes = 4;
    static constexpr unsigned unit_shift = 2;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        store_u32(d, Src::pack30(Order::hi(p), p.g, Order::lo(p)));
    }
};

// 07, 08, 0C, 0D, 11, 12: one byte per channel.
template <class Layout> struct ToBytes {
    static constexpr uint32_t bytes = Layout::bytes;
    static constexpr unsigned unit_shift = 0;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        Layout::put(d, Src::to_byte(p.r), Src::to_byte(p.g),
                    Src::to_byte(p.b));
    }
};

// 09 BGR48, 0E RGB48: word offsets of R, G and B.
template <unsigned R, unsigned G, unsigned B> struct ToWords48 {
    static constexpr uint32_t bytes = 6;
    static constexpr unsigned unit_shift = 1;
    template <class Src> static void put(uint8_t *d, const Samples &p) {
        store_u16(d + 2 * R, Src::to_word(p.r));
        store_u16(d + 2 * G, Src::to_word(p.g));
        store_u16(d + 2 * B, Src::to_word(p.b));
    }
};

using ToBgr48 = ToWords48<2, 1, 0>;
using ToRgb48 = ToWords48<0, 1, 2>;

// ---- Rows and frames ------------------------------------------------------------

template <class Src, class Dst>
void colour_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x)
        Dst::template put<Src>(dst + x * Dst::bytes,
                               Src::read(src + x * Src::bytes));
}

// A pair walked by the units of its source and destination, with the
// usual row or a row of its own.
template <class Src, class Dst, RowFunction Row>
ORV_STATUS pair_with_row(const ConversionJob &job, Capacity cap) {
    return run_rows<Row>(job, cap,
                         plain_walk(job, Src::bytes, Src::unit_shift,
                                    Dst::bytes, Dst::unit_shift));
}

template <class Src, class Dst>
ORV_STATUS colour_pair(const ConversionJob &job, Capacity cap) {
    return pair_with_row<Src, Dst, colour_row<Src, Dst>>(job, cap);
}

// RGB30 into RGB48 takes R from its own pixel but G and B from the next
// one, so each line reads one pixel past its end.
void rgb30_to_rgb48_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x) {
        const uint32_t v = load_u32(src + 4 * x);
        const uint32_t next = load_u32(src + 4 * x + 4);
        store_u16(dst + 6 * x, v >> 22);
        store_u16(dst + 6 * x + 2, (next >> 12) & 0x3FFu);
        store_u16(dst + 6 * x + 4, next & 0x3FFu);
    }
}

// RGB30 into RGB30: the word as it is, bits 10 and 11 included.
void rgb30_copy_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x)
        store_u32(dst + 4 * x, load_u32(src + 4 * x));
}

// RGB30 into BGR30: bits 0-9 and 22-31 exchanged, bits 10-21 kept.
void rgb30_to_bgr30_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x) {
        const uint32_t v = load_u32(src + 4 * x);
        store_u32(dst + 4 * x, (v << 22) + (v & 0x3FFC00u) + (v >> 22));
    }
}

// BGRX32 into BGR24 writes the source's bytes 2, 1, 0: red and blue are
// exchanged against the destination's B, G, R order.
void bgrx32_to_bgr24_row(const uint8_t *src, uint8_t *dst, uint32_t width) {
    for (uint32_t x = 0; x < width; ++x) {
        dst[3 * x] = src[4 * x + 2];
        dst[3 * x + 1] = src[4 * x + 1];
        dst[3 * x + 2] = src[4 * x];
    }
}

// Capacity factors (k, m) of a source, by destination class.
struct CapacityTable {
    Capacity packed16, quad, words48, triple;
};

constexpr CapacityTable kBytesLikeCapacity{{6, 3}, {12, 3}, {6, 1}, {3, 1}};
constexpr CapacityTable kWordsCapacity{{6, 3}, {12, 3}, {6, 1}, {6, 2}};
constexpr CapacityTable kRgb30Capacity{{4, 2}, {4, 1}, {12, 2}, {12, 4}};

// The fourteen destinations of one source. RGB30 has its own 30-bit and
// RGB48 rows, named above.
template <class Src>
ORV_STATUS to_fourteen(const ConversionJob &job, uint32_t dst,
                       const CapacityTable &cap) {
    constexpr bool rgb30 = std::is_same<Src, FromRgb30>::value;
    switch (dst) {
    case 0x05: return colour_pair<Src, To15<RedHigh>>(job, cap.packed16);
    case 0x06: return colour_pair<Src, To16<RedHigh>>(job, cap.packed16);
    case 0x0A: return colour_pair<Src, To15<BlueHigh>>(job, cap.packed16);
    case 0x0B: return colour_pair<Src, To16<BlueHigh>>(job, cap.packed16);
    case 0x07: return colour_pair<Src, ToBytes<LayoutXbgr32>>(job, cap.quad);
    case 0x08: return colour_pair<Src, ToBytes<LayoutBgrx32>>(job, cap.quad);
    case 0x0C: return colour_pair<Src, ToBytes<LayoutXrgb32>>(job, cap.quad);
    case 0x0D: return colour_pair<Src, ToBytes<LayoutRgbx32>>(job, cap.quad);
    case 0x11: return colour_pair<Src, ToBytes<LayoutBgr24>>(job, cap.triple);
    case 0x12: return colour_pair<Src, ToBytes<LayoutRgb24>>(job, cap.triple);
    case 0x09: return colour_pair<Src, ToBgr48>(job, cap.words48);
    case 0x0E:
        if constexpr (rgb30)
            return pair_with_row<Src, ToRgb48, rgb30_to_rgb48_row>(job, cap.words48);
        else
            return colour_pair<Src, ToRgb48>(job, cap.words48);
    case 0x0F:
        if constexpr (rgb30)
            return pair_with_row<Src, To30<RedHigh>, rgb30_copy_row>(job, cap.quad);
        else
            return colour_pair<Src, To30<RedHigh>>(job, cap.quad);
    case 0x10:
        if constexpr (rgb30)
            return pair_with_row<Src, To30<BlueHigh>, rgb30_to_bgr30_row>(job, cap.quad);
        else
            return colour_pair<Src, To30<BlueHigh>>(job, cap.quad);
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

// The one conversion from a 32-bit colour source.
ORV_STATUS from_bgrx32(const ConversionJob &job, uint32_t dst) {
    if (dst != 0x11) return ORV_ERROR_NOT_SUPPORTED;
    return run_rows<bgrx32_to_bgr24_row>(job, {12, 4},
                                         plain_walk(job, 4, 0, 3, 0));
}

} // namespace

ORV_STATUS convert_from_colour(const ConversionJob &job, uint32_t key) {
    const uint32_t dst = key & 0xFFu;
    switch (key >> 8) {
    case 0x11: return to_fourteen<FromBgr24>(job, dst, kBytesLikeCapacity);
    case 0x09: return to_fourteen<FromBgr48>(job, dst, kWordsCapacity);
    case 0x1C: return to_fourteen<FromBgr36>(job, dst, kWordsCapacity);
    case 0x0F: return to_fourteen<FromRgb30>(job, dst, kRgb30Capacity);
    case 0x08: return from_bgrx32(job, dst);
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

} // namespace orv
