// The walk shared by the methods that estimate a missing colour from the
// neighbours of a site (ave and med): which neighbours exist on each edge
// of the image, the line and column order, and the named departures of
// single members.
//
// A method supplies Rules: how it forms the mean of one, two or four
// neighbour samples, and its estimates for the green and the opposite
// colour of a red or blue site that has all four neighbours of each kind.
// Everywhere else the two methods take the same neighbours:
//   green site: row colour from left and right, column colour from above
//     and below, each from the one that exists on an edge;
//   red or blue site: green from the two neighbours along a border line
//     (or along a border column), from the one vertical and the one
//     horizontal neighbour at a corner; the opposite colour from the
//     diagonals that exist.
// With an odd width the last column is reached by the pair loop and read
// as an inner one: its right-hand samples are those that follow each line
// in memory.
#ifndef ORVANE_BAYER_NEIGHBOURHOOD_H
#define ORVANE_BAYER_NEIGHBOURHOOD_H

#include "demosaic.h"

namespace orv {
namespace bayer {

// Where a line or a column lies: on the first edge, inside, or on the
// last edge of the image. It decides which neighbours are read.
enum class Edge { first, inner, last };

// How many neighbours a site has along one axis.
constexpr unsigned neighbours(Edge e) { return e == Edge::inner ? 2 : 1; }

// Quirks of single members, all off by default. Each member that departs
// from the common rule names its own set (ave.h, med.h). Each says how
// the vector runs (simd_runs.h) keep it.
struct NoDepartures {
    // Inner lines, green sites of the last column (even width): the
    // column colour is the unnarrowed mean of above and below.
    // Vector runs: never reach the last column; it stays plain.
    static constexpr bool raw_column_colour_at_last_column = false;
    // Inner lines, green sites of column 0: the same, for column 0.
    // Vector runs: start at column 1; column 0 stays plain.
    static constexpr bool raw_column_colour_at_first_column = false;
    // Line 0, red or blue site of the last column (even width): green
    // averages left with below-right, one past the end of the line below.
    // Vector runs: line 0 of ave and med stays plain.
    static constexpr bool top_right_green_from_below_right = false;
    // Odd widths, inner lines: the line below is read one column to the
    // right of the site.
    // Vector runs: the same template, handed the shifted line below.
    static constexpr bool below_shifted_for_odd_width = false;
};

// The source lines around the current one; only those that exist on the
// line's edge are read.
struct Window {
    const uint8_t *above;
    const uint8_t *line;
    const uint8_t *below;
};

template <class Samples, Edge V>
uint32_t vertical_sum(const Window &w, uint32_t x) {
    if constexpr (V == Edge::first)
        return Samples::at(w.below, x);
    else if constexpr (V == Edge::last)
        return Samples::at(w.above, x);
    else
        return Samples::at(w.above, x) + Samples::at(w.below, x);
}

template <class Samples, Edge H>
uint32_t horizontal_sum(const uint8_t *line, uint32_t x) {
    if constexpr (H == Edge::first)
        return Samples::at(line, x + 1);
    else if constexpr (H == Edge::last)
        return Samples::at(line, x - 1);
    else
        return Samples::at(line, x - 1) + Samples::at(line, x + 1);
}

// The pixel of a site at line edge V and column edge H.
template <class Rules, class Departures, class Samples, class Out,
          class Kind, Edge V, Edge H>
struct Site {
    static void green(const Window &w, uint32_t x, const Scale &scale,
                      uint8_t *d) {
        const Channel own = scale.value(Samples::at(w.line, x));
        const Channel row = Rules::template mean<neighbours(H)>(
            scale, horizontal_sum<Samples, H>(w.line, x));
        const uint32_t vertical = vertical_sum<Samples, V>(w, x);
        Channel column = Rules::template mean<neighbours(V)>(scale, vertical);
        if constexpr (V == Edge::inner &&
                      ((H == Edge::last &&
                        Departures::raw_column_colour_at_last_column) ||
                       (H == Edge::first &&
                        Departures::raw_column_colour_at_first_column)))
            column = Scale::unscaled(vertical >> 1);
        put_pixel<Kind, Out>(d, row, own, column);
    }

    static void colour(const Window &w, uint32_t x, const Scale &scale,
                       uint8_t *d) {
        const Channel own = scale.value(Samples::at(w.line, x));
        put_pixel<Kind, Out>(d, own, green_at_colour(w, x, scale),
                             opposite_at_colour(w, x, scale));
    }

private:
    // Green of a red or blue site: all four cross neighbours inside, the
    // two along a border line or column, one of each at a corner.
    static Channel green_at_colour(const Window &w, uint32_t x,
                                   const Scale &scale) {
        constexpr unsigned down = neighbours(V);
        constexpr unsigned across = neighbours(H);
        if constexpr (down == 2 && across == 2) {
            return Rules::cross(scale, Samples::at(w.above, x),
                                Samples::at(w.below, x),
                                Samples::at(w.line, x - 1),
                                Samples::at(w.line, x + 1));
        } else if constexpr (V == Edge::first && H == Edge::last &&
                             Departures::top_right_green_from_below_right) {
            return Rules::template mean<2>(
                scale, Samples::at(w.line, x - 1) + Samples::at(w.below, x + 1));
        } else if constexpr (down == across) {
            return Rules::template mean<2>(
                scale, vertical_sum<Samples, V>(w, x) +
                           horizontal_sum<Samples, H>(w.line, x));
        } else if constexpr (down == 2) {
            return Rules::template mean<2>(scale,
                                           vertical_sum<Samples, V>(w, x));
        } else {
            return Rules::template mean<2>(
                scale, horizontal_sum<Samples, H>(w.line, x));
        }
    }

    // Opposite colour of a red or blue site: the diagonals that exist.
    static Channel opposite_at_colour(const Window &w, uint32_t x,
                                      const Scale &scale) {
        if constexpr (V == Edge::inner && H == Edge::inner) {
            return Rules::diagonal(scale, Samples::at(w.above, x - 1),
                                   Samples::at(w.above, x + 1),
                                   Samples::at(w.below, x - 1),
                                   Samples::at(w.below, x + 1));
        } else {
            uint32_t sum = 0;
            if constexpr (H != Edge::first)
                sum += vertical_sum<Samples, V>(w, x - 1);
            if constexpr (H != Edge::last)
                sum += vertical_sum<Samples, V>(w, x + 1);
            return Rules::template mean<neighbours(V) * neighbours(H)>(scale,
                                                                       sum);
        }
    }
};

// One line of kind `Kind` on line edge V: column 0, the pairs (x, x + 1)
// with x odd (on inner lines the first of them by the line's vector run,
// if it has one), then the lone last column of an even width.
template <class Rules, class Departures, class Samples, class Out,
          class Kind, Edge V>
void neighbourhood_line(const Window &w, const Image &image, LineRun run,
                        uint8_t *d) {
    // Colour sites sit on the even columns unless the line starts green.
    using First = Site<Rules, Departures, Samples, Out, Kind, V, Edge::first>;
    using Inner = Site<Rules, Departures, Samples, Out, Kind, V, Edge::inner>;
    using Last = Site<Rules, Departures, Samples, Out, Kind, V, Edge::last>;
    constexpr uint32_t px = Out::bytes;
    const uint32_t width = image.width;
    const Scale &scale = image.scale;
    uint32_t x = 1;
    if constexpr (V == Edge::inner)
        x += run_columns(run, run_lines(w.line, w.above, w.below, image), d);
    if constexpr (Kind::green_first) {
        First::green(w, 0, scale, d);
        for (; pair_fits(x, width); x += 2) {
            Inner::colour(w, x, scale, d + uintptr_t{x} * px);
            Inner::green(w, x + 1, scale, d + uintptr_t{x} * px + px);
        }
        if (has_lone_last_column(width))
            Last::colour(w, width - 1, scale, d + uintptr_t{width - 1} * px);
    } else {
        First::colour(w, 0, scale, d);
        for (; pair_fits(x, width); x += 2) {
            Inner::green(w, x, scale, d + uintptr_t{x} * px);
            Inner::colour(w, x + 1, scale, d + uintptr_t{x} * px + px);
        }
        if (has_lone_last_column(width))
            Last::green(w, width - 1, scale, d + uintptr_t{width - 1} * px);
    }
}

// Line 0 by the first-line rules, lines 1 to H - 2 by the inner rules in
// alternating kinds, then the last line by the last-line rules. The last
// line is never line 0: an image of one line (or none) still gets a
// second line, read from and written to one stride past line 0.
template <Method M, class Rules, class Departures, class Samples, class Out,
          class P>
void neighbourhood_walk(const Image &image, const BayerKernels &kernels) {
    using Even = typename P::even;
    using Odd = typename P::odd;
    const uint32_t width = image.width;
    const uint32_t last = image.height >= 2 ? image.height - 1 : 1;
    const uintptr_t below_shift =
        Departures::below_shifted_for_odd_width && !has_lone_last_column(width)
            ? Samples::size
            : 0;
    const auto inner_window = [&](uint32_t y) {
        return Window{image.source_line(y - 1), image.source_line(y),
                      advance(image.source_line(y + 1), below_shift)};
    };
    const LineRun odd_run = line_run<M, Samples, Out, Odd>(kernels, image.scale);
    const LineRun even_run =
        line_run<M, Samples, Out, Even>(kernels, image.scale);

    neighbourhood_line<Rules, Departures, Samples, Out, Even, Edge::first>(
        Window{nullptr, image.source_line(0), image.source_line(1)}, image,
        nullptr, image.destination_line(0));
    uint32_t y = 1;
    for (; y + 1 < last; y += 2) {
        neighbourhood_line<Rules, Departures, Samples, Out, Odd, Edge::inner>(
            inner_window(y), image, odd_run, image.destination_line(y));
        neighbourhood_line<Rules, Departures, Samples, Out, Even, Edge::inner>(
            inner_window(y + 1), image, even_run,
            image.destination_line(y + 1));
    }
    if (y < last) {
        neighbourhood_line<Rules, Departures, Samples, Out, Odd, Edge::inner>(
            inner_window(y), image, odd_run, image.destination_line(y));
    }
    const Window bottom{image.source_line(last - 1), image.source_line(last),
                        nullptr};
    if (last & 1)
        neighbourhood_line<Rules, Departures, Samples, Out, Odd, Edge::last>(
            bottom, image, nullptr, image.destination_line(last));
    else
        neighbourhood_line<Rules, Departures, Samples, Out, Even, Edge::last>(
            bottom, image, nullptr, image.destination_line(last));
}

} // namespace bayer
} // namespace orv

#endif // ORVANE_BAYER_NEIGHBOURHOOD_H
