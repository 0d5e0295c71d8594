// Worked values of the demosaic routines: a small mosaic given sample by
// sample, run through one routine, and single pixels read back. dup: every
// channel a copied sample, the column-0 greens of phases B and D, depth
// narrowing and the unmasked RGB16 blue, line 0 of short images. ave:
// truncated means of the neighbours that exist with their border
// divisors, the read past each line of an odd width, the unshifted red of
// OVC_BAYn_to_RGB16_ave_B. med: the median of four at inner red and blue
// sites, two-sample means and copies elsewhere, and the departures of the
// phase-B and phase-C routines. Short images of both write two lines.
#include "bayer/member_table.h"
#include "support/demosaic_extent.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

using orv::bayer::DemosaicMember;

const DemosaicMember &member(const std::string &name) {
    for (const DemosaicMember &m : orv::bayer::kDemosaicMembers)
        if (name == m.name) return m;
    ADD_FAILURE() << "no demosaic routine " << name;
    return orv::bayer::kDemosaicMembers[0];
}

// Runs `m` on a W x H mosaic given line after line at a tight stride
// (`samples` may run past the image, for the routines' reads beyond it)
// and returns every destination line it writes, tight, preset to 0xEE:
// dup writes line 0 at least, ave and med two lines at least.
std::vector<uint8_t> render(const DemosaicMember &m, uint32_t width,
                                   uint32_t height,
                                   const std::vector<uint32_t> &samples,
                                   uint32_t depth = 8) {
    const uint32_t size = m.n_bit ? 2 : 1, bpp = orv_test::demosaic_pixel_bytes(m.output);
    const uint32_t lines =
        std::max(height, m.method == ORV_BAYER_METHOD_DUP ? 1u : 2u);
    const size_t count = std::max<size_t>(samples.size(), size_t(width) * (lines + 1) + 2);
    orv_test::TestImage source(m.n_bit ? ORV_FORMAT_BAY16 : ORV_FORMAT_BAY8, width,
                               height, width * size, count * size, 0);
    for (size_t i = 0; i < samples.size(); ++i)
        for (uint32_t b = 0; b < size; ++b) source[i * size + b] = uint8_t(samples[i] >> (8 * b));
    orv_test::TestImage destination(0xC0022600u | m.output, width, height, width * bpp,
                                    size_t(width) * bpp * lines, 0xEE);
    EXPECT_EQ(m.call(source.handle(), destination.handle(), depth), ORV_OK) << m.name;
    return destination.bytes();
}

// One pixel of a render: B, G and R of the byte outputs, or the 16-bit
// word of the packed ones.
struct Rendered {
    uint8_t blue, green, red;
    uint16_t word;
};
Rendered pixel(const std::vector<uint8_t> &d, const DemosaicMember &m,
                      uint32_t width, uint32_t y, uint32_t x) {
    const uint8_t *p = d.data() + (size_t(y) * width + x) * orv_test::demosaic_pixel_bytes(m.output);
    switch (m.output) {
    case 0x08: case 0x11: return {p[0], p[1], p[2], 0};
    case 0x0D: return {p[2], p[1], p[0], 0};
    default: return {0, 0, 0, uint16_t(p[0] | p[1] << 8)};
    }
}

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


enum Channel { kRed, kGreen, kBlue, kRedField, kGreenField, kBlueField };

struct Case {
    const char *what;
    const char *member;
    uint32_t width, height, depth;
    std::vector<uint32_t> samples; // (line, column, sample) triples on zeros
    uint32_t y, x;
    Channel channel;
    uint32_t expected;
};

uint32_t channel_of(const Rendered &p, Channel c) {
    switch (c) {
    case kRed: return p.red;
    case kGreen: return p.green;
    case kBlue: return p.blue;
    case kRedField: return p.word >> 11;
    case kGreenField: return (p.word >> 5) & 0x3F;
    default: return p.word & 0x1F;
    }
}

TEST(BayerAveAndMed, NamedSites) {
    const std::vector<Case> cases = {
        {"corner green from right and below", "OVC_BAY8_to_BGRX32_ave_A", 6, 6, 8,
         {0, 1, 9, 1, 0, 20}, 0, 0, kGreen, 14},
        {"line-0 green from left and right only", "OVC_BAY8_to_BGRX32_ave_A", 6, 6, 8,
         {0, 1, 9, 0, 3, 20, 1, 2, 200}, 0, 2, kGreen, 14},
        {"line-0 blue from the two diagonals below", "OVC_BAY8_to_BGRX32_ave_A", 6, 6, 8,
         {1, 1, 9, 1, 3, 20}, 0, 2, kBlue, 14},
        {"corner red copied from the one diagonal", "OVC_BAY8_to_BGR24_ave_A", 6, 6, 8,
         {4, 4, 77}, 5, 5, kRed, 77},
        {"two samples truncate", "OVC_BAY8_to_BGR24_ave_A", 5, 5, 8,
         {2, 0, 1, 2, 2, 2}, 2, 1, kRed, 1},
        {"four samples truncate", "OVC_BAY8_to_BGRX32_ave_A", 5, 5, 8,
         {1, 2, 3, 3, 2, 3, 2, 1, 3, 2, 3, 2}, 2, 2, kGreen, 2},
        {"12-bit mean before the shift", "OVC_BAYn_to_BGR24_ave_A", 4, 4, 12,
         {0, 0, 4095, 0, 2, 4094}, 0, 1, kRed, 255},
        {"12-bit mean shifted out", "OVC_BAYn_to_BGR24_ave_A", 4, 4, 12,
         {2, 0, 15, 2, 2, 16}, 2, 1, kRed, 0},
        {"odd width reads the sample after the line", "OVC_BAY8_to_BGRX32_ave_A", 5, 3, 8,
         {0, 3, 10, 1, 0, 31}, 0, 4, kGreen, 20},
        {"green: middle two of the cross", "OVC_BAY8_to_BGRX32_med_A", 5, 5, 8,
         {2, 3, 10, 4, 3, 20, 3, 2, 30, 3, 4, 200}, 3, 3, kGreen, 25},
        {"red: middle two of the diagonals", "OVC_BAY8_to_BGRX32_med_A", 5, 5, 8,
         {2, 2, 0, 2, 4, 0, 4, 2, 255, 4, 4, 255}, 3, 3, kRed, 127},
        {"a red spike misses the diagonal blue sites", "OVC_BAY8_to_BGR24_med_A", 7, 7, 8,
         {2, 2, 255}, 3, 3, kRed, 0},
        {"a red spike reaches the green below", "OVC_BAY8_to_BGR24_med_A", 7, 7, 8,
         {2, 2, 255}, 1, 2, kRed, 127},
        {"a red spike reaches the green beside", "OVC_BAY8_to_BGR24_med_A", 7, 7, 8,
         {2, 2, 255}, 2, 3, kRed, 127},
        {"n-bit median shifted after halving", "OVC_BAYn_to_BGR24_med_A", 5, 5, 12,
         {2, 3, 4095, 4, 3, 4095, 3, 2, 4094, 3, 4, 1}, 3, 3, kGreen, 255},
        {"phase-B blue of column 0 left unshifted", "OVC_BAYn_to_BGRX32_med_B", 4, 5, 10,
         {1, 0, 100, 3, 0, 973}, 2, 0, kBlue, 24},
        {"... in BGR24 too", "OVC_BAYn_to_BGR24_med_B", 4, 5, 10,
         {1, 0, 100, 3, 0, 973}, 2, 0, kBlue, 24},
        {"... but not in RGB16", "OVC_BAYn_to_RGB16_med_B", 4, 5, 10,
         {1, 0, 100, 3, 0, 973}, 2, 0, kBlueField, 16},
        {"phase-C RGB16 green of the line-0 corner uses below-right",
         "OVC_BAY8_to_RGB16_med_C", 4, 3, 8, {0, 2, 100, 1, 3, 0, 2, 0, 200}, 0, 3,
         kGreenField, 150 >> 2},
        {"... the byte outputs use below", "OVC_BAY8_to_BGRX32_med_C", 4, 3, 8,
         {0, 2, 100, 1, 3, 0, 2, 0, 200}, 0, 3, kGreen, 50},
        {"phase-C RGB16 reads the line below one column over (odd width)",
         "OVC_BAY8_to_RGB16_med_C", 5, 4, 8, {2, 2, 200}, 1, 1, kBlueField, 200 >> 4},
        {"... the byte outputs do not", "OVC_BAY8_to_BGR24_med_C", 5, 4, 8, {2, 2, 200}, 1, 1,
         kBlue, 0},
        {"... nor does line 0", "OVC_BAYn_to_RGB16_med_C", 5, 4, 12, {1, 0, 3200}, 0, 0,
         kRedField, 3200 >> 7},
    };
    for (const Case &c : cases) {
        std::vector<uint32_t> s(c.width * (c.height + 1));
        for (size_t i = 0; i < c.samples.size(); i += 3)
            s[c.samples[i] * c.width + c.samples[i + 1]] = c.samples[i + 2];
        const DemosaicMember &m = member(c.member);
        const Rendered p = pixel(render(m, c.width, c.height, s, c.depth), m, c.width, c.y, c.x);
        EXPECT_EQ(channel_of(p, c.channel), c.expected) << c.what;
    }
}

// Two-line and one-line images: line 1 follows the last-line rules, and a
// one-line image still gets it.
TEST(BayerMed, ShortImagesWriteTwoLines) {
    const DemosaicMember &m = member("OVC_BAY8_to_BGRX32_med_D");
    for (uint32_t h : {1u, 2u}) {
        const std::vector<uint8_t> d = render(m, 4, h, {1, 2, 3, 4, 5, 6, 7, 8});
        ASSERT_EQ(d.size(), 32u) << "height " << h;
        // (1,3) is red: green from above and left, blue copied above-left.
        const Rendered p = pixel(d, m, 4, 1, 3);
        EXPECT_EQ(p.green, (4 + 7) >> 1) << "height " << h;
        EXPECT_EQ(p.blue, 3) << "height " << h;
        EXPECT_EQ(p.red, 8) << "height " << h;
    }
}


// The lone last column of the inner B/G lines: ave_B packs its red from
// the unshifted mean, ave_A (and every other site) scales it.
TEST(BayerAve, RGB16PhaseBLastColumnRedIsUnshifted) {
    std::vector<uint32_t> s(6 * 4);
    s[0 * 6 + 5] = 256; // above (1,5); below it stays 0
    const DemosaicMember &b = member("OVC_BAYn_to_RGB16_ave_B");
    EXPECT_EQ(pixel(render(b, 6, 4, s, 12), b, 6, 1, 5).word >> 11, 16);
    s[0 * 6 + 5] = 0;
    s[0 * 6 + 4] = 256; // above the blue-line green (1,4) of phase A, col 4
    const DemosaicMember &a = member("OVC_BAYn_to_RGB16_ave_A");
    EXPECT_EQ(pixel(render(a, 6, 4, s, 12), a, 6, 1, 4).word >> 11, 1);
}

// A one-line image gets a second line from the source line below; a
// two-by-two image needs nothing special.
TEST(BayerAve, TwoByTwoAndOneLine) {
    const DemosaicMember &m = member("OVC_BAY8_to_BGRX32_ave_A");
    for (uint32_t h : {1u, 2u}) {
        const std::vector<uint8_t> d = render(m, 2, h, {0x00, 0x01, 0x10, 0x11});
        ASSERT_EQ(d.size(), 16u) << "height " << h;
        const uint8_t greens[] = {0x08, 0x01, 0x10, 0x08};
        for (uint32_t i = 0; i < 4; ++i)
            EXPECT_EQ(pixel(d, m, 2, i / 2, i % 2).green, greens[i]) << "height " << h;
    }
}

} // namespace
