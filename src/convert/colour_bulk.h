// The bulk kernels of the colour rows, written once over simd::Ops and
// compiled by the AVX2 and AVX-512 files in their own namespaces (AVX-512
// with its wider vectors, two-source permutes and byte-masked stores).
//
// Two kinds of kernel:
//  - Byte moves. BGR24 into the six 8-bit layouts and BGRX32 into BGR24
//    only move bytes: a step spreads W source pixels one per dword lane
//    over four vectors, one byte shuffle each puts every byte where the
//    destination wants it, and a 24-bit destination is closed back up to
//    three bytes a pixel.
//  - Channel planes. Every other pair reads W / 2 pixels into three
//    vectors of 16-bit samples in memory order (a 128-bit lane holds eight
//    pixels), applies the source's plain formulas lane by lane, and packs
//    the results into the destination's bytes. The formulas are those of
//    colour_rows.h: every bit that they store lies in the low 16 bits of
//    the plain u32 result, except for the 30-bit words, which are worked
//    out in 32-bit lanes.
// A step never reads or writes a byte outside the pixels the plain row
// touches; the plain row finishes whatever is left.
//
// The X byte of a 32-bit destination keeps its value: callers keep their
// alpha there. AVX-512 never writes it; AVX2 has no byte-masked store, so
// it reads the X byte and writes the same value back, as convert.h tells
// callers.
#ifndef ORVANE_CONVERT_COLOUR_BULK_H
#define ORVANE_CONVERT_COLOUR_BULK_H

#include "colour_rows.h"
#include "../common/simd_ops.h"

namespace orv {
inline namespace ORV_ISA {
namespace colour {

using simd::Ops;
using simd::whole_steps;
using V = Ops::V;
constexpr uint32_t W = Ops::W;

// ---- Compile-time shuffle tables -------------------------------------------

constexpr uint8_t kZero = 0x80; // a shuffle index that yields a zero byte

struct ByteTable {
    uint8_t at[W];
};
struct DwordTable {
    uint32_t at[W / 4];
};

// Word w of a lane takes the sample of pixel w found `offset` bytes into
// it (pixels `pixel_bytes` apart, samples `sample_bytes` wide,
// zero-extended), from a window that starts `from` bytes into the lane's
// pixels. Samples outside the window are left zero for another window's
// shuffle to supply.
constexpr ByteTable gather_samples(uint32_t pixel_bytes, uint32_t offset,
                                   uint32_t sample_bytes, uint32_t from) {
    ByteTable t{};
    for (uint32_t i = 0; i < W; ++i) {
        const uint32_t word = i % 16 / 2, byte = i % 2;
        const uint32_t at = pixel_bytes * word + offset + byte;
        t.at[i] = byte < sample_bytes && at >= from && at < from + 16
                      ? static_cast<uint8_t>(at - from)
                      : kZero;
    }
    return t;
}
template <uint32_t PixelBytes, uint32_t Offset, uint32_t SampleBytes,
          uint32_t From>
inline constexpr ByteTable kGather =
    gather_samples(PixelBytes, Offset, SampleBytes, From);

// Three-byte pixels spread one per dword lane: lane k gets source dwords
// 3k to 3k + 3, so its 16 bytes start with pixels 4k to 4k + 3.
constexpr DwordTable spread_triples() {
    DwordTable t{};
    for (uint32_t i = 0; i < W / 4; ++i) t.at[i] = i / 4 * 3 + i % 4;
    return t;
}
inline constexpr DwordTable kSpreadTriples = spread_triples();

// The reverse: the first 12 bytes of every lane closed up into 3W / 4.
constexpr DwordTable close_triples() {
    DwordTable t{};
    for (uint32_t i = 0; i < W / 4; ++i)
        t.at[i] = i < 3 * W / 16 ? i / 3 * 4 + i % 3 : 0;
    return t;
}
inline constexpr DwordTable kCloseTriples = close_triples();

// Four vectors of W / 4 pixels moved as one 3W-byte block. Loading:
// vector i spreads source dwords 12i / 16 * 16 on, from the whole vector
// where its pixels start and the one after it.
constexpr uint32_t spread_base(uint32_t i) { return 3 * W / 16 * i / (W / 4); }
constexpr DwordTable spread_group(uint32_t i) {
    DwordTable t{};
    for (uint32_t d = 0; d < W / 4; ++d)
        t.at[d] = 3 * W / 16 * i + d / 4 * 3 + d % 4 - W / 4 * spread_base(i);
    return t;
}
// Storing: output vector o closes up the triples of vectors o and o + 1;
// an index with bit W / 4 set picks from the second.
constexpr DwordTable close_group(uint32_t o) {
    DwordTable t{};
    for (uint32_t d = 0; d < W / 4; ++d) {
        const uint32_t m = W / 4 * o + d, per = 3 * W / 16;
        const uint32_t c = m % per;
        t.at[d] = c / 3 * 4 + c % 3 + (m / per > o ? W / 4 : 0);
    }
    return t;
}
constexpr int second_of_close(uint32_t o) {
    int mask = 0;
    for (uint32_t d = 0; d < W / 4; ++d)
        if (close_group(o).at[d] >= W / 4) mask |= 1 << d;
    return mask;
}
inline constexpr DwordTable kSpreadGroup[4] = {spread_group(0), spread_group(1),
                                               spread_group(2), spread_group(3)};
inline constexpr DwordTable kCloseGroup[3] = {close_group(0), close_group(1),
                                              close_group(2)};

// Bytes 0-2 of each 4-byte pixel of a lane packed into its first 12.
constexpr ByteTable squeeze_quads() {
    ByteTable t{};
    for (uint32_t i = 0; i < W; ++i) {
        const uint32_t b = i % 16;
        t.at[i] = b < 12 ? static_cast<uint8_t>(b / 3 * 4 + b % 3) : kZero;
    }
    return t;
}
inline constexpr ByteTable kSqueezeQuads = squeeze_quads();

inline V shuffle(V v, const ByteTable &t) {
    return Ops::shuffle_bytes(v, Ops::bytes(t.at));
}
inline V permute(V v, const DwordTable &t) {
    return Ops::permute_dwords(v, Ops::dwords(t.at));
}

// ---- What differs between the two instruction sets -------------------------

inline __m128i load128(const uint8_t *p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}

#if defined(__AVX512BW__)

// Blocks of three-byte pixels move as whole vectors or byte-masked
// stores: nothing past them is touched.
constexpr uint32_t kOverhang24 = 0;

// Lane k holds the 16 bytes at p + k * stride.
inline V lane_windows(const uint8_t *p, uint32_t stride) {
    V v = _mm512_castsi128_si512(load128(p));
    v = _mm512_inserti32x4(v, load128(p + stride), 1);
    v = _mm512_inserti32x4(v, load128(p + 2 * stride), 2);
    return _mm512_inserti32x4(v, load128(p + 3 * stride), 3);
}

// Stores the first 3W / 4 bytes of v; nothing after them is written.
inline void store_triples(uint8_t *p, V v) { Ops::store_first(p, v, 48); }

// 3W bytes of three-byte pixels into four vectors, one pixel per dword.
inline void load_triples4(const uint8_t *p, V (&px)[4]) {
    const V a = Ops::load(p), b = Ops::load(p + W), c = Ops::load(p + 2 * W);
    const auto spread = [](V x, uint32_t i, V y) {
        return _mm512_permutex2var_epi32(x, Ops::dwords(kSpreadGroup[i].at), y);
    };
    px[0] = spread(a, 0, b);
    px[1] = spread(a, 1, b);
    px[2] = spread(b, 2, c);
    px[3] = spread(c, 3, c);
}

// Four vectors whose lanes hold 12 bytes each, stored as 3W bytes.
inline void store_triples4(uint8_t *p, const V (&px)[4]) {
    for (uint32_t o = 0; o < 3; ++o)
        Ops::store(p + W * o,
                   _mm512_permutex2var_epi32(
                       px[o], Ops::dwords(kCloseGroup[o].at), px[o + 1]));
}

// 32-bit lanes narrowed to their low 16 bits, in memory order.
inline V narrow32(V a, V b) {
    return _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtepi32_epi16(a)),
                              _mm512_cvtepi32_epi16(b), 1);
}

inline V min16(V a, V b) { return _mm512_min_epu16(a, b); }
inline V min32(V a, V b) { return _mm512_min_epu32(a, b); }

// Three vectors whose lane k holds 16-byte chunk 3k + j of the output
// (j = 0, 1, 2), stored as 3W bytes in chunk order.
inline void store_chunks(uint8_t *p, V c0, V c1, V c2) {
    const auto two_of = [](V a, V b, __m512i pick) {
        return _mm512_permutex2var_epi64(a, pick, b);
    };
    // Chunks 0-3: c0.0 c1.0 c2.0 c0.1; 4-7: c1.1 c2.1 c0.2 c1.2;
    // 8-11: c2.2 c0.3 c1.3 c2.3. Two sources by one permute, the third
    // merged in by a second.
    Ops::store(p, _mm512_mask_permutexvar_epi64(
                      two_of(c0, c1, _mm512_setr_epi64(0, 1, 8, 9, 0, 0, 2, 3)),
                      0x30, _mm512_setr_epi64(0, 0, 0, 0, 0, 1, 0, 0), c2));
    Ops::store(p + W, _mm512_mask_permutexvar_epi64(
                          two_of(c1, c0, _mm512_setr_epi64(2, 3, 0, 0, 12, 13, 4, 5)),
                          0x0C, _mm512_setr_epi64(0, 0, 2, 3, 0, 0, 0, 0), c2));
    Ops::store(p + 2 * W, _mm512_mask_permutexvar_epi64(
                              two_of(c2, c1, _mm512_setr_epi64(4, 5, 0, 0, 14, 15, 6, 7)),
                              0x0C, _mm512_setr_epi64(0, 0, 6, 7, 0, 0, 0, 0), c0));
}

#else

// Three-bytes-a-pixel blocks are moved with whole vectors, which reach
// W / 4 bytes past the block: the pixels after it, which the next step or
// the plain row reads and writes anyway. Each kernel stops early enough to
// keep them inside the row.
constexpr uint32_t kOverhang24 = W / 4;

inline V lane_windows(const uint8_t *p, uint32_t stride) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(load128(p)),
                                   load128(p + stride), 1);
}

// The bytes past the first 3W / 4 are rewritten by the following step or
// by the plain row.
inline void store_triples(uint8_t *p, V v) { Ops::store(p, v); }

// 3W bytes of three-byte pixels into four vectors, one pixel per dword;
// the last load reaches kOverhang24 bytes past them.
inline void load_triples4(const uint8_t *p, V (&px)[4]) {
    for (uint32_t i = 0; i < 4; ++i)
        px[i] = permute(Ops::load(p + 3 * W / 4 * i), kSpreadTriples);
}

// Four vectors whose lanes hold 12 bytes each, stored as 3W bytes: each
// output vector blends the closed-up triples of two of them.
template <uint32_t O> V close_pair(V a, V b) {
    // The mask is an instruction immediate: a constant even when unoptimised.
    constexpr int mask = second_of_close(O);
    return _mm256_blend_epi32(permute(a, kCloseGroup[O]), permute(b, kCloseGroup[O]), mask);
}
inline void store_triples4(uint8_t *p, const V (&px)[4]) {
    Ops::store(p, close_pair<0>(px[0], px[1]));
    Ops::store(p + W, close_pair<1>(px[1], px[2]));
    Ops::store(p + 2 * W, close_pair<2>(px[2], px[3]));
}

// Only for samples below 0x8000, which the signed pack keeps as they are.
inline V narrow32(V a, V b) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi32(a, b),
                                    _MM_SHUFFLE(3, 1, 2, 0));
}

inline V min16(V a, V b) { return _mm256_min_epu16(a, b); }
inline V min32(V a, V b) { return _mm256_min_epu32(a, b); }

inline void store_chunks(uint8_t *p, V c0, V c1, V c2) {
    Ops::store(p, _mm256_permute2x128_si256(c0, c1, 0x20));
    Ops::store(p + W, _mm256_permute2x128_si256(c2, c0, 0x30));
    Ops::store(p + 2 * W, _mm256_permute2x128_si256(c1, c2, 0x31));
}

#endif

// Pixels a step must leave after it for the overhang of its 24-bit moves.
constexpr uint32_t kRoom24 = (kOverhang24 + 2) / 3;

// ---- Byte moves ------------------------------------------------------------

// Byte b of a lane's output: channel byte b % Bytes of the lane's pixel
// b / Bytes, taken from that pixel's source byte SR, SG or SB. 24-bit
// output fills the first 12 bytes of each lane.
template <uint32_t SrcBytes, unsigned SR, unsigned SG, unsigned SB,
          unsigned R, unsigned G, unsigned B, uint32_t Bytes>
constexpr ByteTable byte_moves() {
    ByteTable t{};
    for (uint32_t i = 0; i < W; ++i) {
        const uint32_t b = i % 16, pixel = b / Bytes, at = b % Bytes;
        const uint32_t from = at == R ? SR : at == G ? SG : SB;
        t.at[i] = pixel < 4 && (at == R || at == G || at == B)
                      ? static_cast<uint8_t>(pixel * SrcBytes + from)
                      : kZero;
    }
    return t;
}
template <uint32_t SrcBytes, unsigned SR, unsigned SG, unsigned SB,
          unsigned R, unsigned G, unsigned B, uint32_t Bytes>
inline constexpr ByteTable kByteMoves =
    byte_moves<SrcBytes, SR, SG, SB, R, G, B, Bytes>();

// Source pixels of SrcBytes bytes whose R, G and B bytes sit at SR, SG and
// SB, into a byte layout.
template <uint32_t SrcBytes, unsigned SR, unsigned SG, unsigned SB,
          class Layout>
struct ByteMoves;

template <uint32_t SrcBytes, unsigned SR, unsigned SG, unsigned SB,
          unsigned R, unsigned G, unsigned B, uint32_t Bytes>
struct ByteMoves<SrcBytes, SR, SG, SB, ByteLayout<R, G, B, Bytes>> {
    static constexpr bool present = true;

    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        constexpr uint32_t room = SrcBytes == 3 ? kRoom24 : 0;
        return whole_steps<W, room>(
            src, dst, width, W * SrcBytes, W * Bytes,
            [](const uint8_t *s, uint8_t *d) {
                V px[4];
                if constexpr (SrcBytes == 3)
                    load_triples4(s, px);
                else
                    for (uint32_t i = 0; i < 4; ++i) px[i] = Ops::load(s + W * i);
                for (V &v : px)
                    v = shuffle(v, kByteMoves<SrcBytes, SR, SG, SB, R, G, B, Bytes>);
                if constexpr (Bytes == 3)
                    store_triples4(d, px);
                else
                    for (uint32_t i = 0; i < 4; ++i)
                        Ops::store_bytes_of_quads(d + W * i, px[i],
                                        (1u << R) | (1u << G) | (1u << B));
            });
    }
};

// ---- Channel planes --------------------------------------------------------

// W / 2 samples of each channel in 16-bit lanes, in memory order.
struct Planes {
    V r, g, b;
};

// The 0/1 presence flags of the plain rows.
inline V flag16(V v) { return min16(v, Ops::set16(1)); }
inline V flag32(V v) { return min32(v, Ops::set32(1)); }

inline V or3(V a, V b, V c) { return Ops::or_(Ops::or_(a, b), c); }

// A source's formulas of colour_rows.h over 16-bit lanes; pack30 takes
// samples widened to 32-bit lanes.
template <class Src> struct Formulas;

template <> struct Formulas<FromBgr24> {
    static V to_byte(V v) { return v; }
    static V to_word(V v) { return v; }
    static V pack15(V hi, V g, V lo) {
        return or3(Ops::and_(Ops::sll16<7>(hi), Ops::set16(0x7C00)),
                   Ops::and_(Ops::sll16<2>(g), Ops::set16(0x3E0)),
                   Ops::srl16<3>(lo));
    }
    static V pack16(V hi, V g, V lo) {
        return or3(Ops::and_(Ops::sll16<8>(hi), Ops::set16(0xF800)),
                   Ops::and_(Ops::sll16<3>(g), Ops::set16(0x7E0)),
                   Ops::srl16<3>(lo));
    }
    static V pack30(V hi, V g, V lo) {
        return or3(Ops::sll32<22>(hi), Ops::sll32<10>(g), lo);
    }
};

template <> struct Formulas<FromBgr48> {
    static V to_byte(V v) { return Ops::srl16<8>(v); }
    static V to_word(V v) { return v; }
    static V pack15(V, V, V lo) { return Ops::srl16<11>(lo); }
    static V pack16(V hi, V, V lo) {
        return Ops::or_(Ops::srl16<11>(lo), flag16(hi));
    }
    static V pack30(V hi, V g, V lo) {
        return or3(Ops::srl32<6>(lo), Ops::sll32<6>(flag32(g)),
                   Ops::sll32<16>(flag32(hi)));
    }
};

// Bits above the twelfth are not masked: to_byte keeps the low 8 bits of
// v >> 4 and to_word drops what v << 4 pushes out of 16 bits.
template <> struct Formulas<FromBgr36> {
    static V to_byte(V v) {
        return Ops::and_(Ops::srl16<4>(v), Ops::set16(0xFF));
    }
    static V to_word(V v) { return Ops::sll16<4>(v); }
    static V pack15(V hi, V, V lo) {
        return Ops::or_(Ops::srl16<7>(lo), Ops::sll16<3>(flag16(hi)));
    }
    static V pack16(V hi, V, V lo) {
        return Ops::or_(Ops::srl16<7>(lo), Ops::sll16<4>(flag16(hi)));
    }
    static V pack30(V hi, V g, V lo) {
        return or3(Ops::srl32<2>(lo), Ops::sll32<10>(flag32(g)),
                   Ops::sll32<20>(flag32(hi)));
    }
};

// Its 30-bit destinations are byte moves of whole words, below.
template <> struct Formulas<FromRgb30> {
    static V to_byte(V v) { return Ops::srl16<2>(v); }
    static V to_word(V v) { return v; }
    static V pack15(V hi, V g, V lo) {
        return or3(Ops::sll16<10>(Ops::srl16<5>(hi)),
                   Ops::sll16<5>(Ops::srl16<5>(g)), Ops::srl16<5>(lo));
    }
    static V pack16(V hi, V g, V lo) {
        return or3(Ops::sll16<11>(Ops::srl16<5>(hi)),
                   Ops::sll16<5>(Ops::srl16<4>(g)), Ops::srl16<5>(lo));
    }
};

// Readers: W / 2 pixels into planes, reading exactly their bytes.

// Eight 3-byte pixels (24 bytes) per lane, from two 16-byte windows.
struct ReadBgr24 {
    template <uint32_t Offset> static V channel(V x, V y) {
        return Ops::or_(shuffle(x, kGather<3, Offset, 1, 0>),
                        shuffle(y, kGather<3, Offset, 1, 8>));
    }
    static Planes read(const uint8_t *s) {
        const V x = lane_windows(s, 24), y = lane_windows(s + 8, 24);
        return {channel<2>(x, y), channel<1>(x, y), channel<0>(x, y)};
    }
};

// Eight 6-byte pixels (48 bytes) per lane, from three 16-byte windows.
struct ReadBgr48 {
    template <uint32_t Offset> static V channel(V x0, V x1, V x2) {
        return or3(shuffle(x0, kGather<6, Offset, 2, 0>),
                   shuffle(x1, kGather<6, Offset, 2, 16>),
                   shuffle(x2, kGather<6, Offset, 2, 32>));
    }
    static Planes read(const uint8_t *s) {
        const V x0 = lane_windows(s, 48), x1 = lane_windows(s + 16, 48),
                x2 = lane_windows(s + 32, 48);
        return {channel<4>(x0, x1, x2), channel<2>(x0, x1, x2),
                channel<0>(x0, x1, x2)};
    }
};

// One u32 per pixel; the 10-bit fields are cut out in 32-bit lanes.
inline V red30(V v) { return Ops::srl32<22>(v); }
inline V green30(V v) { return Ops::and_(Ops::srl32<12>(v), Ops::set32(0x3FF)); }
inline V blue30(V v) { return Ops::and_(v, Ops::set32(0x3FF)); }

struct ReadRgb30 {
    static Planes read(const uint8_t *s) {
        const V a = Ops::load(s), b = Ops::load(s + W);
        return {narrow32(red30(a), red30(b)), narrow32(green30(a), green30(b)),
                narrow32(blue30(a), blue30(b))};
    }
};

// RGB30 into RGB48: R from each pixel, G and B from the next one, so a
// step reads the u32 after its last pixel, as the plain row does.
struct ReadRgb30ThenNext {
    static Planes read(const uint8_t *s) {
        const V a = Ops::load(s), b = Ops::load(s + W);
        const V na = Ops::load(s + 4), nb = Ops::load(s + W + 4);
        return {narrow32(red30(a), red30(b)), narrow32(green30(na), green30(nb)),
                narrow32(blue30(na), blue30(nb))};
    }
};

template <class Src> struct Reader;
template <> struct Reader<FromBgr24> : ReadBgr24 {};
template <> struct Reader<FromBgr48> : ReadBgr48 {};
template <> struct Reader<FromBgr36> : ReadBgr48 {};
template <> struct Reader<FromRgb30> : ReadRgb30 {};

// The channels a packed word carries in its top and bottom fields.
template <class Order> V high_field(const Planes &p);
template <class Order> V low_field(const Planes &p);
template <> inline V high_field<RedHigh>(const Planes &p) { return p.r; }
template <> inline V low_field<RedHigh>(const Planes &p) { return p.b; }
template <> inline V high_field<BlueHigh>(const Planes &p) { return p.b; }
template <> inline V low_field<BlueHigh>(const Planes &p) { return p.r; }

// Writers: W / 2 pixels from planes. `room` is the pixels that must
// follow a step.
template <class Dst> struct Writer;

template <class Order> struct Writer<To15<Order>> {
    static constexpr uint32_t room = 0;
    template <class Src> static void put(uint8_t *d, const Planes &p) {
        Ops::store(d, Formulas<Src>::pack15(high_field<Order>(p), p.g,
                                            low_field<Order>(p)));
    }
};

template <class Order> struct Writer<To16<Order>> {
    static constexpr uint32_t room = 0;
    template <class Src> static void put(uint8_t *d, const Planes &p) {
        Ops::store(d, Formulas<Src>::pack16(high_field<Order>(p), p.g,
                                            low_field<Order>(p)));
    }
};

// Each half of a lane's eight pixels widened to 32-bit lanes; the halves
// are put back in memory order before they are stored.
template <class Order> struct Writer<To30<Order>> {
    static constexpr uint32_t room = 0;
    template <class Src> static void put(uint8_t *d, const Planes &p) {
        const V zero = Ops::set32(0);
        const V hi = high_field<Order>(p), lo = low_field<Order>(p);
        const V first4 = Formulas<Src>::pack30(Ops::unpacklo16(hi, zero),
                                               Ops::unpacklo16(p.g, zero),
                                               Ops::unpacklo16(lo, zero));
        const V last4 = Formulas<Src>::pack30(Ops::unpackhi16(hi, zero),
                                              Ops::unpackhi16(p.g, zero),
                                              Ops::unpackhi16(lo, zero));
        V first, second;
        Ops::zip_lanes(first4, last4, first, second);
        Ops::store(d, first);
        Ops::store(d + W, second);
    }
};

// The bytes built into 4-byte pixels, channel bytes where the layout
// keeps them and zero elsewhere, then stored without the X byte or
// squeezed to three bytes.
template <unsigned R, unsigned G, unsigned B, uint32_t Bytes>
struct Writer<ToBytes<ByteLayout<R, G, B, Bytes>>> {
    static constexpr uint32_t room = Bytes == 3 ? kRoom24 : 0;
    static void store(uint8_t *d, V pixels) {
        if constexpr (Bytes == 3)
            store_triples(d, permute(shuffle(pixels, kSqueezeQuads),
                                     kCloseTriples));
        else
            Ops::store_bytes_of_quads(d, pixels, (1u << R) | (1u << G) | (1u << B));
    }
    template <class Src> static void put(uint8_t *d, const Planes &p) {
        const V zero = Ops::set32(0);
        V at[4] = {zero, zero, zero, zero};
        at[R] = Formulas<Src>::to_byte(p.r);
        at[G] = Formulas<Src>::to_byte(p.g);
        at[B] = Formulas<Src>::to_byte(p.b);
        const V bytes01 = Ops::or_(at[0], Ops::sll16<8>(at[1]));
        const V bytes23 = Ops::or_(at[2], Ops::sll16<8>(at[3]));
        V first, second;
        Ops::zip_lanes(Ops::unpacklo16(bytes01, bytes23),
                       Ops::unpackhi16(bytes01, bytes23), first, second);
        store(d, first);
        store(d + W / 4 * Bytes, second);
    }
};

// Three words a pixel: a lane's eight pixels fill three 16-byte chunks,
// each gathered from the three word vectors.
template <unsigned R, unsigned G, unsigned B> struct Writer<ToWords48<R, G, B>> {
    static constexpr uint32_t room = 0;
    // Byte b of chunk `chunk`: byte 16 * chunk + b of the lane's 48, if it
    // belongs to word `word` of its pixel.
    static constexpr ByteTable make_words(uint32_t chunk, uint32_t word) {
        ByteTable t{};
        for (uint32_t i = 0; i < W; ++i) {
            const uint32_t at = 16 * chunk + i % 16;
            t.at[i] = at % 6 / 2 == word
                          ? static_cast<uint8_t>(at / 6 * 2 + at % 2)
                          : kZero;
        }
        return t;
    }
    template <uint32_t Chunk> static V chunk(const V (&words)[3]) {
        static constexpr ByteTable t0 = make_words(Chunk, 0),
                                   t1 = make_words(Chunk, 1),
                                   t2 = make_words(Chunk, 2);
        return or3(shuffle(words[0], t0), shuffle(words[1], t1),
                   shuffle(words[2], t2));
    }
    template <class Src> static void put(uint8_t *d, const Planes &p) {
        V words[3];
        words[R] = Formulas<Src>::to_word(p.r);
        words[G] = Formulas<Src>::to_word(p.g);
        words[B] = Formulas<Src>::to_word(p.b);
        store_chunks(d, chunk<0>(words), chunk<1>(words), chunk<2>(words));
    }
};

template <class Read, class Src, class Dst> struct PlanesBulk {
    static constexpr bool present = true;
    static constexpr uint32_t P = W / 2;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        return whole_steps<P, Writer<Dst>::room>(
            src, dst, width, P * Src::bytes, P * Dst::bytes,
            [](const uint8_t *s, uint8_t *d) {
                Writer<Dst>::template put<Src>(d, Read::read(s));
            });
    }
};

// ---- RGB30 words -----------------------------------------------------------

// RGB30 into RGB30 and BGR30: the word as it is, or with bits 0-9 and
// 22-31 exchanged.
template <bool Exchange> struct Rgb30Words {
    static constexpr bool present = true;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        return whole_steps<W / 4, 0>(
            src, dst, width, W, W, [](const uint8_t *s, uint8_t *d) {
                const V v = Ops::load(s);
                if constexpr (Exchange)
                    Ops::store(d, or3(Ops::sll32<22>(v),
                                      Ops::and_(v, Ops::set32(0x3FFC00)),
                                      Ops::srl32<22>(v)));
                else
                    Ops::store(d, v);
            });
    }
};

// ---- The pairs -------------------------------------------------------------

template <class Src, class Dst>
struct BulkOf : PlanesBulk<Reader<Src>, Src, Dst> {};

// BGR24 into 8-bit layouts: bytes 2, 1, 0 are R, G, B.
template <class Layout>
struct BulkOf<FromBgr24, ToBytes<Layout>> : ByteMoves<3, 2, 1, 0, Layout> {};

template <>
struct BulkOf<FromRgb30, ToRgb48>
    : PlanesBulk<ReadRgb30ThenNext, FromRgb30, ToRgb48> {};
template <> struct BulkOf<FromRgb30, ToRgb30> : Rgb30Words<false> {};
template <> struct BulkOf<FromRgb30, ToBgr30> : Rgb30Words<true> {};

template <class Dst> struct ColourBulk<FromBgr24, Dst> : BulkOf<FromBgr24, Dst> {};
template <class Dst> struct ColourBulk<FromBgr48, Dst> : BulkOf<FromBgr48, Dst> {};
template <class Dst> struct ColourBulk<FromBgr36, Dst> : BulkOf<FromBgr36, Dst> {};
template <class Dst> struct ColourBulk<FromRgb30, Dst> : BulkOf<FromRgb30, Dst> {};

// BGRX32 into BGR24 writes source bytes 2, 1, 0: moved as a source whose
// R sits in byte 0 and B in byte 2.
template <>
struct ColourBulk<FromBgrx32, ToBgr24> : ByteMoves<4, 0, 1, 2, LayoutBgr24> {};

} // namespace colour
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_CONVERT_COLOUR_BULK_H
