// Worked examples of the three demosaic methods on small mosaics: known
// inputs with hand-computed outputs, the refusals, and the bytes that the
// routines must leave alone.
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using orv_test::TestImage;

using Bay8Routine = ORV_STATUS (*)(OFS_HANDLE, OFS_HANDLE);
using BaynRoutine = ORV_STATUS (*)(OFS_HANDLE, OFS_HANDLE, uint32_t);

// A BAY8 mosaic of `width` x `height` samples at `stride` bytes per line,
// with `extra` readable bytes after the last line.
struct Mosaic8 {
    TestImage image;
    Mosaic8(uint32_t width, uint32_t height, uint32_t stride,
            const std::vector<uint8_t> &samples, size_t extra = 0)
        : image(ORV_FORMAT_BAY8, width, height, stride,
                size_t(stride) * height + extra, 0) {
        std::copy(samples.begin(), samples.end(), image.data());
    }
};

// (B, G, R) of pixel (y, x) of a BGRX32 image of `width` pixels per line.
struct Bgr {
    uint8_t b, g, r;
    bool operator==(const Bgr &o) const {
        return b == o.b && g == o.g && r == o.r;
    }
};
std::ostream &operator<<(std::ostream &os, const Bgr &p) {
    return os << "(B " << int(p.b) << ", G " << int(p.g) << ", R "
              << int(p.r) << ")";
}
Bgr bgrx_at(const TestImage &image, uint32_t stride, uint32_t y, uint32_t x) {
    const uint8_t *p = image.data() + size_t(y) * stride + size_t(x) * 4;
    return {p[0], p[1], p[2]};
}

// ---- dup --------------------------------------------------------------------

TEST(BayerDup, TwoByTwoPhaseACopiesTheBlockSamples) {
    Mosaic8 src(2, 2, 2, {0x00, 0x01, 0x10, 0x11});
    TestImage dst(ORV_FORMAT_BGRX32, 2, 2, 8, 16, 0xEE);
    ASSERT_EQ(OVC_BAY8_to_BGRX32_dup_A(src.image.handle(), dst.handle()),
              ORV_OK);
    const Bgr want[4] = {{0x11, 0x01, 0x00}, {0x11, 0x01, 0x00},
                         {0x11, 0x10, 0x00}, {0x11, 0x10, 0x00}};
    for (uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(bgrx_at(dst, 8, i / 2, i % 2), want[i]) << "pixel " << i;
        EXPECT_EQ(dst[i * 4 + 3], 0xEE) << "X byte of pixel " << i;
    }
}

// Column 0 of line 2 is a colour site in phases A and D: its green comes
// from the site above, except in phase B (never) and in the RGB16 members
// of phase D. Every sample is distinct, so the green names its source.
TEST(BayerDup, ColumnZeroGreenSourceDependsOnPhaseAndOutput) {
    std::vector<uint8_t> samples(16);
    for (int i = 0; i < 16; ++i) samples[i] = uint8_t(8 * i); // (y,x) = 32y+8x
    struct Case {
        const char *name;
        Bay8Routine routine;
        bool rgb16;
        uint32_t line;
        uint8_t green;
    } const cases[] = {
        {"BGRX32 A line 2", OVC_BAY8_to_BGRX32_dup_A, false, 2, 32},   // (1,0)
        {"BGRX32 D line 2", OVC_BAY8_to_BGRX32_dup_D, false, 2, 32},   // (1,0)
        {"RGB16 D line 2", OVC_BAY8_to_RGB16_dup_D, true, 2, 72},      // (2,1)
        {"RGB16 A line 2", OVC_BAY8_to_RGB16_dup_A, true, 2, 32},      // (1,0)
        {"BGRX32 B line 1", OVC_BAY8_to_BGRX32_dup_B, false, 1, 40},   // (1,1)
        {"BGRX32 C line 1", OVC_BAY8_to_BGRX32_dup_C, false, 1, 0},    // (0,0)
    };
    for (const Case &c : cases) {
        Mosaic8 src(4, 4, 4, samples);
        TestImage dst(c.rgb16 ? ORV_FORMAT_RGB16 : ORV_FORMAT_BGRX32, 4, 4,
                      16, 64, 0);
        ASSERT_EQ(c.routine(src.image.handle(), dst.handle()), ORV_OK);
        const uint32_t g = c.rgb16 ? (dst.u16(c.line * 16) >> 5) & 0x3F
                                   : bgrx_at(dst, 16, c.line, 0).g;
        EXPECT_EQ(g, c.rgb16 ? uint32_t(c.green >> 2) : c.green) << c.name;
    }
}

TEST(BayerDup, OneLineImageWritesOnlyLineZeroFromLineOne) {
    // Line 1 lies beyond the image but inside the caller's memory.
    Mosaic8 src(2, 1, 2, {0x00, 0x01}, 2);
    src.image[2] = 0x10;
    src.image[3] = 0x11;
    TestImage dst(ORV_FORMAT_BGR24, 2, 2, 6, 12, 0xEE);
    ASSERT_EQ(OVC_BAY8_to_BGR24_dup_A(src.image.handle(), dst.handle()),
              ORV_OK);
    const uint8_t want[6] = {0x11, 0x01, 0x00, 0x11, 0x01, 0x00};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(dst[i], want[i]) << i;
    for (int i = 6; i < 12; ++i) EXPECT_EQ(dst[i], 0xEE) << i;
}

// ---- n-bit narrowing and packing ----------------------------------------------

TEST(BayerDepth, DepthEightIsRefusedBeforeAnythingIsWritten) {
    const BaynRoutine routines[] = {OVC_BAYn_to_BGRX32_dup_A,
                                    OVC_BAYn_to_RGBX32_dup_B,
                                    OVC_BAYn_to_RGB16_dup_D};
    for (BaynRoutine routine : routines) {
        TestImage src(ORV_FORMAT_BAY12, 2, 2, 4, 8, 0x55);
        TestImage dst(ORV_FORMAT_BGRX32, 2, 2, 8, 16, 0xEE);
        EXPECT_EQ(routine(src.handle(), dst.handle(), 8), ORV_ERROR_BAD_PARAM);
        for (size_t i = 0; i < dst.size(); ++i) ASSERT_EQ(dst[i], 0xEE);
    }
}

// A uniform word image: every channel is the word narrowed by depth - 8,
// keeping the low byte; RGB16 takes blue by its own unmasked shift.
TEST(BayerDepth, UniformWordsNarrowAndPack) {
    struct Case {
        uint16_t word;
        uint32_t depth;
        uint8_t channel;
        uint16_t rgb16;
    } const cases[] = {
        {0x0FF0, 12, 0xFF, 0xFFFF},
        {0xFFFF, 10, 0xFF, 0xFFFF},
        {0x0FFF, 10, 0xFF, 0xFFFF},
        {0x0200, 10, 0x80, 0x8410},
        {0x1234, 16, 0x12, 0x1000 | 0x0080 | 0x02},
    };
    for (const Case &c : cases) {
        TestImage src(ORV_FORMAT_BAY10, 4, 4, 8, 32, 0);
        for (int i = 0; i < 16; ++i) src.put_u16(2 * i, c.word);
        TestImage bgr(ORV_FORMAT_BGR24, 4, 4, 12, 48, 0);
        TestImage rgb16(ORV_FORMAT_RGB16, 4, 4, 8, 32, 0);
        ASSERT_EQ(OVC_BAYn_to_BGR24_dup_C(src.handle(), bgr.handle(), c.depth),
                  ORV_OK);
        ASSERT_EQ(OVC_BAYn_to_RGB16_dup_C(src.handle(), rgb16.handle(),
                                          c.depth),
                  ORV_OK);
        for (int i = 0; i < 48; ++i)
            ASSERT_EQ(bgr[i], c.channel) << std::hex << c.word << " byte " << i;
        for (int i = 0; i < 16; ++i)
            ASSERT_EQ(rgb16.u16(2 * i), c.rgb16) << std::hex << c.word;
    }
}

// A blue word above the depth keeps its high bits in the RGB16 blue field:
// 0x0FFF at depth 10 gives B field 31 and sets the low two green bits.
TEST(BayerDepth, Rgb16BlueFieldIsNotMasked) {
    TestImage src(ORV_FORMAT_BAY10, 2, 2, 4, 8, 0);
    src.put_u16(6, 0x0FFF); // (1,1) is the blue site of phase A
    TestImage dst(ORV_FORMAT_RGB16, 2, 2, 4, 8, 0xEE);
    ASSERT_EQ(OVC_BAYn_to_RGB16_dup_A(src.handle(), dst.handle(), 10), ORV_OK);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(dst.u16(2 * i), 0x007F) << i;
}

} // namespace
