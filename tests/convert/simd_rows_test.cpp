// The SSE2 twins of the YUV 4:2:2 rows against the plain rows, byte for
// byte: every width up to 70 and a few long odd ones, lines at padded and
// odd distances, buffers sized to exactly the bytes the plain row touches
// and a preset destination, so a byte written that the plain row leaves
// alone (an X byte, a gap, the pixel after an odd final pair) shows up
// as well as a wrong value.
#include "convert/yuv422_rows.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

namespace {

#if defined(__SSE2__)

using Bytes = std::vector<uint8_t>;
using orv::yuv422::Row;

struct LayoutRows {
    const char *name;
    uint32_t bytes;
    Row plain, twin;
};

template <class Layout> LayoutRows rows_of(const char *name) {
    return {name, Layout::bytes, orv::yuv422::yuv422_row<Layout>,
            orv::yuv422::yuv422_row_sse2<Layout>};
}

const LayoutRows layouts[] = {
    rows_of<orv::LayoutXbgr32>("XBGR32"),
    rows_of<orv::LayoutBgrx32>("BGRX32"),
    rows_of<orv::LayoutXrgb32>("XRGB32"),
    rows_of<orv::LayoutRgbx32>("RGBX32"),
    rows_of<orv::LayoutBgr24>("BGR24"),
    rows_of<orv::LayoutRgb24>("RGB24")};

std::vector<uint32_t> widths() {
    std::vector<uint32_t> w;
    for (uint32_t i = 0; i <= 70; ++i) w.push_back(i);
    for (uint32_t i : {255u, 1001u, 4097u}) w.push_back(i);
    return w;
}

// Random bytes, or bytes drawn from the values where the clamps and the
// floors change (every luma and chroma at 0, 1, 127, 128, 129, 254, 255).
enum class Content { Random, Extremes };

Bytes source_bytes(size_t count, Content content, uint32_t seed) {
    Bytes bytes = orv_test::random_bytes(count, seed);
    if (content == Content::Extremes) {
        static const uint8_t extremes[] = {0, 1, 127, 128, 129, 254, 255};
        for (auto &b : bytes) b = extremes[b % 7];
    }
    return bytes;
}

// Three lines, each at its own stride, into a destination preset to 0xA5.
Bytes run(Row row, const Bytes &src, uint32_t src_stride, uint32_t dst_stride,
          size_t dst_size, uint32_t width) {
    Bytes dst(dst_size, 0xA5);
    for (uint32_t line = 0; line < 3; ++line)
        row(src.data() + line * src_stride, dst.data() + line * dst_stride,
            width);
    return dst;
}

size_t first_difference(const Bytes &a, const Bytes &b) {
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i]) return i;
    return a.size();
}

struct Case {
    const LayoutRows *layout;
    uint32_t width, src_gap, dst_gap;
    Content content;
};

std::vector<Case> cases() {
    std::vector<Case> all;
    for (const auto &layout : layouts)
        for (uint32_t width : widths())
            for (uint32_t src_gap : {0u, 3u})
                for (uint32_t dst_gap : {0u, 1u, 6u})
                    for (Content c : {Content::Random, Content::Extremes})
                        all.push_back({&layout, width, src_gap, dst_gap, c});
    return all;
}

TEST(Yuv422RowTwins, WriteTheSameBytesAsThePlainRows) {
    uint32_t seed = 1;
    for (const Case &c : cases()) {
        // An odd width converts a whole final pair.
        const uint32_t pairs = c.width / 2 + (c.width & 1u);
        const uint32_t src_line = 4 * pairs;
        const uint32_t dst_line = 2 * pairs * c.layout->bytes;
        const uint32_t src_stride = src_line + c.src_gap;
        const uint32_t dst_stride = dst_line + c.dst_gap;
        const Bytes src = source_bytes(2 * size_t(src_stride) + src_line,
                                       c.content, ++seed);
        const size_t dst_size = 2 * size_t(dst_stride) + dst_line;
        const Bytes expected = run(c.layout->plain, src, src_stride,
                                   dst_stride, dst_size, c.width);
        const Bytes actual = run(c.layout->twin, src, src_stride, dst_stride,
                                 dst_size, c.width);
        ASSERT_EQ(first_difference(actual, expected), dst_size)
            << c.layout->name << " width " << c.width << " gaps " << c.src_gap
            << "/" << c.dst_gap << " content " << int(c.content);
    }
}

#else

TEST(Yuv422RowTwins, WriteTheSameBytesAsThePlainRows) {
    GTEST_SKIP() << "no SSE2 on this target: conversions run the plain rows";
}

#endif

} // namespace
