// Worked examples of the three demosaic methods on small mosaics: known
// inputs with hand-computed outputs, the refusals, and the bytes that the
// routines must leave alone.
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
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
        EXPECT_LE(samples.size(), image.size());
        std::copy(samples.begin(),
                  samples.begin() + std::min(samples.size(), image.size()),
                  image.data());
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

// Runs a BAY8 routine on `samples` (W x H at stride W, plus `extra` bytes
// after the image) into a BGRX32 image of `lines` lines, X bytes 0xEE.
std::vector<Bgr> run_bgrx(Bay8Routine routine, uint32_t width,
                          uint32_t height, const std::vector<uint8_t> &samples,
                          size_t extra = 0, uint32_t lines = 0) {
    Mosaic8 src(width, height, width, samples, extra);
    if (lines == 0) lines = height;
    TestImage dst(ORV_FORMAT_BGRX32, width, lines, width * 4,
                  size_t(width) * 4 * lines, 0xEE);
    EXPECT_EQ(routine(src.image.handle(), dst.handle()), ORV_OK);
    std::vector<Bgr> out;
    for (uint32_t y = 0; y < lines; ++y)
        for (uint32_t x = 0; x < width; ++x) {
            out.push_back(bgrx_at(dst, width * 4, y, x));
            EXPECT_EQ(dst[(size_t(y) * width + x) * 4 + 3], 0xEE);
        }
    return out;
}

// s(y, x) = 3y + 5x + y*x, distinct enough to name its neighbours.
std::vector<uint8_t> ramp(uint32_t width, uint32_t height) {
    std::vector<uint8_t> v;
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            v.push_back(uint8_t(3 * y + 5 * x + y * x));
    return v;
}

// ---- ave --------------------------------------------------------------------

TEST(BayerAve, BorderDivisorsOnASixBySixPhaseAImage) {
    const auto s = ramp(6, 6);
    auto at = [&](int y, int x) { return uint32_t(s[y * 6 + x]); };
    const auto out = run_bgrx(OVC_BAY8_to_BGRX32_ave_A, 6, 6, s);
    EXPECT_EQ(out[0].g, (at(0, 1) + at(1, 0)) >> 1);
    EXPECT_EQ(out[2].g, (at(0, 1) + at(0, 3)) >> 1);
    EXPECT_EQ(out[2].b, (at(1, 1) + at(1, 3)) >> 1);
    EXPECT_EQ(out[35].r, at(4, 4));
    // An inner blue site averages four of each.
    EXPECT_EQ(out[1 * 6 + 3].g,
              (at(0, 3) + at(2, 3) + at(1, 2) + at(1, 4)) >> 2);
    EXPECT_EQ(out[1 * 6 + 3].r,
              (at(0, 2) + at(0, 4) + at(2, 2) + at(2, 4)) >> 2);
}

TEST(BayerAve, TwoByTwoGreensAreTruncatedCornerMeans) {
    const auto out =
        run_bgrx(OVC_BAY8_to_BGRX32_ave_A, 2, 2, {0x00, 0x01, 0x10, 0x11});
    const uint8_t greens[4] = {0x08, 0x01, 0x10, 0x08};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i].g, greens[i]) << i;
}

TEST(BayerAve, OddWidthReadsTheSampleFollowingTheLine) {
    const auto s = ramp(5, 2);
    const auto out = run_bgrx(OVC_BAY8_to_BGRX32_ave_A, 5, 2, s, 1);
    EXPECT_EQ(out[4].g, (uint32_t(s[3]) + s[5]) >> 1); // s(0,3), s(1,0)
}

TEST(BayerAve, OneLineImageGetsASecondLine) {
    const auto s = ramp(4, 2); // line 1 lies past the one-line image
    const auto one = run_bgrx(OVC_BAY8_to_BGRX32_ave_B, 4, 1, s, 4, 2);
    const auto two = run_bgrx(OVC_BAY8_to_BGRX32_ave_B, 4, 2, s);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(one[i], two[i]) << i;
}

// Phase B, depth 12, W = 6: the last green site of the inner B/G line 1
// takes red from (0,5) = 256 and (2,5) = 0. Only RGB16 phase B keeps the
// mean unnarrowed (R field 16); the other outputs narrow it.
TEST(BayerAve, Rgb16PhaseBRedOfLastColumnIsNotNarrowed) {
    TestImage src(ORV_FORMAT_BAY12, 6, 4, 12, 48, 0);
    src.put_u16(5 * 2, 256);
    TestImage rgb16(ORV_FORMAT_RGB16, 6, 4, 12, 48, 0);
    ASSERT_EQ(OVC_BAYn_to_RGB16_ave_B(src.handle(), rgb16.handle(), 12),
              ORV_OK);
    EXPECT_EQ(rgb16.u16(12 + 10) >> 11, 16);
    TestImage bgr(ORV_FORMAT_BGR24, 6, 4, 18, 72, 0);
    ASSERT_EQ(OVC_BAYn_to_BGR24_ave_B(src.handle(), bgr.handle(), 12), ORV_OK);
    EXPECT_EQ(bgr[18 + 15 + 2], 128 >> 4);
    // In phase C the site is green with blue above and below: narrowed.
    ASSERT_EQ(OVC_BAYn_to_RGB16_ave_C(src.handle(), rgb16.handle(), 12),
              ORV_OK);
    EXPECT_EQ(rgb16.u16(12 + 10) & 0x1F, 128 >> 7);
}

// ---- med --------------------------------------------------------------------

TEST(BayerMed, InnerSitesTakeTheMiddleTwoOfFour) {
    // Phase A, 4 x 4: (1,1) is blue with above 10, below 20, left 30,
    // right 200 and the diagonals 0, 0, 255, 255.
    std::vector<uint8_t> s(16, 0);
    s[0 * 4 + 1] = 10;
    s[2 * 4 + 1] = 20;
    s[1 * 4 + 0] = 30;
    s[1 * 4 + 2] = 200;
    s[2 * 4 + 0] = 255;
    s[2 * 4 + 2] = 255;
    const auto out = run_bgrx(OVC_BAY8_to_BGRX32_med_A, 4, 4, s);
    EXPECT_EQ(out[5].g, 25);
    EXPECT_EQ(out[5].r, 127);
}

TEST(BayerMed, SpikeReachesAdjacentGreensOnly) {
    // Phase A, 6 x 6: red (2,2) = 255 among zeros.
    std::vector<uint8_t> s(36, 0);
    s[2 * 6 + 2] = 255;
    const auto out = run_bgrx(OVC_BAY8_to_BGRX32_med_A, 6, 6, s);
    for (int d : {1 * 6 + 1, 1 * 6 + 3, 3 * 6 + 1, 3 * 6 + 3})
        EXPECT_EQ(out[d].r, 0) << d;
    for (int g : {1 * 6 + 2, 3 * 6 + 2, 2 * 6 + 1, 2 * 6 + 3})
        EXPECT_EQ(out[g].r, 127) << g;
}

TEST(BayerMed, FlatImageIsFlatAndOneLineWritesTwo) {
    for (Bay8Routine routine :
         {OVC_BAY8_to_BGRX32_med_A, OVC_BAY8_to_BGRX32_med_B,
          OVC_BAY8_to_BGRX32_med_C, OVC_BAY8_to_BGRX32_med_D}) {
        const auto out =
            run_bgrx(routine, 5, 1, std::vector<uint8_t>(11, 77), 6, 2);
        for (const Bgr &p : out) EXPECT_EQ(p, (Bgr{77, 77, 77}));
    }
}

// Phase B words at depth 10: on even inner line 2, column 0 is green and
// its blue is (above + below) >> 1 = 536 unnarrowed, low byte 24, in BGRX32
// and BGR24 only.
TEST(BayerMed, WordPhaseBBlueOfColumnZeroIsNotNarrowed) {
    TestImage src(ORV_FORMAT_BAY10, 4, 4, 8, 32, 0);
    src.put_u16(1 * 8, 100);
    src.put_u16(3 * 8, 973);
    TestImage bgrx(ORV_FORMAT_BGRX32, 4, 4, 16, 64, 0);
    ASSERT_EQ(OVC_BAYn_to_BGRX32_med_B(src.handle(), bgrx.handle(), 10),
              ORV_OK);
    EXPECT_EQ(bgrx[2 * 16], 24);
    TestImage bgr(ORV_FORMAT_BGR24, 4, 4, 12, 48, 0);
    ASSERT_EQ(OVC_BAYn_to_BGR24_med_B(src.handle(), bgr.handle(), 10), ORV_OK);
    EXPECT_EQ(bgr[2 * 12], 24);
    TestImage rgb16(ORV_FORMAT_RGB16, 4, 4, 8, 32, 0);
    ASSERT_EQ(OVC_BAYn_to_RGB16_med_B(src.handle(), rgb16.handle(), 10),
              ORV_OK);
    EXPECT_EQ(rgb16.u16(2 * 8) & 0x1F, 1073u >> 6); // sum >> (depth - 4)
}

// RGB16 phase C: line 0's last blue site averages left with below-right
// (past the end of line 1); with an odd width the inner lines read the
// line below one column to the right. BGRX32 phase C does neither.
TEST(BayerMed, Rgb16PhaseCReadsBelowRight) {
    const auto s = ramp(4, 3);
    Mosaic8 src(4, 3, 4, s);
    TestImage rgb16(ORV_FORMAT_RGB16, 4, 3, 8, 24, 0);
    ASSERT_EQ(OVC_BAY8_to_RGB16_med_C(src.image.handle(), rgb16.handle()),
              ORV_OK);
    EXPECT_EQ((rgb16.u16(6) >> 5) & 0x3F, ((s[2] + s[4 + 4]) >> 1) >> 2);
    const auto plain = run_bgrx(OVC_BAY8_to_BGRX32_med_C, 4, 3, s);
    EXPECT_EQ(plain[3].g, (s[2] + s[7]) >> 1);

    // W = 5, line 1 column 0 is red: green = (above + below-shifted) >> 1.
    const auto t = ramp(5, 3);
    Mosaic8 odd(5, 3, 5, t, 2); // the shifted read ends two samples past
    TestImage out(ORV_FORMAT_RGB16, 5, 3, 10, 30, 0);
    ASSERT_EQ(OVC_BAY8_to_RGB16_med_C(odd.image.handle(), out.handle()),
              ORV_OK);
    EXPECT_EQ((out.u16(10) >> 5) & 0x3F, ((t[0] + t[11]) >> 1) >> 2);
}

// ---- n-bit narrowing and packing ----------------------------------------------

TEST(BayerDepth, DepthEightIsRefusedBeforeAnythingIsWritten) {
    const BaynRoutine routines[] = {OVC_BAYn_to_BGRX32_dup_A,
                                    OVC_BAYn_to_RGBX32_dup_B,
                                    OVC_BAYn_to_RGB16_ave_B,
                                    OVC_BAYn_to_BGR24_med_C};
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
