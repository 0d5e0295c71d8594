// The vector line runs of the demosaic table, written once over simd::Ops
// and compiled by the AVX2 and AVX-512 files in their own namespaces.
//
// A step makes one pixel per lane, in memory order: W pixels of a byte
// mosaic in 8-bit lanes, W / 2 of a word mosaic in 16-bit lanes. Samples
// are loaded at columns x - 1, x and x + 1 of the lines a pixel reads,
// every lane works out both of the values a site can need (those of a
// green site and those of a red or blue site), and the lane's parity
// picks the pair it keeps. Steps start on odd columns, like the plain
// pairs, so a line kind's colour sites always sit on the same lane
// parity. The results are full-depth values, narrowed by the packer
// exactly as the plain packers do and stored with the conversions'
// byte-layout writers or as 16-bit words.
//
// A run's columns end early enough that every sample it loads is one the
// plain pairs read, and every byte it stores (including the overhang of
// AVX2's 24-bit stores) is one the plain line writes afterwards or
// before: its last step is moved back to end exactly there, rewriting a
// few pixels with the values they already have.
#ifndef ORVANE_BAYER_SIMD_RUNS_H
#define ORVANE_BAYER_SIMD_RUNS_H

#include "kernels.h"
#include "../convert/colour_bulk.h"

#include <utility>

namespace orv {
inline namespace ORV_ISA {
namespace bayer_runs {

using bayer::Method;
using bayer::RunLines;
using simd::Ops;
using V = Ops::V;

// ---- Samples ---------------------------------------------------------------

// A step's samples in the lanes of their own width: a byte mosaic W sites
// a step in 8-bit lanes, a word mosaic W / 2 sites in 16-bit lanes. The
// arithmetic is the same in both (no sum is ever formed, so nothing
// overflows a lane); only the finished values are widened for packing.
template <bool Words> struct Lanes;

template <> struct Lanes<false> {
    static constexpr uint32_t P = Ops::W;
    static V at(const uint8_t *line, uint32_t c) { return Ops::load(line + c); }
    static V one() { return Ops::splat8(1); }
    static V avg(V a, V b) { return Ops::avg8(a, b); }
    static V sub(V a, V b) { return Ops::sub8(a, b); }
    static V min(V a, V b) { return Ops::min8(a, b); }
    static V max(V a, V b) { return Ops::max8(a, b); }
    static V blend_odd(V even, V odd) { return Ops::blend_odd8(even, odd); }
};

template <> struct Lanes<true> {
    static constexpr uint32_t P = Ops::W / 2;
    static V at(const uint8_t *line, uint32_t c) {
        return Ops::load(line + uintptr_t{c} * 2);
    }
    static V one() { return Ops::set16(1); }
    static V avg(V a, V b) { return Ops::avg16(a, b); }
    static V sub(V a, V b) { return Ops::sub16(a, b); }
    static V min(V a, V b) { return Ops::min16(a, b); }
    static V max(V a, V b) { return Ops::max16(a, b); }
    static V blend_odd(V even, V odd) { return Ops::blend_odd16(even, odd); }
};

// (a + b) >> 1: the rounded-up average, less one where the sum is odd.
template <class L> V mean2(V a, V b) {
    return L::sub(L::avg(a, b), Ops::and_(Ops::xor_(a, b), L::one()));
}

// (a + b + c + d) >> 2. With h = (a + b) >> 1 and k = (c + d) >> 1 the sum
// is 2(h + k) plus the two dropped low bits, so the mean is
// (h + k + 1) >> 1 when both were dropped and (h + k) >> 1 otherwise.
template <class L> V mean4(V a, V b, V c, V d) {
    const V h = mean2<L>(a, b), k = mean2<L>(c, d);
    const V both_odd = Ops::and_(Ops::xor_(a, b), Ops::xor_(c, d));
    const V round_down = Ops::and_(
        Ops::and_(Ops::xor_(h, k), Ops::xor_(both_odd, L::one())), L::one());
    return L::sub(L::avg(h, k), round_down);
}

// The mean of the middle two of four samples, paired (a, b) and (c, d):
// the larger of the pair minima and the smaller of the pair maxima.
template <class L> V middle_mean(V a, V b, V c, V d) {
    const V low = L::max(L::min(a, b), L::min(c, d));
    const V high = L::min(L::max(a, b), L::max(c, d));
    return mean2<L>(low, high);
}

// ---- Packers ---------------------------------------------------------------

// One step's pixels at full depth, as the plain packers get them.
struct Pixels {
    V r, g, b;
};

// Packer index (kernels.h) to what the step stores. The byte layouts go
// through the conversions' writers; `room` is the pixels a step must
// leave after it for their overhang.
template <unsigned Packer> struct Store;

template <class Layout> struct StoreBytes {
    using Writer = colour::Writer<colour::ToBytes<Layout>>;
    static constexpr uint32_t room = Writer::room;
    static void put(uint8_t *d, const Pixels &p, uint32_t to8) {
        const V low = Ops::set16(0xFF);
        const auto narrow = [&](V v) {
            return Ops::and_(Ops::srl16_by(v, to8), low);
        };
        Writer::template put<colour::FromBgr24>(
            d, colour::Planes{narrow(p.r), narrow(p.g), narrow(p.b)});
    }
};
template <> struct Store<0> : StoreBytes<LayoutBgrx32> {};
template <> struct Store<1> : StoreBytes<LayoutRgbx32> {};
template <> struct Store<2> : StoreBytes<LayoutBgr24> {};

// 5-6-5 words from channels narrowed but not masked: the top field keeps
// bits 3-7 of its channel (cut to 16 bits), the bottom field of RGB16 is
// the full-depth blue narrowed to five bits, of BGR16 the red channel
// shifted by three, neither masked.
template <bool BlueHigh> struct StoreWords565 {
    static constexpr uint32_t room = 0;
    static void put(uint8_t *d, const Pixels &p, uint32_t to8, uint32_t to5) {
        const V high = Ops::srl16_by(BlueHigh ? p.b : p.r, to8);
        const V green = Ops::srl16_by(p.g, to8);
        const V low = BlueHigh ? Ops::srl16<3>(Ops::srl16_by(p.r, to8))
                               : Ops::srl16_by(p.b, to5);
        Ops::store(d, Ops::or_(Ops::or_(Ops::and_(Ops::sll16<8>(high),
                                                  Ops::set16(0xF800)),
                                        Ops::and_(Ops::sll16<3>(green),
                                                  Ops::set16(0x7E0))),
                               low));
    }
};
template <> struct Store<3> : StoreWords565<false> {}; // RGB16
template <> struct Store<4> : StoreWords565<true> {};  // BGR16

// Bytes per pixel of each packer.
template <unsigned Packer>
constexpr uint32_t kPixelBytes = Packer == 2 ? 3 : Packer <= 1 ? 4 : 2;

template <unsigned Packer>
void store_planes(uint8_t *d, const Pixels &p, const RunLines &lines) {
    if constexpr (Packer >= 3)
        Store<Packer>::put(d, p, lines.to8, lines.to5);
    else
        Store<Packer>::put(d, p, lines.to8);
}

// One step's pixels from column x on, stored at pixel 0's address `d`:
// word values are the packers' planes already, byte values are widened
// into two of them.
template <bool Words, unsigned Packer>
void store_step(uint8_t *d, uint32_t x, const Pixels &p,
                const RunLines &lines) {
    constexpr uint32_t bytes = kPixelBytes<Packer>;
    if constexpr (Words) {
        store_planes<Packer>(d + uintptr_t{x} * bytes, p, lines);
    } else {
        Pixels low, high;
        Ops::widen8_halves(p.r, low.r, high.r);
        Ops::widen8_halves(p.g, low.g, high.g);
        Ops::widen8_halves(p.b, low.b, high.b);
        store_planes<Packer>(d + uintptr_t{x} * bytes, low, lines);
        store_planes<Packer>(d + (uintptr_t{x} + Ops::W / 2) * bytes, high,
                             lines);
    }
}

// ---- Line kinds ---------------------------------------------------------------

// Kind index (kernels.h): lines of red (0, 1) or blue (2, 3), starting
// with their colour (0, 2) or with green (1, 3). Steps start on odd
// columns, so colour sites are the even lanes when the line starts green.
template <unsigned Kind, class L> struct LineKindOf {
    static constexpr bool red = Kind < 2;
    static constexpr bool green_first = (Kind & 1) != 0;

    // The lane's own colour site value or green site value, by parity.
    static V pick(V at_colour, V at_green) {
        return green_first ? L::blend_odd(at_colour, at_green)
                           : L::blend_odd(at_green, at_colour);
    }
    // The line's colour, green and the other colour, as R, G, B.
    static Pixels rgb(V line_colour, V green, V other) {
        return red ? Pixels{line_colour, green, other}
                   : Pixels{other, green, line_colour};
    }
};

// ---- The runs ---------------------------------------------------------------

// The columns a run may cover: it ends (exclusive) on an odd column at or
// before `limit` with `room` pixels to spare before the line's end, and is
// a whole number of P-pixel steps long, the last of them moved back to
// end there. Returns the columns covered.
template <uint32_t P, class Step>
uint32_t steps_up_to(uint32_t limit, uint32_t room, uint32_t width,
                     Step step) {
    if (width < room + 1) return 0;
    uint32_t end = limit < width - room ? limit : width - room;
    if ((end & 1) == 0) --end;
    if (end < 1 + P) return 0;
    uint32_t x = 1;
    for (; x + P <= end; x += P) step(x);
    if (x < end) step(end - P);
    return end - 1;
}

// dup: each pixel copies the colour and green of its own line and the
// other colour from the partner line, at the block's even column e and
// odd column o. Pixel x (lane i) has e = x & ~1 and o = (x - 1) | 1:
// from the loads at x - 1 and x, the even lanes take e from the first and
// o from the second, the odd lanes the reverse. Reads columns 0 to
// end - 1, like the plain pairs.
template <bool Words, unsigned Packer, unsigned Kind>
uint32_t dup_run(const RunLines &lines, uint8_t *d) {
    using L = Lanes<Words>;
    using K = LineKindOf<Kind, L>;
    return steps_up_to<L::P>(lines.width, Store<Packer>::room, lines.width,
                             [&](uint32_t x) {
        const V line_before = L::at(lines.line, x - 1);
        const V line_at = L::at(lines.line, x);
        const V partner_before = L::at(lines.above, x - 1);
        const V partner_at = L::at(lines.above, x);
        const V line_e = L::blend_odd(line_before, line_at);
        const V line_o = L::blend_odd(line_at, line_before);
        const V partner_e = L::blend_odd(partner_before, partner_at);
        const V partner_o = L::blend_odd(partner_at, partner_before);
        // Lines that start green have green on the even columns.
        const V colour = K::green_first ? line_o : line_e;
        const V green = K::green_first ? line_e : line_o;
        const V other = K::green_first ? partner_e : partner_o;
        store_step<Words, Packer>(d, x, K::rgb(colour, green, other), lines);
    });
}

// The samples around a step's sites: left, own and right on the line
// above, the line and the line below.
template <class L> struct Around {
    V above_left, above, above_right;
    V left, own, right;
    V below_left, below, below_right;

    Around(const RunLines &lines, uint32_t x)
        : above_left(L::at(lines.above, x - 1)), above(L::at(lines.above, x)),
          above_right(L::at(lines.above, x + 1)),
          left(L::at(lines.line, x - 1)), own(L::at(lines.line, x)),
          right(L::at(lines.line, x + 1)),
          below_left(L::at(lines.below, x - 1)), below(L::at(lines.below, x)),
          below_right(L::at(lines.below, x + 1)) {}
};

// The estimates at a red or blue site: ave's means of four, med's means
// of the middle two of four.
template <Method M, class L> struct Estimates;
template <class L> struct Estimates<Method::ave, L> {
    static V green(const Around<L> &s) {
        return mean4<L>(s.above, s.below, s.left, s.right);
    }
    static V opposite(const Around<L> &s) {
        return mean4<L>(s.above_left, s.above_right, s.below_left,
                        s.below_right);
    }
};
template <class L> struct Estimates<Method::med, L> {
    static V green(const Around<L> &s) {
        return middle_mean<L>(s.above, s.left, s.below, s.right);
    }
    static V opposite(const Around<L> &s) {
        return middle_mean<L>(s.above_left, s.above_right, s.below_left,
                              s.below_right);
    }
};

// ave and med on an inner line: a green site keeps its own green and
// takes the row colour from left and right, the column colour from above
// and below; a red or blue site takes the method's estimates. Reads
// columns 0 to end on all three lines, which the plain pairs read too.
template <Method M, bool Words, unsigned Packer, unsigned Kind>
uint32_t neighbourhood_run(const RunLines &lines, uint8_t *d) {
    using L = Lanes<Words>;
    using K = LineKindOf<Kind, L>;
    using E = Estimates<M, L>;
    return steps_up_to<L::P>(lines.width - 1, Store<Packer>::room,
                             lines.width, [&](uint32_t x) {
        const Around<L> s(lines, x);
        const V line_colour = K::pick(s.own, mean2<L>(s.left, s.right));
        const V green = K::pick(E::green(s), s.own);
        const V other = K::pick(E::opposite(s), mean2<L>(s.above, s.below));
        store_step<Words, Packer>(d, x, K::rgb(line_colour, green, other),
                                  lines);
    });
}

template <Method M, bool Words, unsigned Packer, unsigned Kind>
constexpr bayer::LineRun run_of() {
    if constexpr (M == Method::dup)
        return &dup_run<Words, Packer, Kind>;
    else
        return &neighbourhood_run<M, Words, Packer, Kind>;
}

template <Method M, unsigned Samples, unsigned Packer, size_t... Kinds>
constexpr void fill_kinds(bayer::BayerKernels &t,
                          std::index_sequence<Kinds...>) {
    ((t.run[unsigned(M)][Samples][Packer][Kinds] =
          run_of<M, Samples == 1, Packer, Kinds>()),
     ...);
}

template <Method M, unsigned Samples, size_t... Packers>
constexpr void fill_packers(bayer::BayerKernels &t,
                            std::index_sequence<Packers...>) {
    (fill_kinds<M, Samples, Packers>(
         t, std::make_index_sequence<bayer::kLineKinds>()),
     ...);
}

// Every method, sample class, packer and line kind.
constexpr bayer::BayerKernels vector_kernels() {
    bayer::BayerKernels t{};
    constexpr auto packers = std::make_index_sequence<bayer::kPackers>();
    fill_packers<Method::dup, 0>(t, packers);
    fill_packers<Method::dup, 1>(t, packers);
    fill_packers<Method::ave, 0>(t, packers);
    fill_packers<Method::ave, 1>(t, packers);
    fill_packers<Method::med, 0>(t, packers);
    fill_packers<Method::med, 1>(t, packers);
    return t;
}

} // namespace bayer_runs
} // namespace ORV_ISA
} // namespace orv

#endif // ORVANE_BAYER_SIMD_RUNS_H
