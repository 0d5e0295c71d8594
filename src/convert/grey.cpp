// Conversions from the grey sources: Y8, Y16, Y10, Y12, Y14 and packed
// 12-bit Y12P.
//
// A grey value is replicated into every channel, so each RGB/BGR pair of
// destinations shares one destination class. Y8 behaves as a grey source
// of depth 8 in every class but the 30-bit one; Y12P yields 8-bit values
// two pixels at a time and reuses the depth-8 classes.
#include "frame.h"

namespace orv {
namespace {

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
    static constexpr unsigned depth = 8;
    static constexpr uint32_t bytes = 1;
    static constexpr unsigned unit_shift = 0;
    static uint32_t read(const uint8_t *s) { return s[0]; }
};

// Y16, Y10, Y12, Y14: a u16 per pixel with the sample in the low D bits.
// Bits above D are not masked off; they reach the results as computed.
template <unsigned D> struct FromU16 {
    static constexpr unsigned depth = D;
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    static uint32_t read(const uint8_t *s) { return load_u16(s); }
};

// ---- Destination classes: how a sample v of depth D is stored --------------

struct ToGrey8 { // 01
    static constexpr uint32_t bytes = 1;
    static constexpr unsigned unit_shift = 0;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        d[0] = static_cast<uint8_t>(narrow<D>(v));
    }
};

struct ToGrey16 { // 02, 13, 14, 15: the sample as it is, never rescaled
    static constexpr uint32_t bytes = 2;
    static constexpr unsigned unit_shift = 1;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        store_u16(d, v);
    }
};

struct ToGrey32 { // 03
    static constexpr uint32_t bytes = 4;
    static constexpr unsigned unit_shift = 2;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        store_u32(d, v);
    }
};

// 05, 0A: the top five bits of the sample in each field. The low field is
// v >> (D - 5) unmasked: bits above the depth leak into the other fields.
struct To555 {
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
    static constexpr uint32_t bytes = 6;
    static constexpr unsigned unit_shift = 1;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        store_u16(d, v);
        store_u16(d + 2, v);
        store_u16(d + 4, v);
    }
};

// 0F, 10. Only the low 10-bit field carries the sample (v >> (D - 10));
// the two upper fields each get a single presence flag bit, set when the
// sample is non-zero. Y8 instead puts v unscaled at bits 0, 10 and 22, so
// its top field holds v x 4.
struct ToPacked30 {
    static constexpr uint32_t bytes = 4;
    static constexpr unsigned unit_shift = 2;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        if constexpr (D == 8) {
            store_u32(d, v + (v << 10) + (v << 22));
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
    static constexpr uint32_t bytes = 3;
    static constexpr unsigned unit_shift = 0;
    template <unsigned D> static void put(uint8_t *d, uint32_t v) {
        const uint8_t p = static_cast<uint8_t>(narrow<D>(v));
        d[0] = p;
        d[1] = p;
        d[2] = p;
    }
};

// ---- Row functions ---------------------------------------------------------

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

// ---- Frames ----------------------------------------------------------------

template <class Src, class Dst>
ORV_STATUS grey_pair(const ConversionJob &job, Capacity cap) {
    return run_rows<grey_row<Src, Dst>>(
        job, cap,
        plain_walk(job, Src::bytes, Src::unit_shift, Dst::bytes,
                   Dst::unit_shift));
}

// Y8 into Y8 off the copy path: the destination's row step subtracts the
// destination's own width, not the source width that was written.
ORV_STATUS y8_to_y8_rows(const ConversionJob &job) {
    const uint32_t w = job.src_width;
    const RowWalk walk{w + row_step(job.src_stride, w, 0),
                       w + row_step(job.dst_stride, job.dst_width, 0)};
    return run_rows<grey_row<FromY8, ToGrey8>>(job, {1, 1}, walk);
}

// Y12P rows move by whole pairs; both row steps subtract the bytes of W
// pixels from where the pair loop stopped (one pixel further on an odd W).
template <class Dst>
ORV_STATUS y12p_pair(const ConversionJob &job, Capacity cap) {
    const uint32_t w = job.src_width;
    const uintptr_t pairs = w / 2 + (w & 1u);
    const RowWalk walk{
        pairs * 3 + row_step(job.src_stride, (3 * w) >> 1, 0),
        pairs * 2 * Dst::bytes +
            row_step(job.dst_stride, w * Dst::bytes, Dst::unit_shift)};
    return run_rows<y12p_row<Dst>>(job, cap, walk);
}

// Keys 0x0101 and 0x0202 with equal strides and heights: one copy of
// height x stride bytes (32-bit product), no capacity test, widths ignored.
bool same_layout(const ConversionJob &job) {
    return job.src_stride == job.dst_stride &&
           job.src_height == job.dst_height;
}

ORV_STATUS copy_block(const ConversionJob &job) {
    std::memmove(job.dst, job.src, job.src_height * job.src_stride);
    return ORV_OK;
}

template <class Src> ORV_STATUS from_u16(const ConversionJob &job, uint32_t dst) {
    switch (dst) {
    case 0x01: return grey_pair<Src, ToGrey8>(job, {2, 2});
    case 0x02: return grey_pair<Src, ToGrey16>(job, {2, 1});
    case 0x03: return grey_pair<Src, ToGrey32>(job, {4, 1});
    case 0x05: case 0x0A: return grey_pair<Src, To555>(job, {2, 1});
    case 0x06: case 0x0B: return grey_pair<Src, To565>(job, {2, 1});
    case 0x07: case 0x08: case 0x0C: case 0x0D:
        return grey_pair<Src, ToBytes32>(job, {4, 1});
    case 0x09: case 0x0E: return grey_pair<Src, ToWords48>(job, {6, 1});
    case 0x0F: case 0x10: return grey_pair<Src, ToPacked30>(job, {4, 1});
    case 0x11: case 0x12: return grey_pair<Src, ToBytes24>(job, {6, 2});
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

ORV_STATUS from_y8(const ConversionJob &job, uint32_t dst) {
    switch (dst) {
    case 0x01: return same_layout(job) ? copy_block(job) : y8_to_y8_rows(job);
    case 0x02: case 0x13: case 0x14: case 0x15:
        return grey_pair<FromY8, ToGrey16>(job, {2, 1});
    case 0x03: return grey_pair<FromY8, ToGrey32>(job, {4, 1});
    case 0x05: case 0x0A: return grey_pair<FromY8, To555>(job, {2, 1});
    case 0x06: case 0x0B: return grey_pair<FromY8, To565>(job, {2, 1});
    case 0x07: case 0x08: case 0x0C: case 0x0D:
        return grey_pair<FromY8, ToBytes32>(job, {4, 1});
    case 0x09: case 0x0E: case 0x1C: case 0x1D:
        return grey_pair<FromY8, ToWords48>(job, {6, 1});
    case 0x0F: case 0x10: return grey_pair<FromY8, ToPacked30>(job, {4, 1});
    case 0x11: case 0x12: return grey_pair<FromY8, ToBytes24>(job, {3, 1});
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

ORV_STATUS from_y12p(const ConversionJob &job, uint32_t dst) {
    switch (dst) {
    case 0x06: case 0x0B: return y12p_pair<To565>(job, {6, 3});
    case 0x07: case 0x08: case 0x0C: case 0x0D:
        return y12p_pair<ToBytes32>(job, {12, 3});
    case 0x11: case 0x12: return y12p_pair<ToBytes24>(job, {3, 1});
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

} // namespace

ORV_STATUS convert_from_grey(const ConversionJob &job, uint32_t key) {
    const uint32_t dst = key & 0xFFu;
    switch (key >> 8) {
    case 0x01: return from_y8(job, dst);
    case 0x02:
        if (dst == 0x02 && same_layout(job)) return copy_block(job);
        return from_u16<FromU16<16>>(job, dst);
    case 0x13: return from_u16<FromU16<10>>(job, dst);
    case 0x14: return from_u16<FromU16<12>>(job, dst);
    case 0x15: return from_u16<FromU16<14>>(job, dst);
    case 0x1B: return from_y12p(job, dst);
    default: return ORV_ERROR_NOT_SUPPORTED;
    }
}

} // namespace orv
