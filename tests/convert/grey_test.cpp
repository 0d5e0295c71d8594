// Conversions from grey sources: every destination's pixel values, written
// here straight from the conversion tables, and the placement of rows for
// padded and odd strides.
#include "support/test_image.h"

#include <gtest/gtest.h>

namespace {

using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

Bytes u16(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8)}; }
Bytes u32(uint32_t v) {
    return {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
}
Bytes repeat(const Bytes &b, int n) {
    Bytes out;
    for (int i = 0; i < n; ++i) out.insert(out.end(), b.begin(), b.end());
    return out;
}

unsigned depth_of(uint32_t format) {
    switch (format & 0xFF) {
    case 0x01: return 8;
    case 0x13: return 10;
    case 0x14: return 12;
    case 0x15: return 14;
    default: return 16;
    }
}

// 5-5-5 and 5-6-5 words from a u16 grey sample, per source, as tabulated.
uint32_t word555(uint32_t format, uint32_t v) {
    switch (format & 0xFF) {
    case 0x02: return ((v >> 1) & 0x7C00) + ((v >> 6) & 0x3E0) + (v >> 11);
    case 0x13: return ((v << 5) & 0x7C00) | (v & 0x3E0) | (v >> 5);
    case 0x14: return ((v << 3) & 0x7C00) + (((v >> 2) & 0x3E0) | (v >> 7));
    case 0x15: return ((v << 1) & 0x7C00) + (((v >> 4) & 0x3E0) | (v >> 9));
    default: return (v >> 3) + ((v << 2) & 0x3E0) + ((v << 7) & 0x7C00);
    }
}
uint32_t word565(uint32_t format, uint32_t v) {
    switch (format & 0xFF) {
    case 0x02: return (v & 0xF800) + ((v >> 5) & 0x7E0) + ((v & 0xF800) >> 11);
    case 0x13: return ((v << 6) & 0xF800) + (((v << 1) & 0x7E0) | (v >> 5));
    case 0x14: return ((v << 4) & 0xF800) + (((v >> 1) & 0x7E0) | (v >> 7));
    case 0x15: return ((v << 2) & 0xF800) + (((v >> 3) & 0x7E0) | (v >> 9));
    default: return (v >> 3) + ((v << 3) & 0x7E0) + ((v << 8) & 0xF800);
    }
}
uint32_t word30(uint32_t format, uint32_t v) {
    if ((format & 0xFF) == 0x01) return v + (v << 10) + (v << 22);
    const unsigned s = depth_of(format) - 10;
    const uint32_t n = v != 0;
    return (v >> s) | (n << (12 - s)) | (n << (22 - s));
}

// The bytes one destination pixel receives from grey sample v.
Bytes expected_pixel(uint32_t src, uint32_t dst, uint32_t v) {
    const uint8_t p = uint8_t(v >> (depth_of(src) - 8));
    switch (dst & 0xFF) {
    case 0x01: return {p};
    case 0x02: case 0x13: case 0x14: case 0x15: return u16(v);
    case 0x03: return u32(v);
    case 0x05: case 0x0A: return u16(word555(src, v));
    case 0x06: case 0x0B: return u16(word565(src, v));
    case 0x07: case 0x08: case 0x0C: case 0x0D: return {p, p, p, p};
    case 0x09: case 0x0E: case 0x1C: case 0x1D: return repeat(u16(v), 3);
    case 0x0F: case 0x10: return u32(word30(src, v));
    default: return {p, p, p};
    }
}

// Destination formats per source, with the unit their row step counts in.
struct Destination {
    uint32_t format;
    uint32_t bytes;
    uint32_t step_unit;
};

const Destination all_destinations[] = {
    {ORV_FORMAT_Y8, 1, 1},     {ORV_FORMAT_Y16, 2, 2},    {ORV_FORMAT_Y32, 4, 4},
    {ORV_FORMAT_RGB15, 2, 2},  {ORV_FORMAT_RGB16, 2, 2},  {ORV_FORMAT_XBGR32, 4, 1},
    {ORV_FORMAT_BGRX32, 4, 1}, {ORV_FORMAT_BGR48, 6, 2},  {ORV_FORMAT_BGR15, 2, 2},
    {ORV_FORMAT_BGR16, 2, 2},  {ORV_FORMAT_XRGB32, 4, 1}, {ORV_FORMAT_RGBX32, 4, 1},
    {ORV_FORMAT_RGB48, 6, 2},  {ORV_FORMAT_RGB30, 4, 4},  {ORV_FORMAT_BGR30, 4, 4},
    {ORV_FORMAT_BGR24, 3, 1},  {ORV_FORMAT_RGB24, 3, 1},  {ORV_FORMAT_Y10, 2, 2},
    {ORV_FORMAT_Y12, 2, 2},    {ORV_FORMAT_Y14, 2, 2},    {ORV_FORMAT_BGR36, 6, 2},
    {ORV_FORMAT_1D, 6, 2},
};

bool converts(uint32_t src, uint32_t dst) {
    const uint32_t d = dst & 0xFF;
    if ((src & 0xFF) == 0x01) return d != 0x01; // Y8 into Y8 tested apart
    if (d == 0x13 || d == 0x14 || d == 0x15 || d == 0x1C || d == 0x1D)
        return false;
    return !(src == ORV_FORMAT_Y16 && d == 0x02); // copy, tested apart
}

const uint32_t grey_sources[] = {ORV_FORMAT_Y8, ORV_FORMAT_Y16, ORV_FORMAT_Y10,
                                 ORV_FORMAT_Y12, ORV_FORMAT_Y14};

// Samples that expose the formulas: zero, one, single bits, each depth's
// full scale and words with bits above the depth.
std::vector<uint32_t> samples_for(uint32_t src) {
    if (src == ORV_FORMAT_Y8) return {0, 1, 7, 8, 0x55, 0x80, 0xAA, 0xFE, 0xFF};
    return {0,     1,     0x1F,  0x20,  0x3F,  0x40,   0xFF,   0x100,
            0x3FF, 0x400, 0x7FF, 0xFFF, 0x1000, 0x3FFF, 0x8000, 0xFFFF};
}

// Every grey source into every destination: one image of 3 lines holding
// the samples, padded strides (odd remainders included), and a destination
// pre-filled with 0xEE. Row starts follow the truncated row steps; every
// other byte stays 0xEE.
TEST(GreyConversions, EveryPixelAndRowLandsWhereTheTablesSay) {
    for (uint32_t src_format : grey_sources) {
        const auto samples = samples_for(src_format);
        const uint32_t w = uint32_t(samples.size()), h = 3;
        const uint32_t src_bytes = src_format == ORV_FORMAT_Y8 ? 1 : 2;
        const uint32_t src_stride = w * src_bytes + 3; // odd remainder
        const uint32_t src_pitch = w * src_bytes + 3 / src_bytes * src_bytes;
        for (const Destination &d : all_destinations) {
            if (!converts(src_format, d.format)) continue;
            const uint32_t dst_stride = w * d.bytes + 5;
            const uint32_t dst_pitch = w * d.bytes + 5 / d.step_unit * d.step_unit;
            TestImage src(src_format, w, h, src_stride, src_stride * h, 0);
            for (uint32_t y = 0; y < h; ++y)
                for (uint32_t x = 0; x < w; ++x) {
                    const uint32_t v = samples[(x + y) % w];
                    if (src_bytes == 1) src[y * src_pitch + x] = uint8_t(v);
                    else src.put_u16(y * src_pitch + 2 * x, uint16_t(v));
                }
            TestImage dst(d.format, 0, h, dst_stride, dst_stride * h, 0xEE);
            ASSERT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_OK)
                << std::hex << src_format << " -> " << d.format;

            Bytes expected(dst.size(), 0xEE);
            for (uint32_t y = 0; y < h; ++y)
                for (uint32_t x = 0; x < w; ++x) {
                    const Bytes px = expected_pixel(src_format, d.format,
                                                    samples[(x + y) % w]);
                    std::copy(px.begin(), px.end(),
                              expected.begin() + y * dst_pitch + x * d.bytes);
                }
            EXPECT_EQ(dst.bytes(), expected)
                << std::hex << src_format << " -> " << d.format;
        }
    }
}

struct Worked {
    uint32_t src_format, dst_format, sample;
    Bytes bytes;
};

const Worked worked[] = {
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
    for (const Worked &c : worked) {
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

// Y12P: pairs of 12-bit samples in three bytes, each pixel the top eight
// bits of its sample. An odd width converts a whole last pair, and both
// row steps count W pixels from where the pair loop stopped.
struct PackedDestination {
    uint32_t format;
    uint32_t bytes;
};

const PackedDestination packed_destinations[] = {
    {ORV_FORMAT_RGB16, 2},  {ORV_FORMAT_BGR16, 2},  {ORV_FORMAT_XBGR32, 4},
    {ORV_FORMAT_BGRX32, 4}, {ORV_FORMAT_XRGB32, 4}, {ORV_FORMAT_RGBX32, 4},
    {ORV_FORMAT_BGR24, 3},  {ORV_FORMAT_RGB24, 3},
};

TEST(GreyConversions, PackedTwelveBitPairsAndOddWidths) {
    for (const PackedDestination &d : packed_destinations) {
        for (uint32_t w : {1u, 2u, 3u, 6u, 7u}) {
            const uint32_t h = 3, pairs = (w + 1) / 2;
            const uint32_t src_stride = 3 * pairs + 2;
            // An odd padding: a 16-bit destination steps in whole words and
            // drops the odd byte, the byte destinations keep it.
            const uint32_t dst_stride = w * d.bytes + 5;
            const uint32_t dst_padding = d.bytes == 2 ? 4 : 5;
            const uint32_t src_pitch = 3 * pairs + (src_stride - 3 * w / 2);
            const uint32_t dst_pitch = 2 * pairs * d.bytes + dst_padding;
            const Bytes pattern = orv_test::random_bytes(src_stride * h, w);
            TestImage src(ORV_FORMAT_Y12P, w, h, src_stride, src_pitch * h + 3);
            std::copy(pattern.begin(), pattern.end(), src.data());
            TestImage dst(d.format, w, h, dst_stride, dst_pitch * h, 0xEE);
            ASSERT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_OK);

            Bytes expected(dst.size(), 0xEE);
            for (uint32_t y = 0; y < h; ++y)
                for (uint32_t x = 0; x < 2 * pairs; ++x) {
                    const uint8_t *b = src.data() + y * src_pitch + 3 * (x / 2);
                    const uint8_t p =
                        x % 2 ? uint8_t((b[1] << 4) | (b[2] >> 4)) : b[0];
                    const Bytes px = expected_pixel(ORV_FORMAT_Y8, d.format, p);
                    std::copy(px.begin(), px.end(),
                              expected.begin() + y * dst_pitch + x * d.bytes);
                }
            EXPECT_EQ(dst.bytes(), expected) << std::hex << d.format << " w " << w;
        }
    }
}

} // namespace
