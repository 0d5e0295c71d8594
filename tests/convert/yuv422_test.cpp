// Conversions from YUV 4:2:2: the fixed-point BT.601 arithmetic against a
// floor-division model over every chroma pair, and, for every layout, the
// packed source walk, odd widths and the bytes left alone.
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

int floor_div(int a, int b) { return a / b - (a % b != 0 && a < 0); }
uint8_t clamp(int v) { return uint8_t(v < 0 ? 0 : v > 255 ? 255 : v); }

struct Rgb { uint8_t r, g, b; };

Rgb model(int y, int u, int v) {
    const int d = u - 128, e = v - 128;
    return {clamp(y + floor_div(1436 * e, 1024)),
            clamp(y - floor_div(731 * e + 352 * d, 1024)),
            clamp(y + floor_div(1815 * d, 1024))};
}

struct Layout {
    uint32_t low;
    uint32_t bytes;
    int r, g, b; // byte offsets; the rest of a pixel is never written
};

const Layout layouts[] = {{0x07, 4, 3, 2, 1}, {0x08, 4, 2, 1, 0},
                          {0x0C, 4, 1, 2, 3}, {0x0D, 4, 0, 1, 2},
                          {0x11, 3, 2, 1, 0}, {0x12, 3, 0, 1, 2}};

// Every layout from one packed run of pairs (the source stride is
// ignored), at odd and even widths, the widest a line holding every (U, V)
// with random luma. Each destination line starts at the stride from where
// the last pixel written ends, a pixel further on for an odd width; the
// other bytes stay as they were.
TEST(Yuv422Conversions, EveryLayoutAndChromaPairMatchesTheFloorModel) {
    for (const Layout &layout : layouts) {
        for (uint32_t width : {1u, 2u, 5u, 6u, 2u * 65536}) {
            const uint32_t height = width > 6 ? 1 : 3, pairs = (width + 1) / 2;
            const uint32_t dst_stride = width * layout.bytes + 5;
            TestImage source(ORV_FORMAT_YUV422, width, height, 2 * width + 6,
                             4 * pairs * height);
            Bytes yuv = orv_test::random_bytes(source.size(), width);
            for (uint32_t i = 0; height == 1 && i < 65536; ++i) {
                yuv[4 * i + 1] = uint8_t(i);
                yuv[4 * i + 3] = uint8_t(i >> 8);
            }
            std::copy(yuv.begin(), yuv.end(), source.data());
            const size_t room = size_t(dst_stride) * height + 2 * layout.bytes;
            TestImage target(0xC0022600u | layout.low, width, height, dst_stride, room);
            const Bytes before = orv_test::random_bytes(room, 99);
            std::copy(before.begin(), before.end(), target.data());
            ASSERT_EQ(OVC_Convert(source.handle(), target.handle()), ORV_OK);

            Bytes expected = before;
            size_t line = 0;
            for (uint32_t y = 0; y < height; ++y) {
                for (uint32_t x = 0; x < 2 * pairs; ++x) {
                    const uint8_t *pair = &yuv[4 * (y * pairs + x / 2)];
                    const Rgb c = model(pair[2 * (x % 2)], pair[1], pair[3]);
                    uint8_t *d = &expected[line + x * layout.bytes];
                    d[layout.r] = c.r, d[layout.g] = c.g, d[layout.b] = c.b;
                }
                line += 2 * pairs * layout.bytes + (dst_stride - width * layout.bytes);
            }
            const Bytes &got = target.bytes();
            EXPECT_EQ(std::mismatch(got.begin(), got.end(), expected.begin()).first - got.begin(),
                      std::ptrdiff_t(got.size()))
                << "first byte that differs; layout 0x" << std::hex << layout.low << std::dec
                << ", width " << width;
        }
    }
}

} // namespace
