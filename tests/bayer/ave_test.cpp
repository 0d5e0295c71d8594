// The ave routines: truncated means of the neighbours that exist, with
// their border divisors, the read past each line of an odd width, the
// second line written for a one-line image and the unshifted red of
// OVC_BAYn_to_RGB16_ave_B.
#include "bayer/render.h"

namespace {

using namespace bayer_test;

// Single sites of the text-book cases, each read from one member's output.
TEST(BayerAve, NamedSites) {
    enum Channel { kRed, kGreen, kBlue };
    struct Case {
        const char *what;
        const char *member;
        uint32_t width, height, depth;
        std::vector<uint32_t> samples; // (line, column, sample) triples on zeros
        uint32_t y, x;
        Channel channel;
        uint32_t expected;
    };
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
    };
    for (const Case &c : cases) {
        std::vector<uint32_t> s(c.width * (c.height + 1));
        for (size_t i = 0; i < c.samples.size(); i += 3)
            s[c.samples[i] * c.width + c.samples[i + 1]] = c.samples[i + 2];
        const DemosaicMember &m = member(c.member);
        const Rendered p = pixel(render(m, c.width, c.height, s, c.depth), m, c.width, c.y, c.x);
        const uint8_t got[] = {p.red, p.green, p.blue};
        EXPECT_EQ(got[c.channel], c.expected) << c.what;
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
