// Method dup: every channel of an output pixel is a copy of one sample of
// the two-by-two block that touches the site: lines {y - 1, y} (lines
// {0, 1} on line 0) and columns {x - 1, x} (columns {0, 1} on column 0).
//
// In such a block the line's own colour and green sit on the current line
// and the other colour on the partner line, each on the column of the
// right parity, so a pixel needs only the block's even and odd column.
// The one departure is the green of a colour site at column 0.
#ifndef ORVANE_BAYER_DUP_H
#define ORVANE_BAYER_DUP_H

#include "demosaic.h"

#include <type_traits>

namespace orv {
namespace bayer {

// On lines y >= 1 that start with red or blue, column 0 takes its green
// from the site above, (y - 1, 0), instead of from (y, 1). Vector runs
// start at column 1: column 0 stays plain.
template <class Out, class P> struct GreenAboveAtColumnZero : std::true_type {};
// Phase B never does: its B/G lines take green from (y, 1).
template <class Out> struct GreenAboveAtColumnZero<Out, PhaseB> : std::false_type {};
// Nor do the RGB16 members of phase D.
template <> struct GreenAboveAtColumnZero<PackRgb16, PhaseD> : std::false_type {};

// One pixel from the block whose even column is `e` and odd column `o`:
// the line colour and green from the current line, the other colour from
// the partner line.
template <class Samples, class Out, class Kind>
void put_block(uint8_t *d, const Scale &scale, const uint8_t *line,
               const uint8_t *partner, uint32_t e, uint32_t o) {
    const uint32_t colour_column = Kind::green_first ? o : e;
    const uint32_t green_column = Kind::green_first ? e : o;
    put_pixel<Kind, Out>(d, scale.value(Samples::at(line, colour_column)),
                         scale.value(Samples::at(line, green_column)),
                         scale.value(Samples::at(partner, green_column)));
}

// One line: column 0, the pairs (x, x + 1) with x odd, whose blocks share
// column x (the first of them by the line's vector run, if it has one),
// and the lone last column of an even width. With `green_from_above`
// column 0 copies its green from partner column 0.
template <class Samples, class Out, class Kind, bool GreenFromAbove>
void dup_line(const Image &image, LineRun run, const uint8_t *line,
              const uint8_t *partner, uint8_t *d) {
    const Scale &scale = image.scale;
    const uint32_t width = image.width;
    if constexpr (GreenFromAbove) {
        put_pixel<Kind, Out>(d, scale.value(Samples::at(line, 0)),
                             scale.value(Samples::at(partner, 0)),
                             scale.value(Samples::at(partner, 1)));
    } else {
        put_block<Samples, Out, Kind>(d, scale, line, partner, 0, 1);
    }
    uint32_t x = 1 + run_columns(run, run_lines(line, partner, nullptr, image), d);
    for (; pair_fits(x, width); x += 2) {
        uint8_t *pixel = d + static_cast<uintptr_t>(x) * Out::bytes;
        put_block<Samples, Out, Kind>(pixel, scale, line, partner, x - 1, x);
        put_block<Samples, Out, Kind>(pixel + Out::bytes, scale, line, partner,
                                      x + 1, x);
    }
    if (has_lone_last_column(width)) {
        put_block<Samples, Out, Kind>(
            d + static_cast<uintptr_t>(width - 1) * Out::bytes, scale, line,
            partner, width - 2, width - 1);
    }
}

// Line 0 is written before the height is looked at, its block reaching
// line 1 even when the image has one line. Lines 1 to H - 1 follow, odd
// and even kinds in turn, each paired with the line above.
struct DupMethod {
    template <class Samples, class Out, class P>
    static void walk(const Image &image, const BayerKernels &kernels) {
        constexpr bool above = GreenAboveAtColumnZero<Out, P>::value;
        using Odd = typename P::odd;
        using Even = typename P::even;
        const LineRun odd_run =
            line_run<Method::dup, Samples, Out, Odd>(kernels, image.scale);
        const LineRun even_run =
            line_run<Method::dup, Samples, Out, Even>(kernels, image.scale);
        dup_line<Samples, Out, Even, false>(image, even_run,
                                            image.source_line(0),
                                            image.source_line(1),
                                            image.destination_line(0));
        for (uint32_t y = 1; y < image.height; y += 2) {
            dup_line<Samples, Out, Odd, above && !Odd::green_first>(
                image, odd_run, image.source_line(y), image.source_line(y - 1),
                image.destination_line(y));
            if (y + 1 >= image.height) break;
            dup_line<Samples, Out, Even, above && !Even::green_first>(
                image, even_run, image.source_line(y + 1),
                image.source_line(y), image.destination_line(y + 1));
        }
    }
};

} // namespace bayer
} // namespace orv

#endif // ORVANE_BAYER_DUP_H
