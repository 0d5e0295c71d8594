// The kernel table entries the twin tests and the differential fuzz
// target walk, with what each touches: every conversion row (grey classes,
// Y12P, colour pairs, BGRX32 into BGR24, YUV 4:2:2 layouts) with the bytes
// it reads and writes for a width, and every de-interlace line pair with
// its line shape.
#ifndef ORVANE_TEST_KERNEL_ROWS_H
#define ORVANE_TEST_KERNEL_ROWS_H

#include "convert/kernels.h"
#include "deinterlace/kernels.h"
#include "support/field_lines.h"

#include <string>
#include <vector>

namespace orv_test {

// What one row touches for a width: bytes read from the source and bytes
// written (or left) in the destination, both from the row's start.
struct Extent {
    size_t src, dst;
};
using ExtentOf = Extent (*)(uint32_t width, uint32_t src_bytes,
                            uint32_t dst_bytes);

inline Extent per_pixel(uint32_t w, uint32_t sb, uint32_t db) {
    return {size_t(w) * sb, size_t(w) * db};
}
// Pair rows convert a whole final pair on an odd width; sb is the source
// bytes per pair.
inline Extent per_pair(uint32_t w, uint32_t sb, uint32_t db) {
    const size_t pairs = w / 2 + (w & 1u);
    return {pairs * sb, pairs * 2 * db};
}
// RGB30 into RGB48 reads the word after the last pixel.
inline Extent one_word_past(uint32_t w, uint32_t sb, uint32_t db) {
    return {size_t(w) * sb + 4, size_t(w) * db};
}

struct ConversionRow {
    std::string name;
    orv::RowFunction (*pick)(const orv::ConvertKernels &, unsigned, unsigned);
    unsigned a, b;
    uint32_t src_bytes, dst_bytes;
    ExtentOf extent;
};

inline std::vector<ConversionRow> conversion_rows() {
    static const uint32_t grey_src_bytes[orv::kGreySources] = {1, 2, 2, 2, 2};
    static const char *grey_src_names[orv::kGreySources] = {"Y8", "Y16", "Y10",
                                                            "Y12", "Y14"};
    static const uint32_t class_bytes[orv::kGreyClasses] = {1, 2, 4, 2, 2,
                                                            4, 6, 4, 3};
    static const uint32_t colour_src_bytes[orv::kColourSources] = {3, 6, 6, 4};
    static const char *colour_src_names[orv::kColourSources] = {
        "BGR24", "BGR48", "BGR36", "RGB30"};
    static const uint32_t colour_dst_bytes[orv::kColourDestinations] = {
        2, 2, 4, 4, 6, 2, 2, 4, 4, 6, 4, 4, 3, 3};
    std::vector<ConversionRow> all;
    for (unsigned s = 0; s < orv::kGreySources; ++s)
        for (unsigned c = 0; c < orv::kGreyClasses; ++c)
            all.push_back({std::string(grey_src_names[s]) + " class " +
                               std::to_string(c),
                           [](const orv::ConvertKernels &k, unsigned a,
                              unsigned b) { return k.grey[a][b]; },
                           s, c, grey_src_bytes[s], class_bytes[c], per_pixel});
    for (unsigned c = 0; c < orv::kGreyClasses; ++c)
        all.push_back({"Y12P class " + std::to_string(c),
                       [](const orv::ConvertKernels &k, unsigned, unsigned b) {
                           return k.y12p[b];
                       },
                       0, c, 3, class_bytes[c], per_pair});
    for (unsigned s = 0; s < orv::kColourSources; ++s)
        for (unsigned d = 0; d < orv::kColourDestinations; ++d) {
            const bool reads_next = s == orv::kFromRgb30 &&
                                    d + orv::kFirstColourDestination == 0x0E;
            all.push_back({std::string(colour_src_names[s]) + " to 0x" +
                               std::to_string(d + 5),
                           [](const orv::ConvertKernels &k, unsigned a,
                              unsigned b) { return k.colour[a][b]; },
                           s, d, colour_src_bytes[s], colour_dst_bytes[d],
                           reads_next ? one_word_past : per_pixel});
        }
    all.push_back({"BGRX32 to BGR24",
                   [](const orv::ConvertKernels &k, unsigned, unsigned) {
                       return k.bgrx32_to_bgr24;
                   },
                   0, 0, 4, 3, per_pixel});
    for (unsigned l = 0; l < orv::kYuvLayouts; ++l)
        all.push_back({"YUV422 layout " + std::to_string(l),
                       [](const orv::ConvertKernels &k, unsigned, unsigned b) {
                           return k.yuv422[b];
                       },
                       0, l, 4, l < orv::kYuvToBgr24 ? 4u : 3u, per_pair});
    return all;
}

// The filled line writes `filled_line(...).length` bytes after the copy's
// stride and reads as many from each field line; LineDup's filled line is
// a second copy: it reads the line above only.
struct FieldLine {
    const char *name;
    orv::deinterlace::LinePair orv::deinterlace::DeinterlaceKernels::*entry;
    Shape shape;
    bool median = false, reads_line_below = true;
};

inline const std::vector<FieldLine> &field_line_entries() {
    static const std::vector<FieldLine> entries = {
    {"LineDup", &orv::deinterlace::DeinterlaceKernels::line_twice, Shape::bytes, false, false},
    {"LineAve", &orv::deinterlace::DeinterlaceKernels::average, Shape::bytes},
    {"Bilinear Y8", &orv::deinterlace::DeinterlaceKernels::bilinear_grey, Shape::grey},
    {"Bilinear 24-bit", &orv::deinterlace::DeinterlaceKernels::bilinear_triple, Shape::triple},
    {"Bilinear 32-bit", &orv::deinterlace::DeinterlaceKernels::bilinear_quad, Shape::quad},
    {"Bilinear YUV 4:2:2", &orv::deinterlace::DeinterlaceKernels::bilinear_yuv, Shape::yuv},
    {"Median Y8", &orv::deinterlace::DeinterlaceKernels::median_grey, Shape::grey, true},
    {"Median 24-bit", &orv::deinterlace::DeinterlaceKernels::median_triple, Shape::triple, true},
    {"Median 32-bit", &orv::deinterlace::DeinterlaceKernels::median_quad, Shape::quad, true},
    {"Median YUV 4:2:2", &orv::deinterlace::DeinterlaceKernels::median_yuv, Shape::yuv, true},
    };
    return entries;
}

} // namespace orv_test

#endif // ORVANE_TEST_KERNEL_ROWS_H
