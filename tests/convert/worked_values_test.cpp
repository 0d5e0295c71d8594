// Worked values of the grey and colour conversions: one pixel each, the
// values where a shift, a flag or an unmasked bit shows. Every pair's
// whole output is held by the recorded checksums.
#include "support/test_image.h"

#include <gtest/gtest.h>

namespace {

using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

Bytes u16(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8)}; }
Bytes u32(uint32_t v) {
    return {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
}
uint32_t format(uint32_t low) { return 0xC0022600u | low; }

struct GreyWorked {
    uint32_t src_format, dst_format, sample;
    Bytes bytes;
};

const GreyWorked grey_worked[] = {
    {ORV_FORMAT_Y8, ORV_FORMAT_RGB30, 0xFF, u32(0x3FC3FCFF)},
    {ORV_FORMAT_Y8, ORV_FORMAT_RGB16, 0xFF, u16(0xFFFF)},
    {ORV_FORMAT_Y8, ORV_FORMAT_BGRX32, 0xFF, {0xFF, 0xFF, 0xFF, 0xFF}},
    {ORV_FORMAT_Y16, ORV_FORMAT_RGB30, 0, u32(0)},
    {ORV_FORMAT_Y16, ORV_FORMAT_BGR30, 1, u32(0x00010040)},
    {ORV_FORMAT_Y10, ORV_FORMAT_RGB30, 0x3FF, u32(0x004013FF)},
    {ORV_FORMAT_Y12, ORV_FORMAT_RGB30, 0xFFF, u32(0x3FF | 0x400 | 0x100000)},
    {ORV_FORMAT_Y14, ORV_FORMAT_RGB30, 0x10, u32(0x1 | 0x100 | 0x40000)},
    {ORV_FORMAT_Y10, ORV_FORMAT_Y16, 0x3FF, u16(0x03FF)},
    {ORV_FORMAT_Y10, ORV_FORMAT_RGB15, 0xFFFF, u16(0x7FFF)}, // unmasked bits
    {ORV_FORMAT_Y10, ORV_FORMAT_Y8, 0xFFFF, {0xFF}},
    {ORV_FORMAT_Y10, ORV_FORMAT_RGB30, 0xFFFF, u32(0xFFFF | 0x400000)},
    {ORV_FORMAT_Y8, ORV_FORMAT_1D, 0x80, {0x80, 0, 0x80, 0, 0x80, 0}},
    {ORV_FORMAT_Y8, ORV_FORMAT_Y14, 0xFF, u16(0x00FF)},
};

TEST(GreyConversions, WorkedValues) {
    for (const GreyWorked &c : grey_worked) {
        TestImage src(c.src_format, 1, 1, 2, 2, 0);
        if (c.src_format == ORV_FORMAT_Y8) src[0] = uint8_t(c.sample);
        else src.put_u16(0, uint16_t(c.sample));
        TestImage dst(c.dst_format, 1, 1, uint32_t(c.bytes.size()));
        ASSERT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_OK);
        EXPECT_EQ(dst.bytes(), c.bytes)
            << std::hex << c.src_format << " -> " << c.dst_format << " of "
            << c.sample;
    }
}

struct ColourWorked {
    const char *what;
    uint32_t src, dst;
    Bytes pixel, expected;
};

TEST(ColourConversions, WorkedValues) {
    const ColourWorked cases[] = {
        {"BGRX32 exchanges R and B", 0x08, 0x11, {0x10, 0x20, 0x30, 0x40}, {0x30, 0x20, 0x10}},
        {"BGR24 to RGB16", 0x11, 0x06, {0xFF, 0x80, 0x01}, {0x1F, 0x04}},
        {"BGR24 to RGB30", 0x11, 0x0F, {0xFF, 0x80, 0x01}, {0xFF, 0x00, 0x42, 0x00}},
        {"BGR48 full B and G to RGB16", 0x09, 0x06, {0xFF, 0xFF, 0xFF, 0xFF, 0, 0}, {0x1F, 0}},
        {"BGR48 R flag already set", 0x09, 0x06, {0xFF, 0xFF, 0xFF, 0xFF, 1, 0}, {0x1F, 0}},
        {"BGR48 R flag alone", 0x09, 0x06, {0, 0, 0, 0, 1, 0}, {0x01, 0}},
        {"BGR36 to RGB16", 0x1C, 0x06, {0xFF, 0x0F, 0, 0, 0xFF, 0x0F}, {0x1F, 0}},
        {"BGR36 to BGR24", 0x1C, 0x11, {0xFF, 0x0F, 0, 0, 0xFF, 0x0F}, {0xFF, 0x00, 0xFF}},
    };
    for (const auto &c : cases) {
        TestImage source(format(c.src), 1, 1, uint32_t(c.pixel.size()));
        std::copy(c.pixel.begin(), c.pixel.end(), source.data());
        TestImage target(format(c.dst), 1, 1, uint32_t(c.expected.size()));
        ASSERT_EQ(OVC_Convert(source.handle(), target.handle()), ORV_OK) << c.what;
        EXPECT_EQ(target.bytes(), c.expected) << c.what;
    }
}

} // namespace
