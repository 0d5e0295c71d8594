// Worked values of the conversions, one pixel (a YUV 4:2:2 pair) each: the
// values where a shift, a flag, an unmasked bit, a clamp or a floor shows.
// Every pair's whole output is held by the recorded checksums.
#include "support/test_image.h"

#include <gtest/gtest.h>

namespace {

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
        orv_test::TestImage src(c.src, c.width, 1, uint32_t(c.source.size()));
        std::copy(c.source.begin(), c.source.end(), src.data());
        orv_test::TestImage dst(c.dst, c.width, 1, uint32_t(c.expected.size()));
        ASSERT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_OK);
        EXPECT_EQ(dst.bytes(), c.expected)
            << std::hex << c.src << " -> " << c.dst << " of " << testing::PrintToString(c.source);
    }
}

} // namespace
