// The med routines: median of four at inner red and blue sites, two-sample
// means and copies elsewhere, and the quirks of the phase-B and phase-C
// routines.
#include "bayer/render.h"

namespace {

using namespace bayer_test;

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

TEST(BayerMed, NamedSites) {
    const std::vector<Case> cases = {
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

} // namespace
