// The SSE2 bulk kernel of the YUV 4:2:2 rows. Included by
// kernels_sse2.cpp only, before the table is built.
#include "../yuv422_rows.h"

#include <cstring>
#include <emmintrin.h>

namespace orv {
inline namespace ORV_ISA {
namespace yuv422 {

// ---- YUV 4:2:2, sixteen pixels at a time -----------------------------------
//
// Eight pairs (32 source bytes) per step, in 16-bit lanes: a chroma
// vector holds d, e, d, e, ... so one multiply-add per term gives each
// pair's product sum in a 32-bit lane, and an arithmetic shift by 10
// floors it exactly as floor_div_1024 does. Saturating packs clamp to
// 0..255. Whatever is left after the last whole step, odd final pair
// included, goes through yuv422_row, so both read and write the same bytes.

// Where a layout keeps its channels, as compile-time byte offsets.
template <class Layout> struct ChannelOffsets;
template <unsigned R, unsigned G, unsigned B, uint32_t Bytes>
struct ChannelOffsets<ByteLayout<R, G, B, Bytes>> {
    static constexpr unsigned r = R, g = G, b = B;
    // The first of the three channel bytes: a pixel's written bytes are
    // this one and the two after it.
    static constexpr unsigned first = R < G ? (R < B ? R : B) : (G < B ? G : B);
};

// A pair's floored term, held in a 32-bit lane, copied into both of its
// 16-bit halves so that it lines up with Y0 and Y1.
inline __m128i pair_term(__m128i chroma, __m128i weights) {
    const __m128i t = _mm_srai_epi32(_mm_madd_epi16(chroma, weights), 10);
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(t, _MM_SHUFFLE(2, 2, 0, 0)),
                               _MM_SHUFFLE(2, 2, 0, 0));
}

// The R, G and B values of the eight pixels of four pairs, 16 bits each,
// not yet clamped.
struct Wide {
    __m128i r, g, b;
};

inline Wide four_pairs(const uint8_t *src) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src));
    const __m128i luma = _mm_and_si128(s, _mm_set1_epi16(0xFF));
    const __m128i chroma =
        _mm_sub_epi16(_mm_srli_epi16(s, 8), _mm_set1_epi16(128));
    // Weights for (d, e) in each 32-bit lane.
    const __m128i r_weights = _mm_set1_epi32(1436 << 16);
    const __m128i g_weights = _mm_set1_epi32(731 << 16 | 352);
    const __m128i b_weights = _mm_set1_epi32(1815);
    return {_mm_add_epi16(luma, pair_term(chroma, r_weights)),
            _mm_sub_epi16(luma, pair_term(chroma, g_weights)),
            _mm_add_epi16(luma, pair_term(chroma, b_weights))};
}

// The sixteen pixels of eight pairs as four vectors of four pixels, each
// pixel four bytes laid out as the layout's; a 24-bit layout's fourth byte
// and a 32-bit layout's X byte are zero here.
struct Pixels {
    __m128i quad[4];
};

template <class Layout> Pixels eight_pairs(const uint8_t *src) {
    using Offsets = ChannelOffsets<Layout>;
    const Wide lo = four_pairs(src), hi = four_pairs(src + 16);
    __m128i at[4] = {_mm_setzero_si128(), _mm_setzero_si128(),
                     _mm_setzero_si128(), _mm_setzero_si128()};
    at[Offsets::r] = _mm_packus_epi16(lo.r, hi.r);
    at[Offsets::g] = _mm_packus_epi16(lo.g, hi.g);
    at[Offsets::b] = _mm_packus_epi16(lo.b, hi.b);
    const __m128i lo01 = _mm_unpacklo_epi8(at[0], at[1]);
    const __m128i lo23 = _mm_unpacklo_epi8(at[2], at[3]);
    const __m128i hi01 = _mm_unpackhi_epi8(at[0], at[1]);
    const __m128i hi23 = _mm_unpackhi_epi8(at[2], at[3]);
    return {{_mm_unpacklo_epi16(lo01, lo23), _mm_unpackhi_epi16(lo01, lo23),
             _mm_unpacklo_epi16(hi01, hi23), _mm_unpackhi_epi16(hi01, hi23)}};
}

// Four 4-byte pixels (fourth byte zero) squeezed into their 12 bytes at
// the bottom of the vector; the top four bytes are zero.
inline __m128i squeeze_to_triples(__m128i quad) {
    // Within each 64-bit half: the first pixel's three bytes, then the
    // second's moved down by one byte.
    const int top_byte = static_cast<int>(0xFF000000u);
    const __m128i halves = _mm_or_si128(
        _mm_and_si128(quad, _mm_set_epi32(0, -1, 0, -1)),
        _mm_and_si128(_mm_srli_epi64(quad, 8),
                      _mm_set_epi32(0x00FFFFFF, top_byte, 0x00FFFFFF,
                                    top_byte)));
    // The upper half's six bytes moved down against the lower half's.
    return _mm_or_si128(
        _mm_and_si128(halves, _mm_set_epi32(0, 0, 0xFFFF, -1)),
        _mm_and_si128(_mm_srli_si128(halves, 2),
                      _mm_set_epi32(0, -1, static_cast<int>(0xFFFF0000u), 0)));
}

// 24-bit layouts: 48 bytes, every one of them written, in three stores.
inline void store_triples(const Pixels &p, uint8_t *dst) {
    const __m128i t0 = squeeze_to_triples(p.quad[0]);
    const __m128i t1 = squeeze_to_triples(p.quad[1]);
    const __m128i t2 = squeeze_to_triples(p.quad[2]);
    const __m128i t3 = squeeze_to_triples(p.quad[3]);
    __m128i *out = reinterpret_cast<__m128i *>(dst);
    _mm_storeu_si128(out, _mm_or_si128(t0, _mm_slli_si128(t1, 12)));
    _mm_storeu_si128(out + 1, _mm_or_si128(_mm_srli_si128(t1, 4),
                                           _mm_slli_si128(t2, 8)));
    _mm_storeu_si128(out + 2, _mm_or_si128(_mm_srli_si128(t2, 8),
                                           _mm_slli_si128(t3, 4)));
}

// 32-bit layouts: the X bytes are never written, since callers keep their
// alpha there, so each pixel's three channel bytes are copied out on their
// own and no vector store touches the destination.
template <unsigned First> void store_quads(const Pixels &p, uint8_t *dst) {
    uint8_t staged[64];
    for (int q = 0; q < 4; ++q)
        _mm_storeu_si128(reinterpret_cast<__m128i *>(staged + 16 * q),
                         p.quad[q]);
    for (unsigned i = 0; i < 16; ++i)
        std::memcpy(dst + 4 * i + First, staged + 4 * i + First, 3);
}

template <class Layout> void store_pixels(const Pixels &p, uint8_t *dst) {
    if constexpr (Layout::bytes == 3)
        store_triples(p, dst);
    else
        store_quads<ChannelOffsets<Layout>::first>(p, dst);
}


// yuv422_row's bulk twin: the same bytes read and written, sixteen pixels
// a step; the plain row finishes the line, odd final pair included.
template <unsigned R, unsigned G, unsigned B, uint32_t Bytes>
struct YuvBulk<ByteLayout<R, G, B, Bytes>> {
    using Layout = ByteLayout<R, G, B, Bytes>;
    static constexpr bool present = true;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        const uint32_t steps = width / 16;
        for (uint32_t s = 0; s < steps; ++s) {
            store_pixels<Layout>(eight_pairs<Layout>(src), dst);
            src += 32;
            dst += 16 * Layout::bytes;
        }
        return 16 * steps;
    }
};

} // namespace yuv422
} // namespace ORV_ISA
} // namespace orv
