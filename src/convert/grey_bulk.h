// The bulk kernels of the grey rows, written once over simd::Ops and
// compiled by each SIMD file in its own namespace.
//
// Narrowing, widening and the 5-5-5 and 5-6-5 words are lane-wise
// arithmetic on 16-bit lanes. The expansions into three or four equal
// bytes and three equal words take one vector of source bytes (or two of
// u16 samples, narrowed to bytes): every output byte is a source byte,
// chosen by a fixed map. From AVX2 on, each output vector is one dword
// permute across lanes, which brings the 16 source bytes a lane needs
// into it, and one byte shuffle within the lane, both index tables worked
// out at compile time from the map; SSE2 has no byte shuffle and expands
// into four bytes by unpacking, leaving the other expansions plain.
#ifndef ORVANE_CONVERT_GREY_BULK_H
#define ORVANE_CONVERT_GREY_BULK_H

#include "grey_rows.h"
#include "../common/simd_ops.h"

namespace orv {
inline namespace ORV_ISA {
namespace grey {

using simd::Ops;
using simd::whole_steps;
using V = Ops::V;
constexpr uint32_t W = Ops::W;

// W pixels of a u16 source narrowed to their 8-bit values, in order.
template <unsigned D> V narrowed(const uint8_t *src) {
    return Ops::truncate16(Ops::srl16<D - 8>(Ops::load(src)),
                           Ops::srl16<D - 8>(Ops::load(src + W)));
}

// W / 2 samples in 16-bit lanes: Y8 widened, a u16 source as it is.
template <class Src> V samples16(const uint8_t *src) {
    if constexpr (Src::bytes == 1) return Ops::widen8(src);
    else return Ops::load(src);
}

template <int N> V shift16(V v) {
    if constexpr (N >= 0) return Ops::sll16<N>(v);
    else return Ops::srl16<-N>(v);
}

// u16 samples into one byte each.
template <unsigned D> struct GreyBulk<FromU16<D>, ToGrey8> {
    static constexpr bool present = true;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        return whole_steps<W>(src, dst, width, 2 * W, W,
                              [](const uint8_t *s, uint8_t *d) {
                                  Ops::store(d, narrowed<D>(s));
                              });
    }
};

// The sample in a u16 word: Y8 widened, Y16 copied.
template <class Src> struct GreyBulk<Src, ToGrey16> {
    static constexpr bool present = true;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        return whole_steps<W / 2>(src, dst, width, W / 2 * Src::bytes, W,
                                  [](const uint8_t *s, uint8_t *d) {
                                      Ops::store(d, samples16<Src>(s));
                                  });
    }
};

// 5-5-5 and 5-6-5 words, the same shifts and masks as the plain rows in
// 16-bit lanes (every bit that the plain row stores lies in the low 16).
template <class Src, class Dst> V packed16(V v) {
    constexpr int D = int(Src::depth);
    if constexpr (Dst::index == kTo555)
        return Ops::or_(Ops::or_(Ops::and_(shift16<15 - D>(v), Ops::set16(0x7C00)),
                                 Ops::and_(shift16<10 - D>(v), Ops::set16(0x3E0))),
                        shift16<5 - D>(v));
    else
        return Ops::or_(Ops::or_(Ops::and_(shift16<16 - D>(v), Ops::set16(0xF800)),
                                 Ops::and_(shift16<11 - D>(v), Ops::set16(0x7E0))),
                        shift16<5 - D>(v));
}

template <class Src, class Dst> struct PackedWords {
    static constexpr bool present = true;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        return whole_steps<W / 2>(src, dst, width, W / 2 * Src::bytes, W,
                                  [](const uint8_t *s, uint8_t *d) {
                                      Ops::store(d, packed16<Src, Dst>(
                                                        samples16<Src>(s)));
                                  });
    }
};
template <class Src> struct GreyBulk<Src, To555> : PackedWords<Src, To555> {};
template <class Src> struct GreyBulk<Src, To565> : PackedWords<Src, To565> {};

#if defined(__AVX2__)

// Output byte o of a step is source byte Map::at(o); Map::ratio output
// bytes per source byte. The map never decreases, so a lane's source
// bytes start at the map of its first byte.
template <class Map> struct Expansion {
    static constexpr uint32_t ratio = Map::ratio;
    struct Tables {
        uint32_t dwords[ratio][W / 4];
        uint8_t shuffle[ratio][W];
    };
    static constexpr Tables make() {
        Tables t{};
        for (uint32_t k = 0; k < ratio; ++k)
            for (uint32_t lane = 0; lane < W / 16; ++lane) {
                const uint32_t first = W * k + 16 * lane;
                // The lane's 16-byte window, kept inside the source vector.
                uint32_t base = Map::at(first) / 4 * 4;
                if (base > W - 16) base = W - 16;
                for (uint32_t d = 0; d < 4; ++d)
                    t.dwords[k][4 * lane + d] = base / 4 + d;
                for (uint32_t b = 0; b < 16; ++b)
                    t.shuffle[k][16 * lane + b] =
                        static_cast<uint8_t>(Map::at(first + b) - base);
            }
        return t;
    }
    static constexpr Tables tables = make();
    static_assert(
        [] {
            for (uint32_t k = 0; k < ratio; ++k)
                for (uint32_t i = 0; i < W; ++i)
                    if (tables.shuffle[k][i] >= 16) return false;
            return true;
        }(),
        "every lane's bytes come from one 16-byte window");

    static void store(V source, uint8_t *dst) {
        for (uint32_t k = 0; k < ratio; ++k)
            Ops::store(dst + W * k,
                       Ops::shuffle_bytes(
                           Ops::permute_dwords(source,
                                               Ops::dwords(tables.dwords[k])),
                           Ops::bytes(tables.shuffle[k])));
    }
};

struct ThreeBytesEach { // 11, 12
    static constexpr uint32_t ratio = 3;
    static constexpr uint32_t at(uint32_t o) { return o / 3; }
};
struct FourBytesEach { // 07, 08, 0C, 0D
    static constexpr uint32_t ratio = 4;
    static constexpr uint32_t at(uint32_t o) { return o / 4; }
};
struct ThreeWordsEach { // 09, 0E, 1C, 1D: source and output in u16 words
    static constexpr uint32_t ratio = 3;
    static constexpr uint32_t at(uint32_t o) { return o / 6 * 2 + o % 2; }
};

// 8-bit values expanded to three or four equal bytes.
template <class Src, class Map> struct ExpandBytes {
    static constexpr bool present = true;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        return whole_steps<W>(src, dst, width, W * Src::bytes, W * Map::ratio,
                              [](const uint8_t *s, uint8_t *d) {
                                  if constexpr (Src::bytes == 1)
                                      Expansion<Map>::store(Ops::load(s), d);
                                  else
                                      Expansion<Map>::store(
                                          narrowed<Src::depth>(s), d);
                              });
    }
};

template <class Src> struct GreyBulk<Src, ToBytes24> : ExpandBytes<Src, ThreeBytesEach> {};
template <class Src> struct GreyBulk<Src, ToBytes32> : ExpandBytes<Src, FourBytesEach> {};

// Three equal words per pixel.
template <class Src> struct GreyBulk<Src, ToWords48> {
    static constexpr bool present = true;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        return whole_steps<W / 2>(src, dst, width, W / 2 * Src::bytes, 3 * W,
                                  [](const uint8_t *s, uint8_t *d) {
                                      Expansion<ThreeWordsEach>::store(
                                          samples16<Src>(s), d);
                                  });
    }
};

#else

// Four equal bytes by unpacking each byte with itself twice.
template <class Src> struct GreyBulk<Src, ToBytes32> {
    static constexpr bool present = true;
    static uint32_t run(const uint8_t *src, uint8_t *dst, uint32_t width) {
        return whole_steps<W>(src, dst, width, W * Src::bytes, 4 * W,
                              [](const uint8_t *s, uint8_t *d) {
                                  V p;
                                  if constexpr (Src::bytes == 1) p = Ops::load(s);
                                  else p = narrowed<Src::depth>(s);
                                  const V lo = Ops::unpacklo8(p, p);
                                  const V hi = Ops::unpackhi8(p, p);
                                  Ops::store(d, Ops::unpacklo16(lo, lo));
                                  Ops::store(d + W, Ops::unpackhi16(lo, lo));
                                  Ops::store(d + 2 * W, Ops::unpacklo16(hi, hi));
                                  Ops::store(d + 3 * W, Ops::unpackhi16(hi, hi));
                              });
    }
};

#endif

} // namespace grey
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_CONVERT_GREY_BULK_H
