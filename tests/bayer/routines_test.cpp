// Every demosaic routine called directly: worked values of each named
// departure, checksums of whole outputs, and the refusals, which write
// nothing.
#include "bayer/member_table.h"
#include "support/demosaic_extent.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv::bayer::DemosaicMember;
using orv::bayer::kDemosaicMembers;
using orv_test::TestImage;

// Worked values: a mosaic of zeros with a few samples set, one channel of
// one pixel read back: a byte channel, a field of a packed 16-bit word, the
// whole word, or B, G and R all equal to the expected value.
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
    {"OVC_BAY8_to_BGRX32_dup_D", 6, 6, 8, {1, 0, 77}, 2, 0, kGreen, 77},
    {"OVC_BAY8_to_RGB16_dup_D", 6, 6, 8, {2, 1, 77}, 2, 0, kGreenField, 77 >> 2},
    {"OVC_BAY8_to_RGB16_dup_A", 6, 6, 8, {1, 0, 77}, 2, 0, kGreenField, 77 >> 2},
    // dup, n-bit: the byte kept after the shift, bits above the depth
    // included; the RGB16 blue is not masked (B field 31, 3 spilled into G).
    {"OVC_BAYn_to_BGRX32_dup_A", 2, 2, 12, uniform(0x0FF0), 1, 1, kAll, 0xFF},
    {"OVC_BAYn_to_BGR24_dup_B", 2, 2, 10, uniform(0xFFFF), 1, 1, kAll, 0xFF},
    {"OVC_BAYn_to_RGB16_dup_A", 2, 2, 10, {1, 1, 0x0FFF}, 0, 0, kWord, 0x007F},
    // dup: a zero-height image still gets line 0, its blues from line 1.
    {"OVC_BAY8_to_BGR24_dup_A", 4, 0, 8, {1, 1, 6}, 0, 0, kBlue, 6},
    {"OVC_BAY8_to_BGR24_dup_A", 4, 0, 8, {1, 3, 8}, 0, 3, kBlue, 8},
    // ave: a corner green from right and below; a line-0 blue from the two
    // diagonals below; a mean of four truncates.
    {"OVC_BAY8_to_BGRX32_ave_A", 6, 6, 8, {0, 1, 9, 1, 0, 20}, 0, 0, kGreen, 14},
    {"OVC_BAY8_to_BGRX32_ave_A", 6, 6, 8, {1, 1, 9, 1, 3, 20}, 0, 2, kBlue, 14},
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
    // diagonals; a red spike misses the diagonal blue sites but reaches a
    // green next to it; n-bit medians are shifted after halving.
    {"OVC_BAY8_to_BGRX32_med_A", 5, 5, 8, {2, 3, 10, 4, 3, 20, 3, 2, 30, 3, 4, 200},
     3, 3, kGreen, 25},
    {"OVC_BAY8_to_BGRX32_med_A", 5, 5, 8, {2, 2, 0, 2, 4, 0, 4, 2, 255, 4, 4, 255},
     3, 3, kRed, 127},
    {"OVC_BAY8_to_BGR24_med_A", 7, 7, 8, {2, 2, 255}, 3, 3, kRed, 0},
    {"OVC_BAY8_to_BGR24_med_A", 7, 7, 8, {2, 2, 255}, 1, 2, kRed, 127},
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
    {"OVC_BAY8_to_BGRX32_med_D", 4, 2, 8, {0, 3, 4, 1, 2, 7}, 1, 3, kGreen, (4 + 7) >> 1},
    {"OVC_BAY8_to_BGRX32_med_D", 4, 1, 8, {0, 2, 3}, 1, 3, kBlue, 3},
};

// Runs `c` at tight strides (the source a line and two samples longer than
// read) into a destination preset to 0xEE and exactly as long as written:
// dup writes one line at least, ave and med two.
uint32_t rendered(const DemosaicMember &m, const Case &c) {
    const uint32_t size = m.n_bit ? 2 : 1, bpp = orv_test::demosaic_pixel_bytes(m.output);
    const uint32_t w = c.width;
    const uint32_t lines = std::max(c.height, m.method == ORV_BAYER_METHOD_DUP ? 1u : 2u);
    TestImage source(m.n_bit ? ORV_FORMAT_BAY16 : ORV_FORMAT_BAY8, w, c.height,
                     w * size, (size_t(w) * (std::max(lines, 2u) + 1) + 2) * size, 0);
    for (size_t i = 0; i < c.samples.size(); i += 3) {
        const size_t at = (c.samples[i] * w + c.samples[i + 1]) * size;
        for (uint32_t b = 0; b < size; ++b) source[at + b] = uint8_t(c.samples[i + 2] >> (8 * b));
    }
    TestImage destination(0xC0022600u | m.output, w, c.height, w * bpp,
                          size_t(w) * bpp * lines, 0xEE);
    EXPECT_EQ(m.call(source.handle(), destination.handle(), c.depth), ORV_OK);
    const uint8_t *p = destination.data() + (size_t(c.y) * w + c.x) * bpp;
    // Byte outputs: B, G, R in memory order (RGBX32 reversed).
    const bool reversed = m.output == (ORV_FORMAT_RGBX32 & 0xFFu);
    const uint32_t blue = p[reversed ? 2 : 0], green = p[1], red = p[reversed ? 0 : 2];
    const uint32_t word = uint32_t(p[0] | p[1] << 8);
    // In the order of Channel.
    const uint32_t by_channel[] = {red, green, blue, word >> 11, (word >> 5) & 0x3F, word & 0x1F,
                                   word, blue == green && green == red ? red : ~0u};
    return by_channel[c.channel];
}

TEST(DemosaicWorkedValues, EveryNamedSite) {
    for (const Case &c : kCases) {
        const DemosaicMember *m = std::find_if(
            std::begin(kDemosaicMembers), std::end(kDemosaicMembers),
            [&](const DemosaicMember &d) { return c.member == std::string(d.name); });
        ASSERT_NE(m, std::end(kDemosaicMembers)) << c.member;
        EXPECT_EQ(rendered(*m, c), c.expected)
            << c.member << " " << c.width << " x " << c.height << " at (" << c.y << ", " << c.x
            << ") channel " << c.channel;
    }
}

// Checksums: every routine on four fixed mosaics of seeded random samples
// (16-bit ones with bits above the depth): 7 x 5 at tight strides (reads
// past odd lines), 10 x 6 with padded strides (the lone last column), 4 x 1
// (line 1 read, two lines written by ave and med), 70 x 4 (whole vector
// steps). The destination starts as 0xEE, so X bytes, padding and the line
// after the image count.
struct Mosaic {
    uint32_t width, height, depth, src_padding, dst_padding;
};
constexpr Mosaic kMosaics[] = {
    {7, 5, 12, 0, 0}, {10, 6, 10, 6, 5}, {4, 1, 16, 0, 0}, {70, 4, 14, 2, 3}};

uint32_t checksum(const DemosaicMember &m, const Mosaic &g, uint32_t seed) {
    const uint32_t lines = std::max(g.height, 2u);
    const uint32_t src_stride = g.width * (m.n_bit ? 2 : 1) + g.src_padding;
    const uint32_t dst_stride = g.width * orv_test::demosaic_pixel_bytes(m.output) + g.dst_padding;
    // Room for two samples past the last line read.
    TestImage source(m.n_bit ? ORV_FORMAT_BAY16 : ORV_FORMAT_BAY8, g.width, g.height,
                     src_stride, size_t(src_stride) * lines + 4);
    source.randomise(seed);
    TestImage destination(0xC0022600u | m.output, g.width, g.height, dst_stride,
                          size_t(dst_stride) * (lines + 1), 0xEE);
    EXPECT_EQ(m.call(source.handle(), destination.handle(), g.depth), ORV_OK) << m.name;
    return orv_test::crc32(destination.bytes());
}

struct Recorded {
    const char *name;
    uint32_t crc[std::size(kMosaics)];
};

const Recorded kRecorded[] = {
    {"OVC_BAY8_to_BGRX32_dup_A", {0x6AD3AD5A, 0x5DC82A48, 0xD86F737E, 0x5DBA44BC}},
    {"OVC_BAY8_to_BGRX32_dup_B", {0x63D52BD5, 0x1B36CEBF, 0x34D904A5, 0x4A0F6957}},
    {"OVC_BAY8_to_BGRX32_dup_C", {0x0F61DF98, 0xA4B4F9A9, 0x878B98E2, 0x0227D381}},
    {"OVC_BAY8_to_BGRX32_dup_D", {0x230740CA, 0xA6D787D2, 0x81840756, 0x9D21211E}},
    {"OVC_BAY8_to_BGR24_dup_A", {0x40883B8B, 0xB0FE7585, 0x2CD0AC68, 0x47EACA9E}},
    {"OVC_BAY8_to_BGR24_dup_B", {0x98E2D64D, 0x9D3A57B4, 0x06C33E0C, 0x40D17DEB}},
    {"OVC_BAY8_to_BGR24_dup_C", {0x6E5EAAA9, 0xF40E82D8, 0x27E2AA98, 0xBEDB2B0A}},
    {"OVC_BAY8_to_BGR24_dup_D", {0x46AF1090, 0x40CC66AE, 0x1179A206, 0xECD222FE}},
    {"OVC_BAY8_to_RGB16_dup_A", {0x8F69FD2E, 0x835B1721, 0xA6F067DF, 0x23AD04A6}},
    {"OVC_BAY8_to_RGB16_dup_B", {0xDB67B403, 0x1F6F70D1, 0xF2DF9946, 0xF801BB2C}},
    {"OVC_BAY8_to_RGB16_dup_C", {0x8EEE132A, 0x832A3E9B, 0xC8D7C344, 0xD3B553A6}},
    {"OVC_BAY8_to_RGB16_dup_D", {0xD9E7F948, 0xF89FAFC6, 0x36C7C7C9, 0xFD507556}},
    {"OVC_BAY8_to_RGBX32_dup_A", {0x230740CA, 0xA6D787D2, 0x81840756, 0x9D21211E}},
    {"OVC_BAY8_to_RGBX32_dup_B", {0x67BFF9D9, 0xBBA95789, 0x878B98E2, 0x2C340E34}},
    {"OVC_BAY8_to_RGBX32_dup_C", {0x0B0B0D94, 0x042B609F, 0x34D904A5, 0x641CB4E2}},
    {"OVC_BAY8_to_RGBX32_dup_D", {0x6AD3AD5A, 0x5DC82A48, 0xD86F737E, 0x5DBA44BC}},
    {"OVC_BAY8_to_BGR16_dup_A", {0xEF481F82, 0x37336BB9, 0x36C7C7C9, 0xBD513226}},
    {"OVC_BAY8_to_BGRX32_ave_A", {0xAA63CF58, 0x87930A5F, 0x74E25EC8, 0x72A1B6EE}},
    {"OVC_BAY8_to_BGRX32_ave_B", {0x1F6CDE33, 0x7AF153D2, 0x7C86F4CA, 0x69773CFB}},
    {"OVC_BAY8_to_BGRX32_ave_C", {0x294D5F44, 0xBA4122E7, 0x6F467333, 0xA9B8EC65}},
    {"OVC_BAY8_to_BGRX32_ave_D", {0x9313D669, 0xAD642A30, 0xEA1ADFD9, 0x1E33AA48}},
    {"OVC_BAY8_to_BGR24_ave_A", {0x58C132B8, 0xC635A934, 0x5D27B5B4, 0x63D770AE}},
    {"OVC_BAY8_to_BGR24_ave_B", {0xF6AE56B3, 0x5BD47837, 0x0CE36A4F, 0xFB383322}},
    {"OVC_BAY8_to_BGR24_ave_C", {0xD89B511A, 0xB888B3CC, 0x632939BE, 0xC9FCA6C6}},
    {"OVC_BAY8_to_BGR24_ave_D", {0xEF6D3005, 0xA84A193D, 0x40645C77, 0xFC96E9A6}},
    {"OVC_BAY8_to_RGB16_ave_A", {0x7CA0DCA2, 0x7FE0A088, 0x09F7AE5E, 0x863C1BFE}},
    {"OVC_BAY8_to_RGB16_ave_B", {0x39225D95, 0x99DD131E, 0x6BFDA6A2, 0x83AE1E0A}},
    {"OVC_BAY8_to_RGB16_ave_C", {0x56A8704E, 0x45BEE5BC, 0xB4A2B171, 0x781B05FB}},
    {"OVC_BAY8_to_RGB16_ave_D", {0xD40FA5D5, 0x324ECBEF, 0x2B2663CE, 0xA8A845F2}},
    {"OVC_BAY8_to_BGRX32_med_A", {0xB96F9335, 0x75B8980E, 0x74E25EC8, 0x131CFE21}},
    {"OVC_BAY8_to_BGRX32_med_B", {0x55418CF4, 0xA1F3B612, 0x7C86F4CA, 0x81ED794B}},
    {"OVC_BAY8_to_BGRX32_med_C", {0x87CB41D3, 0x26308D85, 0x6F467333, 0x9D11546E}},
    {"OVC_BAY8_to_BGRX32_med_D", {0x76AD9FDE, 0x78161F6B, 0xEA1ADFD9, 0xEB1ACDAF}},
    {"OVC_BAY8_to_BGR24_med_A", {0x675C0B0B, 0x97FBE3CE, 0x5D27B5B4, 0x36AFE343}},
    {"OVC_BAY8_to_BGR24_med_B", {0x304A5590, 0x5317AFDB, 0x0CE36A4F, 0x5F133A71}},
    {"OVC_BAY8_to_BGR24_med_C", {0xD4E34CB0, 0xE1E59EAC, 0x632939BE, 0xAB2B625B}},
    {"OVC_BAY8_to_BGR24_med_D", {0xF00F7999, 0xEA828A2B, 0x40645C77, 0xCCD35BDF}},
    {"OVC_BAY8_to_RGB16_med_A", {0x945D7505, 0x11B932FE, 0x09F7AE5E, 0xFDE0D5B3}},
    {"OVC_BAY8_to_RGB16_med_B", {0xB522EFD4, 0x44ECAE25, 0x6BFDA6A2, 0x6E85F98F}},
    {"OVC_BAY8_to_RGB16_med_C", {0xE3F4B9EE, 0x56EADE78, 0xE9E40941, 0xAEC884B8}},
    {"OVC_BAY8_to_RGB16_med_D", {0xD7E85290, 0x2BFF7EC5, 0x2B2663CE, 0x03605F28}},
    {"OVC_BAYn_to_BGRX32_dup_A", {0x2FF80863, 0x95191184, 0x975CDD6C, 0x7A5DC53D}},
    {"OVC_BAYn_to_BGRX32_dup_B", {0xCAF987AE, 0x2566A623, 0x32240D86, 0x76568431}},
    {"OVC_BAYn_to_BGRX32_dup_C", {0xEBFC88CE, 0xEB20DA47, 0x867C2515, 0xA55D608A}},
    {"OVC_BAYn_to_BGRX32_dup_D", {0x36645B97, 0xEB21C69D, 0xDC3B2CE1, 0x38C95F63}},
    {"OVC_BAYn_to_BGR24_dup_A", {0x91F65021, 0xDE1AB6B2, 0xF1B1E47D, 0xEB9C35A0}},
    {"OVC_BAYn_to_BGR24_dup_B", {0xBB5879B5, 0xC8BD65BA, 0xD517E47C, 0x5EAE93E8}},
    {"OVC_BAYn_to_BGR24_dup_C", {0xB795A373, 0x797FCBA5, 0xCFE841DB, 0xD989D325}},
    {"OVC_BAYn_to_BGR24_dup_D", {0xF998DFEF, 0xAC968477, 0x930A62C4, 0x5B270724}},
    {"OVC_BAYn_to_RGB16_dup_A", {0xD325952E, 0x70085CB8, 0xC9AA7E54, 0x4AB605ED}},
    {"OVC_BAYn_to_RGB16_dup_B", {0xB514E7D3, 0x2ABDD855, 0xA9210F0B, 0x925792CD}},
    {"OVC_BAYn_to_RGB16_dup_C", {0xAF522AF1, 0x71D9FFF0, 0xDAA8FA25, 0x75C5330D}},
    {"OVC_BAYn_to_RGB16_dup_D", {0x4A34FDD9, 0x65803E52, 0xC3F9CE47, 0x7DC3DFB8}},
    {"OVC_BAYn_to_RGBX32_dup_A", {0x36645B97, 0xEB21C69D, 0xDC3B2CE1, 0x38C95F63}},
    {"OVC_BAYn_to_RGBX32_dup_B", {0x9ED6AB10, 0x69271B88, 0x867C2515, 0xE04020DA}},
    {"OVC_BAYn_to_RGBX32_dup_C", {0xBFD3A470, 0xA76167EC, 0x32240D86, 0x334BC461}},
    {"OVC_BAYn_to_RGBX32_dup_D", {0x2FF80863, 0x95191184, 0x975CDD6C, 0x7A5DC53D}},
    {"OVC_BAYn_to_BGRX32_ave_A", {0x20D6A50B, 0x3C45955A, 0xB2D0868A, 0xE1088FBC}},
    {"OVC_BAYn_to_BGRX32_ave_B", {0x6F2D26D1, 0xD39D8C44, 0xE8C2DF56, 0xFBE74297}},
    {"OVC_BAYn_to_BGRX32_ave_C", {0xF2FF005C, 0xC39692AB, 0x3417E622, 0xC378B5FB}},
    {"OVC_BAYn_to_BGRX32_ave_D", {0x9D1BC28D, 0x66C35C4D, 0x2CB1EBA3, 0x793392E2}},
    {"OVC_BAYn_to_BGR24_ave_A", {0x71435C45, 0x28844A29, 0x03802C08, 0x0F2C0051}},
    {"OVC_BAYn_to_BGR24_ave_B", {0x971744A7, 0x526EC47E, 0xD74FBE1E, 0x70CDABDE}},
    {"OVC_BAYn_to_BGR24_ave_C", {0x797401B6, 0x96EBF67F, 0xF46EDE45, 0x2B41DEFE}},
    {"OVC_BAYn_to_BGR24_ave_D", {0xC22DC1AC, 0xE57D527C, 0xB4ADAFA6, 0x54BE35E7}},
    {"OVC_BAYn_to_RGB16_ave_A", {0x330D848E, 0x600D3841, 0x37D92433, 0x5F6D15A5}},
    {"OVC_BAYn_to_RGB16_ave_B", {0x98DD68DD, 0xD895BE13, 0x6FCB1AA1, 0xE9947B82}},
    {"OVC_BAYn_to_RGB16_ave_C", {0xAE301BB1, 0x04ECDA96, 0x3075EF7F, 0xFBE27BB3}},
    {"OVC_BAYn_to_RGB16_ave_D", {0x0CA27A7F, 0xC0EAC652, 0xF0681651, 0x1A4ABFBF}},
    {"OVC_BAYn_to_BGRX32_med_A", {0x56B97F7B, 0x6C07FBB3, 0xB2D0868A, 0x6E0F55B4}},
    {"OVC_BAYn_to_BGRX32_med_B", {0x2BC144E3, 0xC55304A6, 0xE8C2DF56, 0x4D051287}},
    {"OVC_BAYn_to_BGRX32_med_C", {0x115C1121, 0x3B9CB67C, 0x3417E622, 0xCB7A6F64}},
    {"OVC_BAYn_to_BGRX32_med_D", {0x383DB9BE, 0x7DE9E437, 0x2CB1EBA3, 0x6E5D53FC}},
    {"OVC_BAYn_to_BGR24_med_A", {0x27431E2D, 0x01A4580E, 0x03802C08, 0xE417F4D7}},
    {"OVC_BAYn_to_BGR24_med_B", {0xCF4390C2, 0xD8459D52, 0xD74FBE1E, 0x6C879554}},
    {"OVC_BAYn_to_BGR24_med_C", {0x747D4DA6, 0xDF452E4E, 0xF46EDE45, 0x179B8E38}},
    {"OVC_BAYn_to_BGR24_med_D", {0x7604C333, 0x6030565B, 0xB4ADAFA6, 0xFE740160}},
    {"OVC_BAYn_to_RGB16_med_A", {0x3573FD8F, 0x31C7BE63, 0x37D92433, 0xC55A4AB5}},
    {"OVC_BAYn_to_RGB16_med_B", {0x40AF6A83, 0x02ADA713, 0x6FCB1AA1, 0xF8E5FFFE}},
    {"OVC_BAYn_to_RGB16_med_C", {0x4330FFE7, 0x93839AAA, 0x90C2EA4A, 0x9C75C33E}},
    {"OVC_BAYn_to_RGB16_med_D", {0x4870E755, 0x7F1C9975, 0xF0681651, 0x05238946}},
};

TEST(DemosaicChecksums, EveryRoutineWritesWhatWasRecorded) {
    ASSERT_EQ(std::size(kRecorded), std::size(kDemosaicMembers));
    for (size_t i = 0; i < std::size(kDemosaicMembers); ++i) {
        const DemosaicMember &m = kDemosaicMembers[i];
        ASSERT_STREQ(kRecorded[i].name, m.name);
        for (size_t g = 0; g < std::size(kMosaics); ++g)
            EXPECT_EQ(checksum(m, kMosaics[g], uint32_t(g + 1)), kRecorded[i].crc[g])
                << m.name << " on mosaic " << g;
    }
}

// Refusals write nothing: an invalid source, an invalid destination, and
// depth 8 for the n-bit routines.
TEST(DemosaicRoutines, RefusalsWriteNothing) {
    for (const DemosaicMember &m : kDemosaicMembers)
        for (int refusal = 0; refusal < (m.n_bit ? 3 : 2); ++refusal) {
            TestImage source(ORV_FORMAT_BAY16, 4, 4, 8, 32, 0x40);
            TestImage destination(ORV_FORMAT_BGRX32, 4, 4, 16, 64, 0xEE);
            if (refusal < 2) (refusal == 0 ? source : destination).set_pointer(OFS_BUFFER_VALID, 0);
            const uint32_t depth = refusal == 2 ? 8 : 12;
            EXPECT_EQ(m.call(source.handle(), destination.handle(), depth), ORV_ERROR_BAD_PARAM)
                << m.name << ", refusal " << refusal;
            EXPECT_EQ(destination.bytes(), std::vector<uint8_t>(64, 0xEE))
                << m.name << ", refusal " << refusal;
        }
}

} // namespace
