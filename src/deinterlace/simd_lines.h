// The vector twins of the mean line and of the runs of neighbourhood
// values (the weighted kernel's and the median's), written once over
// simd::Ops: Ops::W bytes a step while a whole step fits, then the plain
// byte loop for the rest. Included only by the SIMD
// files, each of which builds its table with them.
#ifndef ORVANE_DEINTERLACE_SIMD_LINES_H
#define ORVANE_DEINTERLACE_SIMD_LINES_H

#include "byte_lines.h"
#include "../common/simd_ops.h"

namespace orv {
inline namespace ORV_ISA {
namespace field_lines {

// average_lines' twin. The average of two bytes rounded up, less one where
// their sum is odd, is their mean rounded down.
template <class Ops>
uintptr_t vector_average_lines(const uint8_t *above, uint32_t stride,
                               uint8_t *out) {
    const uint8_t *below = advance(above, stride);
    const typename Ops::V one = Ops::splat8(1);
    uint32_t i = 0;
    for (; stride - i >= Ops::W; i += Ops::W) {
        const typename Ops::V x = Ops::load(above + i), y = Ops::load(below + i);
        const typename Ops::V odd = Ops::and_(Ops::xor_(x, y), one);
        Ops::store(out + i, Ops::sub8(Ops::avg8(x, y), odd));
    }
    mean_run(above, below, i, stride, out);
    return stride;
}

// A step's side neighbours in one field line, as Spacing places them.
template <class Ops, class Spacing> struct VectorSides;

template <class Ops, uint32_t D> struct VectorSides<Ops, Apart<D>> {
    static void load(const uint8_t *p, uint32_t i, typename Ops::V &left,
                     typename Ops::V &right) {
        left = Ops::load(p + i - D);
        right = Ops::load(p + i + D);
    }
};

// Steps start on even bytes, so the even bytes of a vector are luma. A
// step ends on a chroma byte and the run on a luma byte, so a step inside
// the run ends on its last chroma byte at the latest, whose right
// neighbour the plain loop reads too.
template <class Ops> struct VectorSides<Ops, LumaChroma> {
    using V = typename Ops::V;
    // The bytes of `luma` at even positions, of `chroma` at odd ones.
    static V interleave(V luma, V chroma) {
        const V even = Ops::set16(0x00FF);
        return Ops::xor_(chroma, Ops::and_(Ops::xor_(chroma, luma), even));
    }
    static void load(const uint8_t *p, uint32_t i, V &left, V &right) {
        left = interleave(Ops::load(p + i - 2), Ops::load(p + i - 4));
        right = interleave(Ops::load(p + i + 2), Ops::load(p + i + 4));
    }
};

// The weighted kernel of W bytes at once.
template <class Ops> struct VectorWeighted {
    using V = typename Ops::V;

    // The 16-bit sums of the bytes of x and y in the low or the high half
    // of each lane.
    static V sum_lo(V x, V y) {
        return Ops::add16(Ops::unpacklo8(x, Ops::zero()),
                          Ops::unpacklo8(y, Ops::zero()));
    }
    static V sum_hi(V x, V y) {
        return Ops::add16(Ops::unpackhi8(x, Ops::zero()),
                          Ops::unpackhi8(y, Ops::zero()));
    }

    // 105 c + 75 s is 15 (7 c + 5 s); 7 c + 5 s stays below 8671, and the
    // high half of its product with 1920 is exactly
    // floor(15 (7 c + 5 s) / 512).
    static V weighted(V centre, V sides) {
        const V t = Ops::add16(Ops::mullo16(centre, Ops::set16(7)),
                               Ops::mullo16(sides, Ops::set16(5)));
        return Ops::mulhi16(t, Ops::set16(1920));
    }

    // The sums of each half of a lane are packed back into that lane, so
    // the bytes come out in order.
    static V of(V al, V ac, V ar, V bl, V bc, V br) {
        const V lo = weighted(sum_lo(ac, bc),
                              Ops::add16(sum_lo(al, bl), sum_lo(ar, br)));
        const V hi = weighted(sum_hi(ac, bc),
                              Ops::add16(sum_hi(al, bl), sum_hi(ar, br)));
        return Ops::packus16(lo, hi);
    }
};

// The median of six of W bytes at once, by a min/max network with no
// branch. Each column (a byte and the one below it) is ordered into a low
// and a high. The least low is the smallest of the six and the greatest
// high the largest; the two other lows and the two other highs are the
// third and fourth smallest's only candidates, and those two are the
// middle pair of these four. Ties need no care: every step keeps the
// multiset of values. The mean rounds down as in vector_average_lines.
template <class Ops> struct VectorMedian {
    using V = typename Ops::V;

    static V of(V al, V ac, V ar, V bl, V bc, V br) {
        const V lo_l = Ops::min8(al, bl), hi_l = Ops::max8(al, bl);
        const V lo_c = Ops::min8(ac, bc), hi_c = Ops::max8(ac, bc);
        const V lo_r = Ops::min8(ar, br), hi_r = Ops::max8(ar, br);
        // The two greater lows, in order.
        const V low_min = Ops::min8(lo_l, lo_c), low_max = Ops::max8(lo_l, lo_c);
        const V lows_top = Ops::max8(low_max, lo_r);
        const V lows_mid = Ops::max8(low_min, Ops::min8(low_max, lo_r));
        // The two lesser highs, in order.
        const V high_min = Ops::min8(hi_l, hi_c), high_max = Ops::max8(hi_l, hi_c);
        const V highs_bottom = Ops::min8(high_min, hi_r);
        const V highs_mid = Ops::min8(high_max, Ops::max8(high_min, hi_r));
        // The middle pair of two ordered pairs.
        const V u = Ops::max8(lows_mid, highs_bottom);
        const V v = Ops::min8(lows_top, highs_mid);
        const V third = Ops::min8(u, v), fourth = Ops::max8(u, v);
        const V odd = Ops::and_(Ops::xor_(third, fourth), Ops::splat8(1));
        return Ops::sub8(Ops::avg8(third, fourth), odd);
    }
};

// ByteRuns<Rule>'s twin, Value computing Rule a vector at a time: W bytes
// a step while the step's last byte is inside the run, then the byte loop.
// A step's right-hand neighbours end where the plain loop's last ones do
// or sooner; every shape starts its run far enough into the line for the
// left-hand neighbours of its first byte.
template <class Ops, class Value, class Rule> struct VectorRuns {
    template <class Spacing>
    static void fill(const uint8_t *a, const uint8_t *b, uint32_t begin,
                     uint32_t end, uint8_t *out) {
        using Sides = VectorSides<Ops, Spacing>;
        uint32_t i = begin;
        for (; end - i >= Ops::W; i += Ops::W) {
            typename Ops::V al, ar, bl, br;
            Sides::load(a, i, al, ar);
            Sides::load(b, i, bl, br);
            Ops::store(out + i, Value::of(al, Ops::load(a + i), ar, bl,
                                          Ops::load(b + i), br));
        }
        ByteRuns<Rule>::template fill<Spacing>(a, b, i, end, out);
    }
};

// The table of the SIMD file that includes this header.
constexpr deinterlace::DeinterlaceKernels vector_kernels() {
    return kernels_with<
        VectorRuns<simd::Ops, VectorWeighted<simd::Ops>, WeightedKernel>,
        VectorRuns<simd::Ops, VectorMedian<simd::Ops>, MedianOfSix>>(
        vector_average_lines<simd::Ops>);
}

} // namespace field_lines
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_DEINTERLACE_SIMD_LINES_H
