// Worked values of the demosaic routines, one table: a mosaic of zeros with
// a few samples set, run through one routine, one channel of one pixel read
// back. dup: the column-0 greens, depth narrowing, the unmasked RGB16 blue,
// line 0 of a zero-height image. ave: truncated means with border divisors,
// the read past an odd line, the unshifted red of OVC_BAYn_to_RGB16_ave_B.
// med: the median of four, and the departures of phases B and C. Short ave
// and med images write two lines.
#include "bayer/member_table.h"
#include "support/demosaic_extent.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using orv::bayer::DemosaicMember;

// Byte channels, the fields of a packed 16-bit word, the whole word, or
// B, G and R all equal to the expected value.
enum Channel { kRed, kGreen, kBlue, kRedField, kGreenField, kBlueField, kWord, kAll };

struct Case {
    const char *member;
    uint32_t width, height, depth;
    std::vector<uint32_t> samples; // (line, column, sample) triples on zeros
    uint32_t y, x;                 // the pixel read back
    Channel channel;
    uint32_t expected;
};

// All four samples of a 2 x 2 mosaic.
std::vector<uint32_t> uniform(uint32_t v) { return {0, 0, v, 0, 1, v, 1, 0, v, 1, 1, v}; }

const Case kCases[] = {
    // dup: the green of a column-0 red or blue site comes from the site
    // above in phases A, C and D from line 1 on, from the right neighbour
    // in phase B, on line 0 and in the RGB16 routines of phase D.
    {"OVC_BAY8_to_BGRX32_dup_A", 6, 6, 8, {1, 0, 77}, 2, 0, kGreen, 77},
    {"OVC_BAY8_to_BGRX32_dup_A", 6, 6, 8, {0, 1, 77}, 0, 0, kGreen, 77},
    {"OVC_BAY8_to_BGRX32_dup_B", 6, 6, 8, {1, 1, 77}, 1, 0, kGreen, 77},
    {"OVC_BAY8_to_BGR24_dup_C", 6, 6, 8, {0, 0, 77}, 1, 0, kGreen, 77},
    {"OVC_BAY8_to_BGRX32_dup_D", 6, 6, 8, {1, 0, 77}, 2, 0, kGreen, 77},
    {"OVC_BAY8_to_BGRX32_dup_D", 6, 6, 8, {0, 1, 77}, 0, 0, kGreen, 77},
    {"OVC_BAY8_to_RGBX32_dup_D", 6, 6, 8, {3, 0, 77}, 4, 0, kGreen, 77},
    {"OVC_BAY8_to_RGB16_dup_D", 6, 6, 8, {2, 1, 77}, 2, 0, kGreenField, 77 >> 2},
    {"OVC_BAY8_to_RGB16_dup_A", 6, 6, 8, {1, 0, 77}, 2, 0, kGreenField, 77 >> 2},
    // dup, n-bit: the byte kept after the shift, bits above the depth
    // included; the RGB16 blue is not masked (depth 10, blue 0x0FFF: B
    // field 31 and two bits spilled into G).
    {"OVC_BAYn_to_BGRX32_dup_A", 2, 2, 12, uniform(0x0FF0), 1, 1, kAll, 0xFF},
    {"OVC_BAYn_to_BGR24_dup_B", 2, 2, 10, uniform(0xFFFF), 1, 1, kAll, 0xFF},
    {"OVC_BAYn_to_RGBX32_dup_C", 2, 2, 14, uniform(0x1234), 1, 1, kAll, 0x48},
    {"OVC_BAYn_to_BGRX32_dup_D", 2, 2, 16, uniform(0xA55A), 1, 1, kAll, 0xA5},
    {"OVC_BAYn_to_RGB16_dup_A", 2, 2, 10, {1, 1, 0x0FFF}, 0, 0, kWord, 0x007F},
    // dup: a zero-height image still gets line 0, its blues from line 1.
    {"OVC_BAY8_to_BGR24_dup_A", 4, 0, 8, {1, 1, 6}, 0, 0, kBlue, 6},
    {"OVC_BAY8_to_BGR24_dup_A", 4, 0, 8, {1, 3, 8}, 0, 3, kBlue, 8},
    // ave: a corner green from right and below; a line-0 green from left
    // and right only; a line-0 blue from the two diagonals below; a corner
    // red copied from its one diagonal; means of two and of four truncate.
    {"OVC_BAY8_to_BGRX32_ave_A", 6, 6, 8, {0, 1, 9, 1, 0, 20}, 0, 0, kGreen, 14},
    {"OVC_BAY8_to_BGRX32_ave_A", 6, 6, 8, {0, 1, 9, 0, 3, 20, 1, 2, 200}, 0, 2, kGreen, 14},
    {"OVC_BAY8_to_BGRX32_ave_A", 6, 6, 8, {1, 1, 9, 1, 3, 20}, 0, 2, kBlue, 14},
    {"OVC_BAY8_to_BGR24_ave_A", 6, 6, 8, {4, 4, 77}, 5, 5, kRed, 77},
    {"OVC_BAY8_to_BGR24_ave_A", 5, 5, 8, {2, 0, 1, 2, 2, 2}, 2, 1, kRed, 1},
    {"OVC_BAY8_to_BGRX32_ave_A", 5, 5, 8, {1, 2, 3, 3, 2, 3, 2, 1, 3, 2, 3, 2}, 2, 2, kGreen, 2},
    // ave, n-bit: the mean is taken before the shift.
    {"OVC_BAYn_to_BGR24_ave_A", 4, 4, 12, {0, 0, 4095, 0, 2, 4094}, 0, 1, kRed, 255},
    {"OVC_BAYn_to_BGR24_ave_A", 4, 4, 12, {2, 0, 15, 2, 2, 16}, 2, 1, kRed, 0},
    // ave: an odd width reads the sample after the line.
    {"OVC_BAY8_to_BGRX32_ave_A", 5, 3, 8, {0, 3, 10, 1, 0, 31}, 0, 4, kGreen, 20},
    // ave: the lone last column of the inner B/G lines; ave_B packs its red
    // from the unshifted mean, ave_A (like every other site) scales it.
    {"OVC_BAYn_to_RGB16_ave_B", 6, 4, 12, {0, 5, 256}, 1, 5, kRedField, 16},
    {"OVC_BAYn_to_RGB16_ave_A", 6, 4, 12, {0, 4, 256}, 1, 4, kRedField, 1},
    // ave: a one-line image takes line 1 from the source line below; a
    // 2 x 2 image needs nothing special.
    {"OVC_BAY8_to_BGRX32_ave_A", 2, 1, 8, {0, 1, 1, 1, 0, 16}, 1, 1, kGreen, 8},
    {"OVC_BAY8_to_BGRX32_ave_A", 2, 2, 8, {0, 1, 1, 1, 0, 16}, 0, 0, kGreen, 8},
    // med: green the middle two of the cross, red the middle two of the
    // diagonals; a red spike misses the diagonal blue sites but reaches the
    // greens below and beside; n-bit medians are shifted after halving.
    {"OVC_BAY8_to_BGRX32_med_A", 5, 5, 8, {2, 3, 10, 4, 3, 20, 3, 2, 30, 3, 4, 200},
     3, 3, kGreen, 25},
    {"OVC_BAY8_to_BGRX32_med_A", 5, 5, 8, {2, 2, 0, 2, 4, 0, 4, 2, 255, 4, 4, 255},
     3, 3, kRed, 127},
    {"OVC_BAY8_to_BGR24_med_A", 7, 7, 8, {2, 2, 255}, 3, 3, kRed, 0},
    {"OVC_BAY8_to_BGR24_med_A", 7, 7, 8, {2, 2, 255}, 1, 2, kRed, 127},
    {"OVC_BAY8_to_BGR24_med_A", 7, 7, 8, {2, 2, 255}, 2, 3, kRed, 127},
    {"OVC_BAYn_to_BGR24_med_A", 5, 5, 12, {2, 3, 4095, 4, 3, 4095, 3, 2, 4094, 3, 4, 1},
     3, 3, kGreen, 255},
    // med_B: the blue of column 0 is left unshifted, but not in RGB16.
    {"OVC_BAYn_to_BGRX32_med_B", 4, 5, 10, {1, 0, 100, 3, 0, 973}, 2, 0, kBlue, 24},
    {"OVC_BAYn_to_BGR24_med_B", 4, 5, 10, {1, 0, 100, 3, 0, 973}, 2, 0, kBlue, 24},
    {"OVC_BAYn_to_RGB16_med_B", 4, 5, 10, {1, 0, 100, 3, 0, 973}, 2, 0, kBlueField, 16},
    // med_C, RGB16: the green of the line-0 last corner uses below-right
    // (the byte outputs below); an odd width reads the line below one
    // column over (not the byte outputs, nor line 0).
    {"OVC_BAY8_to_RGB16_med_C", 4, 3, 8, {0, 2, 100, 1, 3, 0, 2, 0, 200}, 0, 3, kGreenField,
     150 >> 2},
    {"OVC_BAY8_to_BGRX32_med_C", 4, 3, 8, {0, 2, 100, 1, 3, 0, 2, 0, 200}, 0, 3, kGreen, 50},
    {"OVC_BAY8_to_RGB16_med_C", 5, 4, 8, {2, 2, 200}, 1, 1, kBlueField, 200 >> 4},
    {"OVC_BAY8_to_BGR24_med_C", 5, 4, 8, {2, 2, 200}, 1, 1, kBlue, 0},
    {"OVC_BAYn_to_RGB16_med_C", 5, 4, 12, {1, 0, 3200}, 0, 0, kRedField, 3200 >> 7},
    // med: line 1 of one- and two-line images follows the last-line rules,
    // (1, 3) a red site: green from above and left, blue copied above-left.
    {"OVC_BAY8_to_BGRX32_med_D", 4, 1, 8, {0, 3, 4, 1, 2, 7}, 1, 3, kGreen, (4 + 7) >> 1},
    {"OVC_BAY8_to_BGRX32_med_D", 4, 2, 8, {0, 3, 4, 1, 2, 7}, 1, 3, kGreen, (4 + 7) >> 1},
    {"OVC_BAY8_to_BGRX32_med_D", 4, 1, 8, {0, 2, 3}, 1, 3, kBlue, 3},
};

const DemosaicMember *member(const std::string &name) {
    for (const DemosaicMember &m : orv::bayer::kDemosaicMembers)
        if (name == m.name) return &m;
    return nullptr;
}

// Runs `c` at tight strides (the source a line and two samples longer than
// read) into a destination preset to 0xEE and exactly as long as written:
// dup writes one line at least, ave and med two.
uint32_t rendered(const DemosaicMember &m, const Case &c) {
    const uint32_t size = m.n_bit ? 2 : 1, bpp = orv_test::demosaic_pixel_bytes(m.output);
    const uint32_t w = c.width;
    const uint32_t lines = std::max(c.height, m.method == ORV_BAYER_METHOD_DUP ? 1u : 2u);
    orv_test::TestImage source(m.n_bit ? ORV_FORMAT_BAY16 : ORV_FORMAT_BAY8, w, c.height,
                               w * size, (size_t(w) * (std::max(lines, 2u) + 1) + 2) * size, 0);
    for (size_t i = 0; i < c.samples.size(); i += 3) {
        const size_t at = (c.samples[i] * w + c.samples[i + 1]) * size;
        for (uint32_t b = 0; b < size; ++b) source[at + b] = uint8_t(c.samples[i + 2] >> (8 * b));
    }
    orv_test::TestImage destination(0xC0022600u | m.output, w, c.height, w * bpp,
                                    size_t(w) * bpp * lines, 0xEE);
    EXPECT_EQ(m.call(source.handle(), destination.handle(), c.depth), ORV_OK);
    const uint8_t *p = destination.data() + (size_t(c.y) * w + c.x) * bpp;
    // Byte outputs: B, G, R in memory order (RGBX32 reversed).
    const bool reversed = m.output == (ORV_FORMAT_RGBX32 & 0xFFu);
    const uint32_t blue = p[reversed ? 2 : 0], green = p[1], red = p[reversed ? 0 : 2];
    const uint32_t word = uint32_t(p[0] | p[1] << 8);
    switch (c.channel) {
    case kRed: return red;
    case kGreen: return green;
    case kBlue: return blue;
    case kRedField: return word >> 11;
    case kGreenField: return (word >> 5) & 0x3F;
    case kBlueField: return word & 0x1F;
    case kWord: return word;
    default: return blue == green && green == red ? red : ~0u;
    }
}

TEST(DemosaicWorkedValues, EveryNamedSite) {
    for (const Case &c : kCases) {
        const DemosaicMember *m = member(c.member);
        ASSERT_NE(m, nullptr) << c.member;
        EXPECT_EQ(rendered(*m, c), c.expected)
            << c.member << " " << c.width << " x " << c.height << " at (" << c.y << ", " << c.x
            << ") channel " << c.channel;
    }
}

} // namespace
