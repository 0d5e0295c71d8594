// Values of the conversions. Worked values, one pixel (a YUV 4:2:2 pair)
// each: where a shift, a flag, an unmasked bit, a clamp or a floor shows
// (every pair's whole output is held by the recorded checksums). And YUV
// 4:2:2 against a floor-division model of its fixed-point BT.601
// arithmetic over every chroma pair, in every layout.
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

Bytes u16(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8)}; }
Bytes u32(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)}; }

struct Worked {
    uint32_t src, dst, width;
    Bytes source, expected;
};

const Worked kWorked[] = {
    // grey, the 16-bit samples' bits above their depth included
    {ORV_FORMAT_Y8, ORV_FORMAT_RGB30, 1, {0xFF}, u32(0x3FC3FCFF)},
    {ORV_FORMAT_Y8, ORV_FORMAT_RGB16, 1, {0xFF}, u16(0xFFFF)},
    {ORV_FORMAT_Y8, ORV_FORMAT_BGRX32, 1, {0xFF}, {0xFF, 0xFF, 0xFF, 0xFF}},
    {ORV_FORMAT_Y16, ORV_FORMAT_RGB30, 1, u16(0), u32(0)},
    {ORV_FORMAT_Y16, ORV_FORMAT_BGR30, 1, u16(1), u32(0x00010040)},
    {ORV_FORMAT_Y10, ORV_FORMAT_RGB30, 1, u16(0x3FF), u32(0x004013FF)},
    {ORV_FORMAT_Y12, ORV_FORMAT_RGB30, 1, u16(0xFFF), u32(0x3FF | 0x400 | 0x100000)},
    {ORV_FORMAT_Y14, ORV_FORMAT_RGB30, 1, u16(0x10), u32(0x1 | 0x100 | 0x40000)},
    {ORV_FORMAT_Y10, ORV_FORMAT_Y16, 1, u16(0x3FF), u16(0x03FF)},
    {ORV_FORMAT_Y10, ORV_FORMAT_RGB15, 1, u16(0xFFFF), u16(0x7FFF)},
    {ORV_FORMAT_Y10, ORV_FORMAT_Y8, 1, u16(0xFFFF), {0xFF}},
    {ORV_FORMAT_Y10, ORV_FORMAT_RGB30, 1, u16(0xFFFF), u32(0xFFFF | 0x400000)},
    {ORV_FORMAT_Y8, ORV_FORMAT_1D, 1, {0x80}, {0x80, 0, 0x80, 0, 0x80, 0}},
    {ORV_FORMAT_Y8, ORV_FORMAT_Y14, 1, {0xFF}, u16(0x00FF)},
    // colour: BGRX32 into BGR24 exchanges R and B; the BGR48 R flag
    {ORV_FORMAT_BGRX32, ORV_FORMAT_BGR24, 1, {0x10, 0x20, 0x30, 0x40}, {0x30, 0x20, 0x10}},
    {ORV_FORMAT_BGR24, ORV_FORMAT_RGB16, 1, {0xFF, 0x80, 0x01}, {0x1F, 0x04}},
    {ORV_FORMAT_BGR24, ORV_FORMAT_RGB30, 1, {0xFF, 0x80, 0x01}, {0xFF, 0x00, 0x42, 0x00}},
    {ORV_FORMAT_BGR48, ORV_FORMAT_RGB16, 1, {0xFF, 0xFF, 0xFF, 0xFF, 0, 0}, {0x1F, 0}},
    {ORV_FORMAT_BGR48, ORV_FORMAT_RGB16, 1, {0xFF, 0xFF, 0xFF, 0xFF, 1, 0}, {0x1F, 0}},
    {ORV_FORMAT_BGR48, ORV_FORMAT_RGB16, 1, {0, 0, 0, 0, 1, 0}, {0x01, 0}},
    {ORV_FORMAT_BGR36, ORV_FORMAT_RGB16, 1, {0xFF, 0x0F, 0, 0, 0xFF, 0x0F}, {0x1F, 0}},
    {ORV_FORMAT_BGR36, ORV_FORMAT_BGR24, 1, {0xFF, 0x0F, 0, 0, 0xFF, 0x0F}, {0xFF, 0x00, 0xFF}},
    // YUV 4:2:2 (Y, U, Y, V) into RGB24: floors and clamps
    {ORV_FORMAT_YUV422, ORV_FORMAT_RGB24, 2, {128, 128, 128, 128}, {128, 128, 128, 128, 128, 128}},
    {ORV_FORMAT_YUV422, ORV_FORMAT_RGB24, 2, {16, 0, 16, 0}, {0, 152, 0, 0, 152, 0}},
    {ORV_FORMAT_YUV422, ORV_FORMAT_RGB24, 2, {235, 255, 235, 255}, {255, 101, 255, 255, 101, 255}},
    {ORV_FORMAT_YUV422, ORV_FORMAT_RGB24, 2, {128, 0, 128, 255}, {255, 82, 0, 255, 82, 0}},
    {ORV_FORMAT_YUV422, ORV_FORMAT_RGB24, 2, {100, 128, 100, 0}, {0, 192, 100, 0, 192, 100}},
};

TEST(Conversions, WorkedValues) {
    for (const Worked &c : kWorked) {
        TestImage src(c.src, c.width, 1, uint32_t(c.source.size()));
        std::copy(c.source.begin(), c.source.end(), src.data());
        TestImage dst(c.dst, c.width, 1, uint32_t(c.expected.size()));
        ASSERT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_OK);
        EXPECT_EQ(dst.bytes(), c.expected)
            << std::hex << c.src << " -> " << c.dst << " of " << testing::PrintToString(c.source);
    }
}

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
