// The vector twins of the mean line and of the weighted kernel's runs,
// written once over simd::Ops: Ops::W bytes a step while a whole step
// fits, then the plain byte loop for the rest. Included only by the SIMD
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

// ByteRuns<WeightedKernel>'s twin: W weighted bytes a step while the
// step's last byte is inside the run, then the byte loop. A step's
// right-hand neighbours end D bytes past the run, where the plain loop's
// last ones do. Every shape starts its run D bytes or more into the line
// and never past its end.
template <class Ops> struct VectorWeightedRuns {
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

    // The weighted bytes i to i + W - 1, their side neighbours D bytes away.
    // The sums of each half of a lane are packed back into that lane, so
    // the bytes come out in order.
    template <uint32_t D>
    static void step(const uint8_t *a, const uint8_t *b, uint32_t i,
                     uint8_t *out) {
        const V al = Ops::load(a + i - D), bl = Ops::load(b + i - D);
        const V ac = Ops::load(a + i), bc = Ops::load(b + i);
        const V ar = Ops::load(a + i + D), br = Ops::load(b + i + D);
        const V lo = weighted(sum_lo(ac, bc),
                              Ops::add16(sum_lo(al, bl), sum_lo(ar, br)));
        const V hi = weighted(sum_hi(ac, bc),
                              Ops::add16(sum_hi(al, bl), sum_hi(ar, br)));
        Ops::store(out + i, Ops::packus16(lo, hi));
    }

    template <uint32_t D>
    static void fill(const uint8_t *a, const uint8_t *b, uint32_t begin,
                     uint32_t end, uint8_t *out) {
        uint32_t i = begin;
        for (; end - i >= Ops::W; i += Ops::W) step<D>(a, b, i, out);
        ByteRuns<WeightedKernel>::fill<D>(a, b, i, end, out);
    }
};

// The table of the SIMD file that includes this header.
constexpr deinterlace::DeinterlaceKernels vector_kernels() {
    return kernels_with<VectorWeightedRuns<simd::Ops>>(
        vector_average_lines<simd::Ops>);
}

} // namespace field_lines
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_DEINTERLACE_SIMD_LINES_H
