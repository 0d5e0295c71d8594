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

// A pair's floored term, from its 32-bit lane into both 16-bit halves so
// that it lines up with Y0 and Y1.
inline V pair_term(V chroma, V weights) {
    const V t = Ops::sra32<10>(Ops::madd16(chroma, weights));
    return Ops::or_(Ops::and_(t, Ops::set32(0xFFFF)), Ops::sll32<16>(t));
}

// R, G and B of W / 2 pixels, 16 bits each, not yet clamped.
struct Wide {
    V r, g, b;
};

inline Wide half_step(const uint8_t *src) {
    const V s = Ops::load(src);
    const V luma = Ops::and_(s, Ops::set16(0xFF));
    const V chroma = Ops::sub16(Ops::srl16<8>(s), Ops::set16(128));
    return {Ops::add16(luma, pair_term(chroma, Ops::set32(1436u << 16))),
            Ops::sub16(luma, pair_term(chroma, Ops::set32(731u << 16 | 352u))),
            Ops::add16(luma, pair_term(chroma, Ops::set32(1815u)))};
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
    const Wide lo = half_step(src), hi = half_step(src + W);
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
        uint32_t done = 0;
        for (; width - done >= W; done += W) {
            V pixels[4];
            step_pixels<Layout>(src, pixels);
            for (uint32_t k = 0; k < 4; ++k) store(dst + k * (W / 4) * Bytes,
                                                   pixels[k]);
            src += 2 * W;
            dst += W * Bytes;
        }
        return done;
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
