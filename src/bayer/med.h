// Method med: at the inner red and blue sites green and the opposite
// colour are the mean of the middle two of four neighbours; everywhere
// else a missing colour is a copy of one neighbour or the mean of two
// (neighbourhood.h). The mean of two is narrowed straight from the sum.
#ifndef ORVANE_BAYER_MED_H
#define ORVANE_BAYER_MED_H

#include "neighbourhood.h"

namespace orv {
namespace bayer {

// Sum of the middle two of four samples, by four comparisons: order each
// pair, then the larger of the two minima and the smaller of the maxima
// are the second and third smallest.
inline uint32_t middle_pair_sum(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    const bool ab = a < b;
    const bool cd = c < d;
    const uint32_t low_ab = ab ? a : b, high_ab = ab ? b : a;
    const uint32_t low_cd = cd ? c : d, high_cd = cd ? d : c;
    const uint32_t low = low_ab < low_cd ? low_cd : low_ab;
    const uint32_t high = high_ab < high_cd ? high_ab : high_cd;
    return low + high;
}

struct MedRules {
    // A copy, or the mean of two: sum >> 1 at 8 bits, sum >> (depth - 7)
    // for words, with the halving folded into the narrowing.
    template <unsigned Count>
    static Channel mean(const Scale &scale, uint32_t sum) {
        static_assert(Count == 1 || Count == 2);
        if constexpr (Count == 1)
            return scale.value(sum);
        else
            return scale.mean_of_sum(sum);
    }
    // Green of an inner red or blue site: pairs (above, left), (below, right).
    static Channel cross(const Scale &scale, uint32_t above, uint32_t below,
                         uint32_t left, uint32_t right) {
        return scale.value(middle_pair_sum(above, left, below, right) >> 1);
    }
    // Opposite colour: pairs (above-left, above-right), (below-left,
    // below-right).
    static Channel diagonal(const Scale &scale, uint32_t above_left,
                            uint32_t above_right, uint32_t below_left,
                            uint32_t below_right) {
        return scale.value(
            middle_pair_sum(above_left, above_right, below_left, below_right) >>
            1);
    }
};

template <class Samples, class Out, class P>
struct MedDepartures : NoDepartures {};

// BAYn BGRX32 and BGR24 phase B: the blue of column 0 on even inner lines
// is the halved sum of above and below, unnarrowed, kept to its low byte.
struct RawBlueAtColumnZero : NoDepartures {
    static constexpr bool raw_column_colour_at_first_column = true;
};
template <>
struct MedDepartures<WordSamples, PackBgrx32, PhaseB> : RawBlueAtColumnZero {};
template <>
struct MedDepartures<WordSamples, PackBgr24, PhaseB> : RawBlueAtColumnZero {};

// RGB16 phase C, both depths: line 0's last green comes from below-right,
// and with an odd width the line below is read one column to the right.
template <class Samples>
struct MedDepartures<Samples, PackRgb16, PhaseC> : NoDepartures {
    static constexpr bool top_right_green_from_below_right = true;
    static constexpr bool below_shifted_for_odd_width = true;
};

struct MedMethod {
    template <class Samples, class Out, class P>
    static void walk(const Image &image, const BayerKernels &kernels) {
        neighbourhood_walk<Method::med, MedRules, MedDepartures<Samples, Out, P>,
                           Samples, Out, P>(image, kernels);
    }
};

} // namespace bayer
} // namespace orv

#endif // ORVANE_BAYER_MED_H
