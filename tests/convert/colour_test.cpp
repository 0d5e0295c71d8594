// Conversions from the colour sources: every one of the 56 pairs (and
// BGRX32 into BGR24) against the per-pair formulas written out literally,
// on random pixels and on samples chosen to expose them (flags clear and
// set, shift boundaries, out-of-depth bits), padded and odd strides, with X
// bytes and padding preset; the worked values; and the capacity tests in
// their exact forms, refusals writing nothing.
#include "support/test_image.h"

#include <gtest/gtest.h>

namespace {

using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

uint32_t u16_at(const uint8_t *p) { return p[0] | p[1] << 8; }
uint32_t u32_at(const uint8_t *p) {
    return p[0] | p[1] << 8 | p[2] << 16 | uint32_t(p[3]) << 24;
}
void put16(uint8_t *d, uint32_t v) { d[0] = uint8_t(v); d[1] = uint8_t(v >> 8); }
void put32(uint8_t *d, uint32_t v) {
    for (int i = 0; i < 4; ++i) d[i] = uint8_t(v >> (8 * i));
}
uint32_t f(uint32_t sample) { return sample != 0; }

size_t source_bytes(uint32_t src) {
    switch (src) {
    case 0x11: return 3;
    case 0x09: case 0x1C: return 6;
    default: return 4; // RGB30, BGRX32
    }
}
unsigned source_unit_shift(uint32_t src) {
    return src == 0x11 || src == 0x08 ? 0 : src == 0x0F ? 2 : 1;
}
size_t destination_bytes(uint32_t dst) {
    switch (dst) {
    case 0x05: case 0x06: case 0x0A: case 0x0B: return 2;
    case 0x09: case 0x0E: return 6;
    case 0x11: case 0x12: return 3;
    default: return 4;
    }
}
unsigned destination_unit_shift(uint32_t dst) {
    switch (dst) {
    case 0x05: case 0x06: case 0x0A: case 0x0B: case 0x09: case 0x0E: return 1;
    case 0x0F: case 0x10: return 2;
    default: return 0;
    }
}

// Writes the destination pixel `d` for source pixel `s` (`next` is the
// following source pixel), by the formulas of each pair.
void expected_pixel(uint32_t src, uint32_t dst, const uint8_t *s,
                    const uint8_t *next, uint8_t *d) {
    uint32_t B = 0, G = 0, R = 0, v = 0;
    uint32_t p15 = 0, p16 = 0, q15 = 0, q16 = 0, p30 = 0, q30 = 0; // RGB*, BGR*
    uint32_t b8 = 0, g8 = 0, r8 = 0, w[3] = {0, 0, 0}, rgb48[3] = {0, 0, 0};
    switch (src) {
    case 0x11:
        B = s[0], G = s[1], R = s[2];
        p15 = ((R << 7) & 0x7C00) + ((G << 2) & 0x3E0) + (B >> 3);
        p16 = ((R << 8) & 0xF800) + ((G << 3) & 0x7E0) + (B >> 3);
        q15 = ((B << 7) & 0x7C00) + ((G << 2) & 0x3E0) + (R >> 3);
        q16 = ((B << 8) & 0xF800) + ((G << 3) & 0x7E0) + (R >> 3);
        p30 = (R << 22) + (G << 10) + B;
        q30 = (B << 22) + (G << 10) + R;
        b8 = B, g8 = G, r8 = R;
        w[0] = B, w[1] = G, w[2] = R;
        rgb48[0] = R, rgb48[1] = G, rgb48[2] = B;
        break;
    case 0x09:
        B = u16_at(s), G = u16_at(s + 2), R = u16_at(s + 4);
        p15 = B >> 11;
        p16 = (B >> 11) | f(R);
        q15 = R >> 11;
        q16 = (R >> 11) | f(B);
        p30 = ((B >> 6) | (G ? 0x40 : 0)) + (R ? 0x10000 : 0);
        q30 = ((B ? 0x10000 : 0) + (G ? 0x40 : 0)) | (R >> 6);
        b8 = B >> 8, g8 = G >> 8, r8 = R >> 8;
        w[0] = B, w[1] = G, w[2] = R;
        rgb48[0] = R, rgb48[1] = G, rgb48[2] = B;
        break;
    case 0x1C:
        B = u16_at(s), G = u16_at(s + 2), R = u16_at(s + 4);
        p15 = (B >> 7) | (R ? 0x08 : 0);
        p16 = (B >> 7) | (R ? 0x10 : 0);
        q15 = (R >> 7) | (B ? 0x08 : 0);
        q16 = (R >> 7) | (B ? 0x10 : 0);
        p30 = ((B >> 2) | (G ? 0x400 : 0)) + (R ? 0x100000 : 0);
        q30 = ((B ? 0x100000 : 0) + (G ? 0x400 : 0)) | (R >> 2);
        b8 = (B >> 4) & 0xFF, g8 = (G >> 4) & 0xFF, r8 = (R >> 4) & 0xFF;
        w[0] = B << 4, w[1] = G << 4, w[2] = R << 4;
        rgb48[0] = R << 4, rgb48[1] = G << 4, rgb48[2] = B << 4;
        break;
    case 0x0F:
        v = u32_at(s);
        p15 = ((v >> 17) & 0x7C00) + ((v >> 12) & 0x3E0) + ((v >> 5) & 0x1F);
        p16 = ((v >> 16) & 0xF800) + ((v >> 11) & 0x7E0) + ((v >> 5) & 0x1F);
        q15 = ((v << 5) & 0x7C00) + ((v >> 12) & 0x3E0) + (v >> 27);
        q16 = ((v << 6) & 0xF800) + ((v >> 11) & 0x7E0) + (v >> 27);
        p30 = v;
        q30 = (v << 22) + (v & 0x3FFC00) + (v >> 22);
        b8 = (v >> 2) & 0xFF, g8 = (v >> 14) & 0xFF, r8 = v >> 24;
        w[0] = v & 0x3FF, w[1] = (v >> 12) & 0x3FF, w[2] = v >> 22;
        rgb48[0] = v >> 22, rgb48[1] = (u32_at(next) >> 12) & 0x3FF,
        rgb48[2] = u32_at(next) & 0x3FF;
        break;
    case 0x08: // BGRX32 into BGR24 only: bytes 2, 1, 0
        d[0] = s[2], d[1] = s[1], d[2] = s[0];
        return;
    }
    const uint8_t bytes3[3] = {uint8_t(b8), uint8_t(g8), uint8_t(r8)};
    switch (dst) {
    case 0x05: put16(d, p15); break;
    case 0x06: put16(d, p16); break;
    case 0x0A: put16(d, q15); break;
    case 0x0B: put16(d, q16); break;
    case 0x0F: put32(d, p30); break;
    case 0x10: put32(d, q30); break;
    case 0x07: d[1] = bytes3[0], d[2] = bytes3[1], d[3] = bytes3[2]; break;
    case 0x08: case 0x11: d[0] = bytes3[0], d[1] = bytes3[1], d[2] = bytes3[2]; break;
    case 0x0C: d[1] = bytes3[2], d[2] = bytes3[1], d[3] = bytes3[0]; break;
    case 0x0D: case 0x12: d[0] = bytes3[2], d[1] = bytes3[1], d[2] = bytes3[0]; break;
    case 0x09: for (int i = 0; i < 3; ++i) put16(d + 2 * i, w[i]); break;
    case 0x0E: for (int i = 0; i < 3; ++i) put16(d + 2 * i, rgb48[i]); break;
    }
}

uint32_t format(uint32_t low) { return 0xC0022600u | low; }

struct Geometry {
    uint32_t width, height, src_pad, dst_pad; // pads: bytes beyond the row
};

// Converts an image and compares every destination byte with the formulas
// and the row walk (steps truncated to the walking unit). Pixels are random,
// or each line starts with the pixels of `line` when it is given.
void expect_pair_matches(uint32_t src, uint32_t dst, const Geometry &g,
                         const Bytes &line = {}) {
    const size_t sb = source_bytes(src), db = destination_bytes(dst);
    const uint32_t src_stride = uint32_t(g.width * sb + g.src_pad);
    const uint32_t dst_stride = uint32_t(g.width * db + g.dst_pad);
    // Room for the pixel after the last line, which RGB30 into RGB48 reads.
    TestImage source(format(src), g.width, g.height, src_stride,
                     size_t(src_stride) * g.height + 4);
    Bytes pixels = orv_test::random_bytes(source.size(), src * 256 + dst);
    for (uint32_t y = 0; y < g.height; ++y)
        std::copy(line.begin(), line.end(), pixels.begin() + y * src_stride);
    std::copy(pixels.begin(), pixels.end(), source.data());
    TestImage target(format(dst), g.width, g.height, dst_stride);
    const Bytes before = orv_test::random_bytes(target.size(), dst);
    std::copy(before.begin(), before.end(), target.data());
    ASSERT_EQ(OVC_Convert(source.handle(), target.handle()), ORV_OK);

    Bytes expected = before;
    size_t s_row = 0, d_row = 0;
    for (uint32_t y = 0; y < g.height; ++y) {
        for (uint32_t x = 0; x < g.width; ++x)
            expected_pixel(src, dst, &pixels[s_row + x * sb],
                           &pixels[s_row + (x + 1) * sb], &expected[d_row + x * db]);
        const unsigned su = source_unit_shift(src), du = destination_unit_shift(dst);
        s_row += g.width * sb + ((g.src_pad >> su) << su);
        d_row += g.width * db + ((g.dst_pad >> du) << du);
    }
    ASSERT_EQ(target.bytes(), expected)
        << std::hex << "pair " << src << " -> " << dst << std::dec << ", "
        << g.width << "x" << g.height << " pads " << g.src_pad << "/" << g.dst_pad;
}

const uint32_t fourteen[] = {0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B,
                             0x0C, 0x0D, 0x0E, 0x0F, 0x10, 0x11, 0x12};
const Geometry geometries[] = {{1, 1, 0, 0}, {5, 3, 0, 0}, {4, 4, 7, 5},
                               {3, 5, 1, 3}, {7, 2, 6, 2}};

TEST(ColourConversions, EveryPairFollowsItsFormulasAndRowSteps) {
    for (uint32_t src : {0x11u, 0x09u, 0x1Cu, 0x0Fu})
        for (uint32_t dst : fourteen)
            for (const auto &g : geometries) expect_pair_matches(src, dst, g);
    for (const auto &g : geometries) expect_pair_matches(0x08, 0x11, g);
}

// Every combination of per-sample values that expose the formulas: zero
// and non-zero for the flags, the bits just below and at each narrowing
// shift, full scale, and bits above a 12-bit sample's depth. RGB30 words
// take the values in their B, G and R fields and alternate bits 10-11.
Bytes exposing_line(uint32_t src) {
    std::vector<uint32_t> values;
    switch (src) {
    case 0x11: values = {0x00, 0x01, 0x07, 0x08, 0x80, 0xFF}; break;
    case 0x09: values = {0x0000, 0x0001, 0x07FF, 0x0800, 0x8000, 0xFFFF}; break;
    case 0x1C: values = {0x000, 0x001, 0x07F, 0x0FFF, 0x1000, 0xF00F}; break;
    case 0x0F: values = {0x000, 0x001, 0x01F, 0x020, 0x200, 0x3FF}; break;
    }
    Bytes line;
    uint8_t d[6];
    for (uint32_t b : values)
        for (uint32_t g : values)
            for (uint32_t r : values) {
                if (src == 0x11) {
                    line.insert(line.end(), {uint8_t(b), uint8_t(g), uint8_t(r)});
                    continue;
                }
                if (src == 0x0F) {
                    put32(d, b | g << 12 | r << 22 | (line.size() & 4 ? 0xC00 : 0));
                    line.insert(line.end(), d, d + 4);
                    continue;
                }
                put16(d, b), put16(d + 2, g), put16(d + 4, r);
                line.insert(line.end(), d, d + 6);
            }
    return line;
}

TEST(ColourConversions, ExposingSamplesFollowTheFormulas) {
    for (uint32_t src : {0x11u, 0x09u, 0x1Cu, 0x0Fu}) {
        const Bytes line = exposing_line(src);
        const uint32_t width = uint32_t(line.size() / source_bytes(src));
        for (uint32_t dst : fourteen)
            expect_pair_matches(src, dst, {width, 2, 3, 1}, line);
    }
}

struct Worked {
    const char *what;
    uint32_t src, dst;
    Bytes pixel, expected;
};

TEST(ColourConversions, WorkedValues) {
    const Worked cases[] = {
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

// Capacity factors (k, m) of each source by destination class.
struct Factors { uint32_t k, m; };
Factors factors(uint32_t src, uint32_t dst) {
    const size_t db = destination_bytes(dst);
    if (src == 0x08) return {12, 4};
    if (src == 0x0F) return db == 2 ? Factors{4, 2} : db == 4 ? Factors{4, 1}
                          : db == 6 ? Factors{12, 2} : Factors{12, 4};
    if (db == 2) return {6, 3};
    if (db == 4) return {12, 3};
    if (db == 6) return {6, 1};
    return src == 0x11 ? Factors{3, 1} : Factors{6, 2};
}

TEST(ColourConversions, CapacityTestsInTheirExactForms) {
    auto check = [](uint32_t src, uint32_t dst, uint32_t dst_stride,
                    uint32_t dst_height, ORV_STATUS expected) {
        TestImage source(format(src), 2, 3, 2 * uint32_t(source_bytes(src)), 64);
        const size_t room = expected == ORV_OK ? 3 * size_t(dst_stride) : 64;
        TestImage target(format(dst), 2, dst_height, dst_stride, room, 0x77);
        EXPECT_EQ(OVC_Convert(source.handle(), target.handle()), expected)
            << std::hex << src << " -> " << dst << std::dec << " stride "
            << dst_stride << " height " << dst_height;
        if (expected != ORV_OK) {
            EXPECT_EQ(target.bytes(), Bytes(room, 0x77));
        }
    };
    auto check_pair = [&](uint32_t src, uint32_t dst) {
        const Factors fa = factors(src, dst);
        const uint32_t needed = 2 * 3 * fa.k / fa.m; // bytes for 2 x 3 pixels
        check(src, dst, needed, 1, ORV_OK);
        check(src, dst, needed - 1, 1, ORV_ERROR_BAD_PARAM);
        // m x (stride x height) wraps to m: far too small for 6 pixels,
        // though the stride alone would hold them.
        if (fa.m > 1)
            check(src, dst, uint32_t(0x100000000ull / fa.m) + 1, 1,
                  ORV_ERROR_BAD_PARAM);
    };
    for (uint32_t src : {0x11u, 0x09u, 0x1Cu, 0x0Fu})
        for (uint32_t dst : fourteen) check_pair(src, dst);
    check_pair(0x08, 0x11);
}

} // namespace
