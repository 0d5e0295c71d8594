// Every SIMD conversion row against the plain row, byte for byte: every
// grey class, Y12P row, colour pair and YUV 4:2:2 layout, at every level
// up to the one in use. Widths 0 to 67 and a few long ones; source and
// destination end flush against an inaccessible page, so a twin that
// reads or writes a byte past what the plain row touches faults; the
// destination starts as a pattern, so a byte the plain row leaves alone
// (an X byte) must stay as it was.
#include "convert/kernels.h"
#include "support/guarded_bytes.h"
#include "support/kernel_levels.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orv::ConvertKernels;
using orv::RowFunction;
using Bytes = std::vector<uint8_t>;

// What one row touches for a width: bytes read from the source and bytes
// written (or left) in the destination, both from the row's start.
struct Extent {
    size_t src, dst;
};
using ExtentOf = Extent (*)(uint32_t width, uint32_t src_bytes,
                            uint32_t dst_bytes);

Extent per_pixel(uint32_t w, uint32_t sb, uint32_t db) {
    return {size_t(w) * sb, size_t(w) * db};
}
// Pair rows convert a whole final pair on an odd width; sb is the source
// bytes per pair.
Extent per_pair(uint32_t w, uint32_t sb, uint32_t db) {
    const size_t pairs = w / 2 + (w & 1u);
    return {pairs * sb, pairs * 2 * db};
}
// RGB30 into RGB48 reads the word after each pixel.
Extent one_word_past(uint32_t w, uint32_t sb, uint32_t db) {
    return {size_t(w) * sb + 4, size_t(w) * db};
}

struct Row {
    std::string name;
    RowFunction (*pick)(const ConvertKernels &, unsigned, unsigned);
    unsigned a, b;
    uint32_t src_bytes, dst_bytes;
    ExtentOf extent;
};

std::vector<Row> rows() {
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
    std::vector<Row> all;
    for (unsigned s = 0; s < orv::kGreySources; ++s)
        for (unsigned c = 0; c < orv::kGreyClasses; ++c)
            all.push_back({std::string(grey_src_names[s]) + " class " +
                               std::to_string(c),
                           [](const ConvertKernels &k, unsigned a,
                              unsigned b) { return k.grey[a][b]; },
                           s, c, grey_src_bytes[s], class_bytes[c], per_pixel});
    for (unsigned c = 0; c < orv::kGreyClasses; ++c)
        all.push_back({"Y12P class " + std::to_string(c),
                       [](const ConvertKernels &k, unsigned, unsigned b) {
                           return k.y12p[b];
                       },
                       0, c, 3, class_bytes[c], per_pair});
    for (unsigned s = 0; s < orv::kColourSources; ++s)
        for (unsigned d = 0; d < orv::kColourDestinations; ++d) {
            const bool reads_next = s == orv::kFromRgb30 &&
                                    d + orv::kFirstColourDestination == 0x0E;
            all.push_back({std::string(colour_src_names[s]) + " to 0x" +
                               std::to_string(d + 5),
                           [](const ConvertKernels &k, unsigned a,
                              unsigned b) { return k.colour[a][b]; },
                           s, d, colour_src_bytes[s], colour_dst_bytes[d],
                           reads_next ? one_word_past : per_pixel});
        }
    all.push_back({"BGRX32 to BGR24",
                   [](const ConvertKernels &k, unsigned, unsigned) {
                       return k.bgrx32_to_bgr24;
                   },
                   0, 0, 4, 3, per_pixel});
    for (unsigned l = 0; l < orv::kYuvLayouts; ++l)
        all.push_back({"YUV422 layout " + std::to_string(l),
                       [](const ConvertKernels &k, unsigned, unsigned b) {
                           return k.yuv422[b];
                       },
                       0, l, 4, l < orv::kYuvToBgr24 ? 4u : 3u, per_pair});
    return all;
}

std::vector<uint32_t> widths() {
    std::vector<uint32_t> w;
    for (uint32_t i = 0; i <= 67; ++i) w.push_back(i);
    for (uint32_t i : {255u, 1000u, 1921u, 4099u}) w.push_back(i);
    return w;
}

// Random bytes, or bytes from the values where shifts, flags, clamps and
// floors change: 0, 1, 0x0F, 0x10, 0x7F, 0x80, 0x81, 0xF0, 0xFE, 0xFF.
Bytes source(size_t count, bool extremes, uint32_t seed) {
    Bytes bytes = orv_test::random_bytes(count, seed);
    if (extremes) {
        static const uint8_t edge[] = {0,    1,    0x0F, 0x10, 0x7F,
                                       0x80, 0x81, 0xF0, 0xFE, 0xFF};
        for (auto &b : bytes) b = edge[b % 10];
    }
    return bytes;
}

// The longest row: 4099 pixels of 6 bytes.
constexpr size_t kRoom = 4100 * 6;

Bytes run(RowFunction row, const Bytes &src, size_t dst_size,
          uint32_t width) {
    static orv_test::GuardedBytes in(kRoom), out(kRoom);
    const uint8_t *s = in.place(src);
    row(s, out.place(Bytes(dst_size, 0xA5)), width);
    return out.last(dst_size);
}

const ConvertKernels *const by_level[orv::kSimdLevels] =
    ORV_TABLES_BY_LEVEL(convert_kernels);

TEST(ConversionRowTwins, WriteExactlyThePlainRowsBytes) {
    const auto twins = orv_test::twin_tables(by_level);
    if (twins.empty()) GTEST_SKIP() << "no SIMD level in use";
    uint32_t seed = 1;
    for (const Row &r : rows()) {
        const RowFunction plain = r.pick(*by_level[0], r.a, r.b);
        if (plain == nullptr) continue; // a pair that is not converted
        for (uint32_t width : widths())
            for (bool extremes : {false, true}) {
                const Extent e = r.extent(width, r.src_bytes, r.dst_bytes);
                const Bytes src = source(e.src, extremes, ++seed);
                const Bytes expected = run(plain, src, e.dst, width);
                for (const auto &twin : twins) {
                    const RowFunction row = r.pick(*twin.table, r.a, r.b);
                    ASSERT_NE(row, nullptr) << r.name << " at " << twin.level;
                    ASSERT_EQ(run(row, src, e.dst, width), expected)
                        << r.name << " at " << twin.level << ", width "
                        << width << (extremes ? ", extreme values" : "");
                }
            }
    }
}

} // namespace
