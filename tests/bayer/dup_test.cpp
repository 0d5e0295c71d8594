// Worked values of the dup routines (every channel a copied sample) and of
// the frame all demosaic routines share: depth narrowing, packers, the
// lines written; with the column-0 departures of phases B and D.
#include "bayer/render.h"

namespace {

using namespace bayer_test;
using Bytes = std::vector<uint8_t>;

// Samples whose top six bits still tell every site apart.
std::vector<uint32_t> numbered(uint32_t width, uint32_t lines) {
    std::vector<uint32_t> s;
    for (uint32_t y = 0; y < lines; ++y)
        for (uint32_t x = 0; x < width; ++x) s.push_back(40 * y + 4 * x + 1);
    return s;
}

TEST(BayerDup, TwoByTwoPhaseA) {
    const Bytes d = render(member("OVC_BAY8_to_BGRX32_dup_A"), 2, 2, {0x00, 0x01, 0x10, 0x11});
    EXPECT_EQ(d, (Bytes{0x11, 0x01, 0x00, 0xEE, 0x11, 0x01, 0x00, 0xEE,
                        0x11, 0x10, 0x00, 0xEE, 0x11, 0x10, 0x00, 0xEE}));
}

// Where the green of a column-0 red or blue site comes from: the site
// above in phases A, C and D from line 1 on, the right neighbour in phase
// B, on line 0 and in the RGB16 routines of phase D.
TEST(BayerDup, ColumnZeroGreenSource) {
    struct Case {
        const char *member;
        uint32_t y, from_y, from_x;
    };
    const Case cases[] = {
        {"OVC_BAY8_to_BGRX32_dup_A", 2, 1, 0}, {"OVC_BAY8_to_BGRX32_dup_A", 0, 0, 1},
        {"OVC_BAY8_to_BGRX32_dup_B", 1, 1, 1}, {"OVC_BAY8_to_BGRX32_dup_B", 3, 3, 1},
        {"OVC_BAY8_to_BGR24_dup_C", 1, 0, 0},  {"OVC_BAY8_to_BGR24_dup_C", 3, 2, 0},
        {"OVC_BAY8_to_BGRX32_dup_D", 2, 1, 0}, {"OVC_BAY8_to_RGBX32_dup_D", 4, 3, 0},
        {"OVC_BAY8_to_BGRX32_dup_D", 0, 0, 1}, {"OVC_BAY8_to_RGB16_dup_D", 2, 2, 1},
        {"OVC_BAY8_to_RGB16_dup_D", 4, 4, 1},  {"OVC_BAY8_to_RGB16_dup_A", 2, 1, 0},
    };
    const std::vector<uint32_t> s = numbered(6, 6);
    for (const Case &c : cases) {
        const DemosaicMember &m = member(c.member);
        const Rendered p = pixel(render(m, 6, 6, s), m, 6, c.y, 0);
        const uint32_t want = s[c.from_y * 6 + c.from_x];
        if (m.output == 0x06)
            EXPECT_EQ((p.word >> 5) & 0x3F, want >> 2) << c.member << " line " << c.y;
        else
            EXPECT_EQ(p.green, want) << c.member << " line " << c.y;
    }
}

// The RGB16 and BGRX32 routines of phase D agree except on column 0 of
// lines 2, 4, ...
TEST(BayerDup, PhaseDPackedDiffersOnlyOnColumnZeroOfEvenLines) {
    const DemosaicMember &packed = member("OVC_BAY8_to_RGB16_dup_D");
    const DemosaicMember &bytes = member("OVC_BAY8_to_BGRX32_dup_D");
    const std::vector<uint32_t> s = numbered(6, 7);
    const Bytes a = render(packed, 6, 6, s), b = render(bytes, 6, 6, s);
    for (uint32_t y = 0; y < 6; ++y)
        for (uint32_t x = 0; x < 6; ++x) {
            const Rendered p = pixel(b, bytes, 6, y, x);
            const uint32_t word = ((p.red >> 3) << 11) | ((p.green << 3) & 0x7E0) | (p.blue >> 3);
            const bool differs = x == 0 && y >= 2 && y % 2 == 0;
            EXPECT_EQ(pixel(a, packed, 6, y, x).word != word, differs) << y << "," << x;
        }
}

// n-bit narrowing: the byte kept after the shift, out-of-depth bits
// included, and the RGB16 blue field that is not masked.
TEST(BayerDup, DepthNarrowing) {
    struct Case {
        const char *member;
        uint32_t depth, sample;
        uint8_t channel;
    };
    const Case cases[] = {{"OVC_BAYn_to_BGRX32_dup_A", 12, 0x0FF0, 0xFF},
                          {"OVC_BAYn_to_BGR24_dup_B", 10, 0xFFFF, 0xFF},
                          {"OVC_BAYn_to_RGBX32_dup_C", 14, 0x1234, 0x48},
                          {"OVC_BAYn_to_BGRX32_dup_D", 16, 0xA55A, 0xA5}};
    for (const Case &c : cases) {
        const DemosaicMember &m = member(c.member);
        const Rendered p = pixel(render(m, 2, 2, {c.sample, c.sample, c.sample, c.sample}, c.depth), m, 2, 1, 1);
        EXPECT_EQ(p.blue, c.channel) << c.member;
        EXPECT_EQ(p.green, c.channel) << c.member;
        EXPECT_EQ(p.red, c.channel) << c.member;
    }
    // Depth 10, blue word 0x0FFF: B field 31 and two bits spilled into G.
    const DemosaicMember &m = member("OVC_BAYn_to_RGB16_dup_A");
    const Bytes d = render(m, 2, 2, {0, 0, 0, 0x0FFF}, 10);
    for (uint32_t i = 0; i < 4; ++i) EXPECT_EQ(pixel(d, m, 2, i / 2, i % 2).word, 0x007F);
}

// Line 0 takes its missing colours from line 1 even when the image has
// one line or none; only line 0 is written then.
TEST(BayerDup, ShortImagesWriteLineZero) {
    const DemosaicMember &m = member("OVC_BAY8_to_BGR24_dup_A");
    for (uint32_t h : {0u, 1u}) {
        const Bytes d = render(m, 4, h, {1, 2, 3, 4, 5, 6, 7, 8});
        ASSERT_EQ(d.size(), 12u);
        EXPECT_EQ(d, (Bytes{6, 2, 1, 6, 2, 1, 6, 2, 3, 8, 4, 3})) << "height " << h;
    }
}

} // namespace
