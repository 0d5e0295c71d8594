// The bulk kernel of the YUV 4:2:2 rows, written once over simd::Ops and
// compiled by each wide instruction set's file in its own namespace.
//
// A step converts W pixels (2W source bytes) in 16-bit lanes, as the SSE2
// kernel does: a chroma vector holds d, e, d, e, ... so one multiply-add
// per term gives each pair's product sum in a 32-bit lane, and an
// arithmetic shift by 10 floors it exactly as floor_div_1024 does.
// Saturating packs clamp to 0..255; the channel bytes are interleaved into
// 4-byte pixels and put back in memory order. 32-bit layouts store the
// three channel bytes of each pixel and never the X byte (AVX2, which has
// no byte-masked store, writes the X byte back with the value it read);
// 24-bit layouts squeeze each pixel to three bytes.
#ifndef ORVANE_CONVERT_YUV422_BULK_H
#define ORVANE_CONVERT_YUV422_BULK_H

#include "../common/simd_ops.h"
#include "yuv422_rows.h"

namespace orv {
inline namespace ORV_ISA {
namespace yuv422 {

using simd::Ops;
using V = Ops::V;
constexpr uint32_t W = Ops::W;

// The floored terms of the pairs of two vectors of source bytes, each
// pair's term in both 16-bit halves of its 32-bit lane so that it lines
// up with Y0 and Y1. Every term lies within +-256, so the signed pack
// keeps it exactly.
struct PairTerms {
    V lo, hi;
};

inline PairTerms pair_terms(V chroma_lo, V chroma_hi, V weights) {
    const V packed =
        Ops::packs32(Ops::sra32<10>(Ops::madd16(chroma_lo, weights)),
                     Ops::sra32<10>(Ops::madd16(chroma_hi, weights)));
    return {Ops::unpacklo16(packed, packed), Ops::unpackhi16(packed, packed)};
}

// R, G and B of W / 2 pixels, 16 bits each, not yet clamped.
struct Wide {
    V r, g, b;
};

// The two halves of a step: W / 2 pixels from each W source bytes.
struct Halves {
    Wide lo, hi;
};

inline Halves step_channels(const uint8_t *src) {
    const V byte_mask = Ops::set16(0xFF), offset = Ops::set16(128);
    const V s_lo = Ops::load(src), s_hi = Ops::load(src + W);
    const V luma_lo = Ops::and_(s_lo, byte_mask);
    const V luma_hi = Ops::and_(s_hi, byte_mask);
    const V chroma_lo = Ops::sub16(Ops::srl16<8>(s_lo), offset);
    const V chroma_hi = Ops::sub16(Ops::srl16<8>(s_hi), offset);
    const PairTerms r = pair_terms(chroma_lo, chroma_hi, Ops::set32(1436u << 16));
    const PairTerms g = pair_terms(chroma_lo, chroma_hi, Ops::set32(731u << 16 | 352u));
    const PairTerms b = pair_terms(chroma_lo, chroma_hi, Ops::set32(1815u));
    return {{Ops::add16(luma_lo, r.lo), Ops::sub16(luma_lo, g.lo),
             Ops::add16(luma_lo, b.lo)},
            {Ops::add16(luma_hi, r.hi), Ops::sub16(luma_hi, g.hi),
             Ops::add16(luma_hi, b.hi)}};
}

template <class Layout> struct Channels;
template <unsigned R, unsigned G, unsigned B, uint32_t Bytes>
struct Channels<ByteLayout<R, G, B, Bytes>> {
    static constexpr unsigned r = R, g = G, b = B;
    static constexpr unsigned keep4 = (1u << R) | (1u << G) | (1u << B);
};

// W pixels as four vectors of 4-byte pixels in memory order, each laid
// out as the layout's; a 24-bit layout's fourth byte and a 32-bit
// layout's X byte are zero.
template <class Layout> void step_pixels(const uint8_t *src, V (&out)[4]) {
    using C = Channels<Layout>;
    const Halves h = step_channels(src);
    const Wide &lo = h.lo, &hi = h.hi;
    const V zero = Ops::set32(0);
    V at[4] = {zero, zero, zero, zero};
    at[C::r] = Ops::packus16(lo.r, hi.r);
    at[C::g] = Ops::packus16(lo.g, hi.g);
    at[C::b] = Ops::packus16(lo.b, hi.b);
    // Packs and unpacks work lane by lane: lane j holds pixels 8j to 8j + 7
    // of each half.
    const V lo01 = Ops::unpacklo8(at[0], at[1]);
    const V lo23 = Ops::unpacklo8(at[2], at[3]);
    const V hi01 = Ops::unpackhi8(at[0], at[1]);
    const V hi23 = Ops::unpackhi8(at[2], at[3]);
    Ops::zip_lanes(Ops::unpacklo16(lo01, lo23), Ops::unpackhi16(lo01, lo23),
                   out[0], out[1]);
    Ops::zip_lanes(Ops::unpacklo16(hi01, hi23), Ops::unpackhi16(hi01, hi23),
                   out[2], out[3]);
}

// The byte shuffle that keeps bytes 0-2 of each pixel at the bottom of its
// lane, and the dword permute that closes the gaps between lanes.
struct Squeeze {
    uint8_t shuffle[W];
    uint32_t dwords[W / 4];
};
constexpr Squeeze make_squeeze() {
    Squeeze s{};
    for (uint32_t i = 0; i < W; ++i) {
        const uint32_t b = i % 16;
        s.shuffle[i] = b < 12 ? static_cast<uint8_t>(b / 3 * 4 + b % 3) : 0x80;
    }
    for (uint32_t d = 0; d < W / 4; ++d) s.dwords[d] = d / 3 * 4 + d % 3;
    return s;
}
constexpr Squeeze kSqueeze = make_squeeze();

template <unsigned R, unsigned G, unsigned B, uint32_t Bytes>
struct YuvBulk<ByteLayout<R, G, B, Bytes>> {
    using Layout = ByteLayout<R, G, B, Bytes>;
    static constexpr bool present = true;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        return simd::whole_steps<W>(src, dst, width, 2 * W, W * Bytes,
                                    [](const uint8_t *s, uint8_t *d) {
                                        V pixels[4];
                                        step_pixels<Layout>(s, pixels);
                                        for (uint32_t k = 0; k < 4; ++k)
                                            store(d + k * (W / 4) * Bytes,
                                                  pixels[k]);
                                    });
    }
    static void store(uint8_t *dst, V pixels) {
        if constexpr (Bytes == 4) {
            Ops::store_bytes_of_quads(dst, pixels, Channels<Layout>::keep4);
        } else {
            const V squeezed = Ops::permute_dwords(
                Ops::shuffle_bytes(pixels, Ops::bytes(kSqueeze.shuffle)),
                Ops::dwords(kSqueeze.dwords));
            Ops::store_first(dst, squeezed, W / 4 * 3);
        }
    }
};

} // namespace yuv422
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_CONVERT_YUV422_BULK_H
