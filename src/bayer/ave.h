// Method ave: each missing colour is the truncated mean of the nearest
// samples of that colour, two along a line or a column, four across or
// diagonally, fewer on the image's edges (neighbourhood.h). Samples are
// summed at full depth and the mean is narrowed afterwards, never the
// samples before it.
#ifndef ORVANE_BAYER_AVE_H
#define ORVANE_BAYER_AVE_H

#include "neighbourhood.h"

namespace orv {
namespace bayer {

struct AveRules {
    // Sums of 1, 2 or 4 samples; dividing by the count truncates.
    template <unsigned Count>
    static Channel mean(const Scale &scale, uint32_t sum) {
        static_assert(Count == 1 || Count == 2 || Count == 4);
        constexpr unsigned halvings = Count == 4 ? 2 : Count == 2 ? 1 : 0;
        return scale.value(sum >> halvings);
    }
    static Channel cross(const Scale &scale, uint32_t above, uint32_t below,
                         uint32_t left, uint32_t right) {
        return mean<4>(scale, above + below + left + right);
    }
    static Channel diagonal(const Scale &scale, uint32_t above_left,
                            uint32_t above_right, uint32_t below_left,
                            uint32_t below_right) {
        return mean<4>(scale,
                       above_left + above_right + below_left + below_right);
    }
};

template <class Samples, class Out, class P>
struct AveDepartures : NoDepartures {};

// BAYn RGB16 phase B: the red of the green sites in the last column of
// inner B/G lines keeps bits 3-7 of the full-depth mean, unnarrowed.
template <>
struct AveDepartures<WordSamples, PackRgb16, PhaseB> : NoDepartures {
    static constexpr bool raw_column_colour_at_last_column = true;
};

struct AveMethod {
    template <class Samples, class Out, class P>
    static void walk(const Image &image, const BayerKernels &kernels) {
        neighbourhood_walk<Method::ave, AveRules, AveDepartures<Samples, Out, P>,
                           Samples, Out, P>(image, kernels);
    }
};

} // namespace bayer
} // namespace orv

#endif // ORVANE_BAYER_AVE_H
