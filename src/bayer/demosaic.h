// The frame that every demosaic routine shares: the two sample classes
// (bytes, or 16-bit words of some depth) and how a value is narrowed to a
// channel, the five output packers, the colour phases as pairs of line
// kinds, the buffer queries, and the addressing of lines.
//
// A method (dup.h, ave.h, med.h) is one walk template over the sample
// class, the packer and the phase; it decides which line kind and which
// column kind run where, so its pixel loops test nothing but their bound.
// The inner stretch of a line may be done by a vector run from the kernel
// table (kernels.h); members.cpp defines the 81 routines.
#ifndef ORVANE_BAYER_DEMOSAIC_H
#define ORVANE_BAYER_DEMOSAIC_H

#include <orvane/bayer.h>

#include "kernels.h"
#include "../common/query.h"
#include "../convert/byte_layouts.h"

#include <cstdint>

namespace orv {
namespace bayer {

// ---- Channels ---------------------------------------------------------------

// One output channel as the packers take it. `value` is the channel on the
// 8-bit scale; it is never clamped, so bits above the eighth survive and
// the byte packers keep only its low byte. `low5` is the five-bit field
// that the RGB16 packer puts in bits 0-4, narrowed from the full-depth
// value by its own shift and not masked: for a word with bits set above
// the depth it spills into the green field.
struct Channel {
    uint32_t value;
    uint32_t low5;
};

// How values of one sample depth become channels. Shift counts are taken
// modulo 32, so any depth narrows by a well-defined shift; only depth 8 is
// refused, by the n-bit routines.
struct Scale {
    uint32_t to8;      // depth - 8
    uint32_t to5;      // depth - 5
    uint32_t half_to8; // depth - 7: halves a sum of two and narrows it
    uint32_t half_to5; // depth - 4

    static Scale of_depth(uint32_t depth) {
        return {(depth - 8) & 31, (depth - 5) & 31, (depth - 7) & 31,
                (depth - 4) & 31};
    }

    // A sample, or a mean already formed at full depth.
    Channel value(uint32_t v) const { return {v >> to8, v >> to5}; }

    // The mean of two samples given as their sum, with the halving folded
    // into the narrowing shifts.
    Channel mean_of_sum(uint32_t sum) const {
        return {sum >> half_to8, sum >> half_to5};
    }

    // A full-depth value that bypasses narrowing, packed as if 8-bit.
    static Channel unscaled(uint32_t v) { return {v, v >> 3}; }

    // The vector runs narrow a halved sum where the plain code narrows the
    // sum by one bit more; the two agree unless a shift count wraps past
    // 31 (depths 4 and 7, modulo 32), which stay on the plain path.
    bool halving_folds_into_shifts() const {
        return half_to8 == to8 + 1 && half_to5 == to5 + 1;
    }
};

// ---- Sample classes -----------------------------------------------------------

// BAY8: one byte per site.
struct ByteSamples {
    static constexpr unsigned index = 0;
    static constexpr uint32_t size = 1;
    static constexpr unsigned unit_shift = 0;
    static constexpr bool refuses(uint32_t) { return false; }
    static uint32_t at(const uint8_t *line, uint32_t x) { return line[x]; }
};

// BAYn: one little-endian 16-bit word per site, `depth` significant bits.
// Bits above the depth are not masked. Depth 8 is refused: a byte mosaic
// belongs to the BAY8 routines.
struct WordSamples {
    static constexpr unsigned index = 1;
    static constexpr uint32_t size = 2;
    static constexpr unsigned unit_shift = 1;
    static constexpr bool refuses(uint32_t depth) { return depth - 8 == 0; }
    static uint32_t at(const uint8_t *line, uint32_t x) {
        return load_u16(line + static_cast<uintptr_t>(x) * 2);
    }
};

// ---- Output packers -------------------------------------------------------------
// put(d, r, g, b) stores one pixel. The X byte of the 32-bit layouts is
// never written: callers keep their alpha there.

// The byte layouts (shared with the conversions) take the low byte of
// each channel.
template <class Layout, unsigned Index> struct PackBytes {
    static constexpr unsigned index = Index;
    static constexpr uint32_t bytes = Layout::bytes;
    static void put(uint8_t *d, Channel r, Channel g, Channel b) {
        Layout::put(d, r.value, g.value, b.value);
    }
};

using PackBgrx32 = PackBytes<LayoutBgrx32, 0>;
using PackRgbx32 = PackBytes<LayoutRgbx32, 1>;
using PackBgr24 = PackBytes<LayoutBgr24, 2>;

// R in bits 11-15 (cut to 16 bits), G in bits 5-10, B in bits 0-4 taken
// from its own unmasked five-bit field.
struct PackRgb16 {
    static constexpr unsigned index = 3;
    static constexpr uint32_t bytes = 2;
    static void put(uint8_t *d, Channel r, Channel g, Channel b) {
        store_u16(d, (((r.value >> 3) << 11) & 0xFFFFu) |
                         ((g.value << 3) & 0x7E0u) | b.low5);
    }
};

// B in bits 11-15, G in bits 5-10, R in bits 0-4 (8-bit sources only).
struct PackBgr16 {
    static constexpr unsigned index = 4;
    static constexpr uint32_t bytes = 2;
    static void put(uint8_t *d, Channel r, Channel g, Channel b) {
        store_u16(d, (((b.value >> 3) << 11) & 0xFFFFu) |
                         ((g.value << 3) & 0x7E0u) | (r.value >> 3));
    }
};

// ---- Phases ---------------------------------------------------------------------

// Each line of a mosaic holds green and one other colour.
enum class Colour { red, blue };

constexpr Colour opposite(Colour c) {
    return c == Colour::red ? Colour::blue : Colour::red;
}

// A line of the mosaic: its non-green colour, and whether green or that
// colour sits at column 0 (and so at every even column).
template <Colour C, bool GreenFirst> struct LineKind {
    static constexpr Colour colour = C;
    static constexpr bool green_first = GreenFirst;
    static constexpr unsigned index =
        (C == Colour::blue ? 2u : 0u) + (GreenFirst ? 1u : 0u);
};

// A phase fixes the kind of the even lines; the odd lines hold the other
// colour, on the other columns.
template <Colour EvenColour, bool EvenGreenFirst> struct Phase {
    using even = LineKind<EvenColour, EvenGreenFirst>;
    using odd = LineKind<opposite(EvenColour), !EvenGreenFirst>;
};

using PhaseA = Phase<Colour::red, false>;  // R G / G B
using PhaseB = Phase<Colour::red, true>;   // G R / B G
using PhaseC = Phase<Colour::blue, true>;  // G B / R G
using PhaseD = Phase<Colour::blue, false>; // B G / G R

// Stores a pixel of a line of kind K from its line colour, its green and
// the other colour.
template <class Kind, class Out>
void put_pixel(uint8_t *d, Channel line_colour, Channel green,
               Channel other_colour) {
    if constexpr (Kind::colour == Colour::red)
        Out::put(d, line_colour, green, other_colour);
    else
        Out::put(d, other_colour, green, line_colour);
}

// ---- The image and its lines ------------------------------------------------------

// What a routine learnt about its two buffers. Line starts are `pitch`
// bytes apart: the W samples or pixels of a line plus the line step,
// (stride - bytes of the line) as a 32-bit difference. The source is
// walked in samples, so a BAYn source drops an odd byte of its stride.
struct Image {
    const uint8_t *src;
    uintptr_t src_pitch;
    uint8_t *dst;
    uintptr_t dst_pitch;
    uint32_t width;
    uint32_t height;
    Scale scale;

    const uint8_t *source_line(uint32_t y) const {
        return advance(src, static_cast<uintptr_t>(y) * src_pitch);
    }
    uint8_t *destination_line(uint32_t y) const {
        return advance(dst, static_cast<uintptr_t>(y) * dst_pitch);
    }
};

inline uintptr_t line_pitch(uint32_t stride, uint32_t line_bytes,
                            unsigned unit_shift) {
    return static_cast<uintptr_t>(line_bytes) +
           (static_cast<uintptr_t>((stride - line_bytes) >> unit_shift)
            << unit_shift);
}

// The queries every routine makes, in their fixed order: both validity
// flags, the depth check of the n-bit routines, then source address,
// source stride, destination stride, destination address, source height
// and source width. The destination's own geometry is never asked for.
template <class Samples, class Out>
ORV_STATUS open_image(OFS_HANDLE source, OFS_HANDLE destination,
                      uint32_t depth, Image &image) {
    if (!buffer_is_valid(source)) return ORV_ERROR_BAD_PARAM;
    if (!buffer_is_valid(destination)) return ORV_ERROR_BAD_PARAM;
    if (Samples::refuses(depth)) return ORV_ERROR_BAD_PARAM;
    image.src = query_address(source);
    const uint32_t src_stride = query_u32(source, OFS_STRIDE);
    const uint32_t dst_stride = query_u32(destination, OFS_STRIDE);
    image.dst = query_address(destination);
    image.height = query_u32(source, OFS_HEIGHT);
    image.width = query_u32(source, OFS_WIDTH);
    image.src_pitch = line_pitch(src_stride, image.width * Samples::size,
                                 Samples::unit_shift);
    image.dst_pitch = line_pitch(dst_stride, image.width * Out::bytes, 0);
    image.scale = Scale::of_depth(depth);
    return ORV_OK;
}

// Pair loop bound: the pairs (1,2), (3,4), ... run while the pair's first
// column is below W - 1, counted unsigned as W - 2 columns.
inline bool pair_fits(uint32_t x, uint32_t width) { return x - 1 < width - 2; }

// With an even width the pairs stop at column W - 2 and column W - 1 is
// produced alone; with an odd width the last pair ends on it.
inline bool has_lone_last_column(uint32_t width) { return (width & 1) == 0; }

// The vector run of lines of kind Kind, or none (plain table, or a depth
// whose shifts the runs do not reproduce).
template <Method M, class Samples, class Out, class Kind>
LineRun line_run(const BayerKernels &kernels, const Scale &scale) {
    if (!scale.halving_folds_into_shifts()) return nullptr;
    return kernels.run[static_cast<unsigned>(M)][Samples::index][Out::index]
                      [Kind::index];
}

// Columns 1 to n of a line done by its run (n = 0 without one); the pair
// loop goes on from column n + 1.
inline uint32_t run_columns(LineRun run, const RunLines &lines, uint8_t *d) {
    return run != nullptr ? run(lines, d) : 0;
}

inline RunLines run_lines(const uint8_t *line, const uint8_t *above,
                          const uint8_t *below, const Image &image) {
    return {line, above, below, image.width, image.scale.to8, image.scale.to5};
}

// A whole routine: the queries, then the method's walk over the image
// with the kernel table of the level in use.
template <class MethodWalk, class Samples, class Out, class P>
ORV_STATUS demosaic(OFS_HANDLE source, OFS_HANDLE destination,
                    uint32_t depth) {
    Image image;
    const ORV_STATUS status =
        open_image<Samples, Out>(source, destination, depth, image);
    if (status != ORV_OK) return status;
    MethodWalk::template walk<Samples, Out, P>(image, kernels_in_use());
    return ORV_OK;
}

// The member list's words, as the types that implement them. The methods'
// types (DupMethod, AveMethod, MedMethod) are named by their own headers.
namespace member_words {
using BAY8 = ByteSamples;
using BAYn = WordSamples;
using BGRX32 = PackBgrx32;
using RGBX32 = PackRgbx32;
using BGR24 = PackBgr24;
using RGB16 = PackRgb16;
using BGR16 = PackBgr16;
using A = PhaseA;
using B = PhaseB;
using C = PhaseC;
using D = PhaseD;
} // namespace member_words

} // namespace bayer
} // namespace orv

// The depth that a routine of each sample class works at: a byte mosaic
// is 8 bits deep, an n-bit one has its depth argument.
#define ORV_BAYER_DEPTH_BAY8 8u
#define ORV_BAYER_DEPTH_BAYn depth

// The type of a member-list method word: dup -> DupMethod, and so on.
#define ORV_BAYER_METHOD_TYPE_dup DupMethod
#define ORV_BAYER_METHOD_TYPE_ave AveMethod
#define ORV_BAYER_METHOD_TYPE_med MedMethod

#endif // ORVANE_BAYER_DEMOSAIC_H
