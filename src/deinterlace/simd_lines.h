// The vector twins of the line pairs: LineDup's and LineAve's, and the
// runs of neighbourhood values (the weighted kernel's and the median's)
// that also copy the line above, written once over simd::Ops: Ops::W bytes
// a step while a whole step fits, then one last step that ends where the
// run ends, over bytes already written, which it writes again with the
// same values. Runs shorter than a step are done by the plain byte loop.
// Included only by the SIMD files, each of which builds its table with
// them.
#ifndef ORVANE_DEINTERLACE_SIMD_LINES_H
#define ORVANE_DEINTERLACE_SIMD_LINES_H

#include "byte_lines.h"
#include "../common/simd_ops.h"

#include <type_traits>

namespace orv {
inline namespace ORV_ISA {
namespace field_lines {

// The step after the one at i, on the way to the last step at `last`: W
// bytes on, or the last step where fewer than W bytes are left before it.
template <class Ops> uint32_t next_step(uint32_t i, uint32_t last) {
    return last - i > Ops::W ? i + Ops::W : last;
}

// The bytes [0, stride) of `line` stored at each of `outs` (stride >= W):
// each vector is read once and stored at every output. After the first
// vector the stores go to whole vectors of the first output (of every
// output, when they are a multiple of W apart); the last one ends with
// the line.
template <class Ops, size_t N>
void vector_copy(const uint8_t *line, uint32_t stride,
                 uint8_t *const (&outs)[N]) {
    const auto put = [&](uint32_t i) {
        const typename Ops::V v = Ops::load(line + i);
        for (uint8_t *out : outs) Ops::store(out + i, v);
    };
    put(0);
    const uint32_t last = stride - Ops::W;
    const auto first_out = reinterpret_cast<uintptr_t>(outs[0]);
    uint32_t i = Ops::W - static_cast<uint32_t>(first_out & (Ops::W - 1));
    for (; i < last; i += Ops::W) put(i);
    put(last);
}

// line_twice's twin. Lines of up to 4 KiB are read once and stored at both
// copies; longer ones are copied one copy after the other, which keeps
// the stores in one stream (faster for long lines on the CPUs measured).
template <class Ops>
uintptr_t vector_line_twice(const uint8_t *line, uint32_t stride,
                            uint8_t *copy) {
    uint8_t *second = advance(copy, stride);
    if (stride < Ops::W) return line_twice(line, stride, copy);
    if (stride <= 4096) {
        vector_copy<Ops>(line, stride, {copy, second});
    } else {
        vector_copy<Ops>(line, stride, {copy});
        vector_copy<Ops>(line, stride, {second});
    }
    return stride;
}

// average_lines' twin: each vector of the line above goes to the copy and
// into the mean. The average of two bytes rounded up, less one where their
// sum is odd, is their mean rounded down.
template <class Ops>
uintptr_t vector_average_lines(const uint8_t *above, uint32_t stride,
                               uint8_t *copy) {
    if (stride < Ops::W) return average_lines(above, stride, copy);
    const uint8_t *below = advance(above, stride);
    uint8_t *out = advance(copy, stride);
    const uint32_t last = stride - Ops::W;
    for (uint32_t i = 0;; i = next_step<Ops>(i, last)) {
        using V = typename Ops::V;
        const V x = Ops::load(above + i), y = Ops::load(below + i);
        const V odd = Ops::and_(Ops::xor_(x, y), Ops::splat8(1));
        Ops::store(copy + i, x);
        Ops::store(out + i, Ops::sub8(Ops::avg8(x, y), odd));
        if (i == last) return stride;
    }
}

// A step's side neighbours in one field line, as Spacing places them:
// loaded from the line at byte i (left, right), or shifted in from the
// vectors of the step before or after (left_of, right_of).
template <class Ops, class Spacing> struct VectorSides;

template <class Ops, uint32_t D> struct VectorSides<Ops, Apart<D>> {
    using V = typename Ops::V;
    static V left(const uint8_t *p, uint32_t i) {
        return Ops::load_whole(p + i - D);
    }
    static V right(const uint8_t *p, uint32_t i) {
        return Ops::load_whole(p + i + D);
    }
    static V left_of(V prev, V cur) {
        return Ops::template before<D>(prev, cur);
    }
    static V right_of(V cur, V next) {
        return Ops::template after<D>(cur, next);
    }
    // Where the last step of the run [begin, end) starts: it ends with it.
    static uint32_t last_step(uint32_t, uint32_t end) { return end - Ops::W; }
};

// Steps start on even bytes, so the even bytes of a vector are luma. A
// step ends on a chroma byte and the run on a luma byte, so a step inside
// the run ends on its last chroma byte at the latest, whose right
// neighbour the plain loop reads too. The last step starts on an even byte
// too, so it may end one byte short of the run: a luma byte, left to the
// byte loop.
template <class Ops> struct VectorSides<Ops, LumaChroma> {
    using V = typename Ops::V;
    // The bytes of `luma` at even positions, of `chroma` at odd ones.
    static V interleave(V luma, V chroma) {
        const V even = Ops::set16(0x00FF);
        return Ops::xor_(chroma, Ops::and_(Ops::xor_(chroma, luma), even));
    }
    static V left(const uint8_t *p, uint32_t i) {
        return interleave(Ops::load_whole(p + i - 2),
                          Ops::load_whole(p + i - 4));
    }
    static V right(const uint8_t *p, uint32_t i) {
        return interleave(Ops::load_whole(p + i + 2),
                          Ops::load_whole(p + i + 4));
    }
    static V left_of(V prev, V cur) {
        return Ops::template before_by_parity<2, 4>(prev, cur);
    }
    static V right_of(V cur, V next) {
        return Ops::template after_by_parity<2, 4>(cur, next);
    }
    static uint32_t last_step(uint32_t begin, uint32_t end) {
        return begin + ((end - Ops::W - begin) & ~1u);
    }
};

// Whether Ops multiplies bytes and adds the products in pairs (from AVX2
// on; SSE2 widens the bytes first).
template <class Ops, class = void> constexpr bool multiplies_bytes = false;
template <class Ops>
constexpr bool multiplies_bytes<
    Ops, decltype(void(Ops::maddubs16(Ops::zero(), Ops::zero())))> = true;

// The weighted kernel of W bytes at once, in 16-bit lanes: the bytes of
// the low and the high half of each 128-bit lane apart, packed back into
// that lane at the end, so the bytes come out in order.
template <class Ops> struct VectorWeighted {
    using V = typename Ops::V;

    // weight (x + y) for the bytes of x and y in the low or the high half
    // of each lane.
    static V pair_lo(V x, V y, uint8_t weight) {
        if constexpr (multiplies_bytes<Ops>)
            return Ops::maddubs16(Ops::unpacklo8(x, y), Ops::splat8(weight));
        else
            return Ops::mullo16(Ops::add16(Ops::unpacklo8(x, Ops::zero()),
                                           Ops::unpacklo8(y, Ops::zero())),
                                Ops::set16(weight));
    }
    static V pair_hi(V x, V y, uint8_t weight) {
        if constexpr (multiplies_bytes<Ops>)
            return Ops::maddubs16(Ops::unpackhi8(x, y), Ops::splat8(weight));
        else
            return Ops::mullo16(Ops::add16(Ops::unpackhi8(x, Ops::zero()),
                                           Ops::unpackhi8(y, Ops::zero())),
                                Ops::set16(weight));
    }

    // 105 c + 75 s is 15 (7 c + 5 s); 7 c + 5 s stays below 8671 (no pair
    // product saturates), and the high half of its product with 1920 is
    // exactly floor(15 (7 c + 5 s) / 512).
    static V scaled(V centre, V left, V right) {
        const V t = Ops::add16(centre, Ops::add16(left, right));
        return Ops::mulhi16(t, Ops::set16(1920));
    }

    // Neighbours one byte apart (Y8): a byte and its right or left
    // neighbour are the two bytes of a 16-bit lane of the centre vector or
    // of a side vector, so the even and the odd bytes are weighted where
    // they lie, with no unpacking. A lane's weights are (high, low) bytes.
    static V of_adjacent(V al, V ac, V ar, V bl, V bc, V br) {
        const V even_centre = Ops::set16(0x0507);
        const V even_left = Ops::set16(0x0005);
        const V odd_centre = Ops::set16(0x0705);
        const V odd_right = Ops::set16(0x0500);
        const V even = scaled(Ops::add16(Ops::maddubs16(ac, even_centre),
                                         Ops::maddubs16(bc, even_centre)),
                              Ops::maddubs16(al, even_left),
                              Ops::maddubs16(bl, even_left));
        const V odd = scaled(Ops::add16(Ops::maddubs16(ac, odd_centre),
                                        Ops::maddubs16(bc, odd_centre)),
                             Ops::maddubs16(ar, odd_right),
                             Ops::maddubs16(br, odd_right));
        return Ops::or_(even, Ops::template sll16<8>(odd));
    }

    template <class Spacing>
    static V of(V al, V ac, V ar, V bl, V bc, V br) {
        if constexpr (multiplies_bytes<Ops> &&
                      std::is_same_v<Spacing, Apart<1>>)
            return of_adjacent(al, ac, ar, bl, bc, br);
        const V lo = scaled(pair_lo(ac, bc, 7), pair_lo(al, bl, 5),
                            pair_lo(ar, br, 5));
        const V hi = scaled(pair_hi(ac, bc, 7), pair_hi(al, bl, 5),
                            pair_hi(ar, br, 5));
        return Ops::packus16(lo, hi);
    }
};

// The median of six of W bytes at once, by a min/max network with no
// branch. Each column (a byte and the one below it) is ordered into a low
// and a high. The least low is the smallest of the six and the greatest
// high the largest; the two other lows and the two other highs are the
// third and fourth smallest's only candidates, and those two are the
// middle pair of these four. Ties need no care: every step keeps the
// multiset of values. The mean rounds down as in vector_average_lines,
// and does not need to know which of the pair is the smaller.
template <class Ops> struct VectorMedian {
    using V = typename Ops::V;

    template <class Spacing>
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
        const V odd = Ops::and_(Ops::xor_(u, v), Ops::splat8(1));
        return Ops::sub8(Ops::avg8(u, v), odd);
    }
};

// ByteRuns<Rule>'s twin, Value computing Rule a vector at a time: W bytes
// a step while the step's last byte is inside the run, then a last step
// ending with the run; each step also puts its vector of the line above in
// the copy. Each field line is read a vector a step: while the next step
// is a whole one, its vector gives this step's right-hand neighbours and
// this step's gives its left-hand ones; the first step's left-hand and the
// last two steps' right-hand neighbours are loaded. So a step's right-hand
// neighbours end where the plain loop's last ones do or sooner; every
// shape starts its run far enough into the line for the left-hand
// neighbours of its first byte.
template <class Ops, class Value, class Rule> struct VectorRuns {
    using V = typename Ops::V;

    template <class Spacing>
    static void step(uint32_t i, V al, V ac, V ar, V bl, V bc, V br,
                     uint8_t *out, uint8_t *copy) {
        Ops::store_whole(copy + i, ac);
        Ops::store_whole(out + i,
                         Value::template of<Spacing>(al, ac, ar, bl, bc, br));
    }

    template <class Spacing>
    static void fill(const uint8_t *a, const uint8_t *b, uint32_t begin,
                     uint32_t end, uint8_t *out, uint8_t *copy) {
        using Sides = VectorSides<Ops, Spacing>;
        using Bytes = ByteRuns<Rule>;
        if (end - begin < Ops::W) {
            Bytes::template fill<Spacing>(a, b, begin, end, out, copy);
            return;
        }
        uint32_t i = begin;
        V al = Sides::left(a, i), bl = Sides::left(b, i);
        V ac = Ops::load_whole(a + i), bc = Ops::load_whole(b + i);
        for (; end - i >= 2 * Ops::W; i += Ops::W) {
            const V an = Ops::load_whole(a + i + Ops::W);
            const V bn = Ops::load_whole(b + i + Ops::W);
            step<Spacing>(i, al, ac, Sides::right_of(ac, an), bl, bc,
                          Sides::right_of(bc, bn), out, copy);
            al = Sides::left_of(ac, an), bl = Sides::left_of(bc, bn);
            ac = an, bc = bn;
        }
        step<Spacing>(i, al, ac, Sides::right(a, i), bl, bc,
                      Sides::right(b, i), out, copy);
        uint32_t done = i + Ops::W;
        const uint32_t last = Sides::last_step(begin, end);
        if (last > i) {
            step<Spacing>(last, Sides::left(a, last),
                          Ops::load_whole(a + last), Sides::right(a, last),
                          Sides::left(b, last), Ops::load_whole(b + last),
                          Sides::right(b, last), out, copy);
            done = last + Ops::W;
        }
        Bytes::template fill<Spacing>(a, b, done, end, out, copy);
    }
};

// The table of the SIMD file that includes this header.
constexpr deinterlace::DeinterlaceKernels vector_kernels() {
    return kernels_with<
        VectorRuns<simd::Ops, VectorWeighted<simd::Ops>, WeightedKernel>,
        VectorRuns<simd::Ops, VectorMedian<simd::Ops>, MedianOfSix>>(
        vector_line_twice<simd::Ops>, vector_average_lines<simd::Ops>);
}

} // namespace field_lines
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_DEINTERLACE_SIMD_LINES_H
