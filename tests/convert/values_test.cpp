// The values the conversions write: worked values, one pixel each, where a
// shift, a flag or an unmasked bit shows; YUV 4:2:2 against a floor-division
// model of its fixed-point BT.601 arithmetic over every chroma pair, in
// every layout (its floors and clamps); and every grey, Y12P and colour
// pair's whole output against recorded checksums.
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

Bytes u16(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8)}; }
Bytes u32(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)}; }

struct Worked {
    uint32_t src, dst;
    Bytes source, expected;
};

const Worked kWorked[] = {
    // grey: Y8 unscaled at bits 0, 10 and 22 of RGB30; RGB16 and the X byte
    {ORV_FORMAT_Y8, ORV_FORMAT_RGB30, {0xFF}, u32(0x3FC3FCFF)},
    {ORV_FORMAT_Y8, ORV_FORMAT_RGB16, {0xFF}, u16(0xFFFF)},
    {ORV_FORMAT_Y8, ORV_FORMAT_BGRX32, {0xFF}, {0xFF, 0xFF, 0xFF, 0xFF}},
    // u16 grey: a flag in each upper 30-bit field when non-zero; no masking
    {ORV_FORMAT_Y16, ORV_FORMAT_RGB30, u16(0), u32(0)},
    {ORV_FORMAT_Y16, ORV_FORMAT_BGR30, u16(1), u32(0x00010040)},
    {ORV_FORMAT_Y10, ORV_FORMAT_RGB30, u16(0x3FF), u32(0x004013FF)},
    {ORV_FORMAT_Y10, ORV_FORMAT_Y16, u16(0x3FF), u16(0x03FF)},
    {ORV_FORMAT_Y10, ORV_FORMAT_RGB15, u16(0xFFFF), u16(0x7FFF)},
    {ORV_FORMAT_Y10, ORV_FORMAT_RGB30, u16(0xFFFF), u32(0xFFFF | 0x400000)},
    // colour: BGRX32 into BGR24 exchanges R and B; the BGR48 R flag
    {ORV_FORMAT_BGRX32, ORV_FORMAT_BGR24, {0x10, 0x20, 0x30, 0x40}, {0x30, 0x20, 0x10}},
    {ORV_FORMAT_BGR24, ORV_FORMAT_RGB30, {0xFF, 0x80, 0x01}, {0xFF, 0x00, 0x42, 0x00}},
    {ORV_FORMAT_BGR48, ORV_FORMAT_RGB16, {0xFF, 0xFF, 0xFF, 0xFF, 0, 0}, {0x1F, 0}},
    {ORV_FORMAT_BGR48, ORV_FORMAT_RGB16, {0xFF, 0xFF, 0xFF, 0xFF, 1, 0}, {0x1F, 0}},
    {ORV_FORMAT_BGR48, ORV_FORMAT_RGB16, {0, 0, 0, 0, 1, 0}, {0x01, 0}},
    {ORV_FORMAT_BGR36, ORV_FORMAT_RGB16, {0xFF, 0x0F, 0, 0, 0xFF, 0x0F}, {0x1F, 0}},
    {ORV_FORMAT_BGR36, ORV_FORMAT_BGR24, {0xFF, 0x0F, 0, 0, 0xFF, 0x0F}, {0xFF, 0x00, 0xFF}},
};

TEST(Conversions, WorkedValues) {
    for (const Worked &c : kWorked) {
        TestImage src(c.src, 1, 1, uint32_t(c.source.size()));
        std::copy(c.source.begin(), c.source.end(), src.data());
        TestImage dst(c.dst, 1, 1, uint32_t(c.expected.size()));
        ASSERT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_OK);
        EXPECT_EQ(dst.bytes(), c.expected)
            << std::hex << c.src << " -> " << c.dst << " of " << testing::PrintToString(c.source);
    }
}

int floor_div(int a, int b) { return a / b - (a % b != 0 && a < 0); }
uint8_t clamp(int v) { return uint8_t(v < 0 ? 0 : v > 255 ? 255 : v); }

struct Rgb { uint8_t r, g, b; };

Rgb model(int y, int u, int v) {
    const int d = u - 128, e = v - 128;
    return {clamp(y + floor_div(1436 * e, 1024)),
            clamp(y - floor_div(731 * e + 352 * d, 1024)),
            clamp(y + floor_div(1815 * d, 1024))};
}

struct Layout {
    uint32_t low;
    uint32_t bytes;
    int r, g, b; // byte offsets; the rest of a pixel is never written
};

const Layout layouts[] = {{0x07, 4, 3, 2, 1}, {0x08, 4, 2, 1, 0}, {0x0C, 4, 1, 2, 3},
                          {0x0D, 4, 0, 1, 2}, {0x11, 3, 2, 1, 0}, {0x12, 3, 0, 1, 2}};

// Every layout from one packed run of pairs (the source stride is
// ignored), at odd and even widths, the widest a line holding every (U, V)
// with random luma. Each destination line starts at the stride from where
// the last pixel written ends, a pixel further on for an odd width; the
// other bytes stay as they were.
TEST(Yuv422Conversions, EveryLayoutAndChromaPairMatchesTheFloorModel) {
    for (const Layout &layout : layouts)
        for (uint32_t width : {1u, 2u, 5u, 6u, 2u * 65536}) {
            const uint32_t height = width > 6 ? 1 : 3, pairs = (width + 1) / 2;
            const uint32_t dst_stride = width * layout.bytes + 5;
            TestImage source(ORV_FORMAT_YUV422, width, height, 2 * width + 6,
                             4 * pairs * height);
            Bytes yuv = orv_test::random_bytes(source.size(), width);
            for (uint32_t i = 0; height == 1 && i < 65536; ++i) {
                yuv[4 * i + 1] = uint8_t(i);
                yuv[4 * i + 3] = uint8_t(i >> 8);
            }
            std::copy(yuv.begin(), yuv.end(), source.data());
            const size_t room = size_t(dst_stride) * height + 2 * layout.bytes;
            TestImage target(0xC0022600u | layout.low, width, height, dst_stride, room);
            const Bytes before = orv_test::random_bytes(room, 99);
            std::copy(before.begin(), before.end(), target.data());
            ASSERT_EQ(OVC_Convert(source.handle(), target.handle()), ORV_OK);

            Bytes expected = before;
            size_t line = 0;
            for (uint32_t y = 0; y < height; ++y) {
                for (uint32_t x = 0; x < 2 * pairs; ++x) {
                    const uint8_t *pair = &yuv[4 * (y * pairs + x / 2)];
                    const Rgb c = model(pair[2 * (x % 2)], pair[1], pair[3]);
                    uint8_t *d = &expected[line + x * layout.bytes];
                    d[layout.r] = c.r, d[layout.g] = c.g, d[layout.b] = c.b;
                }
                line += 2 * pairs * layout.bytes + (dst_stride - width * layout.bytes);
            }
            EXPECT_TRUE(target.bytes() == expected)
                << "layout 0x" << std::hex << layout.low << std::dec << ", width " << width;
        }
}

// Checksums of two fixed images: 5 x 3 random bytes with odd padding on
// both sides, and 60 x 2 of the values where shifts, flags and clamps
// change. The destination starts as random bytes, so X bytes and padding
// count; the formats' bytes above the low one vary, and must not matter.
// line_bytes: bytes of `width` pixels of a format (Y12P: three a started pair).
uint32_t line_bytes(uint32_t low, uint32_t width) {
    switch (low) {
    case 0x01: return width;
    case 0x1B: return 3 * ((width + 1) / 2);
    case 0x11: case 0x12: return 3 * width;
    case 0x03: case 0x07: case 0x08: case 0x0C: case 0x0D: case 0x0F:
    case 0x10: return 4 * width;
    case 0x09: case 0x0E: case 0x1C: case 0x1D: return 6 * width;
    default: return 2 * width;
    }
}

struct Image {
    uint32_t width, height, src_padding, dst_padding;
    bool edge_values;
};
constexpr Image kImages[] = {{5, 3, 3, 5, false}, {60, 2, 1, 3, true}};

uint32_t checksum(uint32_t src, uint32_t dst, const Image &g, uint32_t seed) {
    const uint32_t src_stride = line_bytes(src, g.width) + g.src_padding;
    const uint32_t dst_stride = line_bytes(dst, g.width) + g.dst_padding;
    static const uint32_t uppers[] = {0xC0022600u, 0, 0xABCDEF00u};
    // A line to spare on both sides: RGB30 into RGB48 reads the pixel
    // after the image, and odd Y12P widths drift by a pixel a line.
    TestImage source(uppers[seed % 3] | src, g.width, g.height, src_stride,
                     size_t(src_stride) * (g.height + 1));
    Bytes samples = orv_test::random_bytes(source.size(), seed);
    static const uint8_t edge[] = {0, 1, 0x0F, 0x10, 0x7F, 0x80, 0x81, 0xF0, 0xFE, 0xFF};
    if (g.edge_values)
        for (auto &b : samples) b = edge[b % 10];
    std::copy(samples.begin(), samples.end(), source.data());
    TestImage target(uppers[(seed + 1) % 3] | dst, g.width, g.height, dst_stride,
                     size_t(dst_stride) * (g.height + 1));
    const Bytes before = target.randomise(~seed);
    EXPECT_EQ(OVC_Convert(source.handle(), target.handle()), ORV_OK)
        << std::hex << src << " -> " << dst;
    return orv_test::crc32(target.bytes());
}

// (source << 8 | destination, CRC of image 0, CRC of image 1).
struct Recorded {
    uint32_t pair, crc[2];
};
const Recorded kRecorded[] = {
    {0x0101, {0xD8825588, 0x4C573050}}, {0x0102, {0x67994E34, 0x3CB2654E}},
    {0x0103, {0x77A830D8, 0x349D9952}}, {0x0105, {0xE8A1BC3B, 0x5036CBD0}},
    {0x0106, {0x4EC9F633, 0x86C528F1}}, {0x0107, {0x107520ED, 0x246B7101}},
    {0x0108, {0xA3467DCE, 0x0D60FDF9}}, {0x0109, {0x9C37D2A2, 0x60D25843}},
    {0x010A, {0xB4FAF2A6, 0x11DA96F0}}, {0x010B, {0x3C362A12, 0x9FE061F3}},
    {0x010C, {0x673F623C, 0x6231232A}}, {0x010D, {0xC04831F4, 0xA23ECFB5}},
    {0x010E, {0x21A5092A, 0xAF4B7F8C}}, {0x010F, {0xA0DE3332, 0x2B2FB964}},
    {0x0110, {0xD73363E5, 0x324B9F72}}, {0x0111, {0xFC0F2FB0, 0xF6E12F4A}},
    {0x0112, {0x31CBDC8C, 0x8B75B313}}, {0x0113, {0x906F295C, 0x1F7C9919}},
    {0x0114, {0xCC34870D, 0x61CA4ADD}}, {0x0115, {0xD53DD1E4, 0x9076F0D5}},
    {0x011C, {0x08CCE8B3, 0x66F79FD3}}, {0x011D, {0xA31EF602, 0x2470AE91}},
    {0x0201, {0x67096DD9, 0x7F0626A3}}, {0x0202, {0x1A5DCE84, 0xD6D084B6}},
    {0x0203, {0x2AC6FF7A, 0x90F1A0DA}}, {0x0205, {0x0EA5D67A, 0x1D5BEDB7}},
    {0x0206, {0x7E63F0F0, 0x77CDF466}}, {0x0207, {0x42C52E62, 0x8B656905}},
    {0x0208, {0x96E82C0A, 0xB62991F7}}, {0x0209, {0x83C1EEDA, 0x3B7CFA1C}},
    {0x020A, {0x67830F30, 0xA042C714}}, {0x020B, {0x9DA6817B, 0x50EB1843}},
    {0x020C, {0xF56E8325, 0xC9F03010}}, {0x020D, {0xE6D10542, 0x14650E81}},
    {0x020E, {0x0420C52A, 0x4ED970CA}}, {0x020F, {0xC8C46C8A, 0xCEE1A4C7}},
    {0x0210, {0xC3221297, 0x1FAD8773}}, {0x0211, {0x18C0D75B, 0xC3920738}},
    {0x0212, {0xF2AE8D92, 0x00B155C5}}, {0x1301, {0x5D72AD30, 0x7A26E8DA}},
    {0x1302, {0x3B890932, 0x55E9A65E}}, {0x1303, {0xDD82535C, 0x3FC79C8C}},
    {0x1305, {0xDB387B24, 0xAD31A643}}, {0x1306, {0xBC487AE0, 0xF74C0144}},
    {0x1307, {0x63F58B79, 0xB93CF67D}}, {0x1308, {0xD1AC280F, 0x6C7CFD43}},
    {0x1309, {0x467E8F56, 0x7CA03FAC}}, {0x130A, {0x70BFA5A5, 0x98287770}},
    {0x130B, {0xFA3EFA7C, 0xFBE6B0E8}}, {0x130C, {0x27210E57, 0xA56CC2DA}},
    {0x130D, {0x6E9518CF, 0x94D7099C}}, {0x130E, {0xC19FA4A6, 0xEBD40FB5}},
    {0x130F, {0x6691C7E4, 0x8A1C9ACF}}, {0x1310, {0x29487719, 0x7963D0B0}},
    {0x1311, {0x9532EB92, 0xFEE31437}}, {0x1312, {0xCBF68337, 0x5D478DB0}},
    {0x1401, {0x3410F15A, 0x9B72D973}}, {0x1402, {0x99596FBC, 0xB73EDF4F}},
    {0x1403, {0xA65B49B8, 0x70BF3C91}}, {0x1405, {0xA98D0D71, 0x68662A35}},
    {0x1406, {0x756CF1E0, 0xACF46C7A}}, {0x1407, {0xE9E0580B, 0x332C4C27}},
    {0x1408, {0x8E3264F0, 0x27AC0D9C}}, {0x1409, {0xD52C2793, 0xBA4EFEAA}},
    {0x140A, {0xB493193F, 0xA3A1FC3B}}, {0x140B, {0x0B60A07E, 0x977CBDEB}},
    {0x140C, {0x24D63D16, 0x2E6C3773}}, {0x140D, {0xCCC8E0E6, 0x7B707103}},
    {0x140E, {0x52CD0C63, 0xB7995CC3}}, {0x140F, {0xC1ECDD15, 0x9C90C2BC}},
    {0x1410, {0x5C7BF86D, 0x4A78DDF2}}, {0x1411, {0xBF43EE85, 0x3422039F}},
    {0x1412, {0xAE6E53B8, 0xDB0C3A7B}}, {0x1501, {0xF80A7AE0, 0xB8BCC972}},
    {0x1502, {0xDE69C2E0, 0x139EE560}}, {0x1503, {0xF6F4B951, 0xF4E07E28}},
    {0x1505, {0xF92E517A, 0xAF40BB66}}, {0x1506, {0x5BE572DE, 0x50E80734}},
    {0x1507, {0x6B2B3AD0, 0xC59B0F8E}}, {0x1508, {0xAD81F67A, 0xA8D1CCEA}},
    {0x1509, {0x4E01F0EC, 0xFD76114B}}, {0x150A, {0x7EE284EA, 0x3AFEB901}},
    {0x150B, {0x3E1DED87, 0x0F955271}}, {0x150C, {0x7B9A51EF, 0x9F253E0E}},
    {0x150D, {0x7BD456CF, 0x67E94E37}}, {0x150E, {0xC9E0DB1C, 0x650E6F38}},
    {0x150F, {0x4FD15589, 0xA87F5941}}, {0x1510, {0x8F7119C4, 0x1617139E}},
    {0x1511, {0x94EED00E, 0x6830D2AA}}, {0x1512, {0x2F0DFB08, 0x9B43E4E1}},
    {0x1B06, {0xD6C49FA9, 0x1F5B8E1A}}, {0x1B07, {0xFDD78CB9, 0x21426A74}},
    {0x1B08, {0x834D1F94, 0xA4B75B20}}, {0x1B0B, {0x7DA70DC0, 0x0144AAB0}},
    {0x1B0C, {0xE40CD340, 0xF49F84F5}}, {0x1B0D, {0x4FCA60ED, 0x1A5B00AC}},
    {0x1B11, {0x7984E568, 0x4350E5CB}}, {0x1B12, {0xF8332F18, 0xB72EEEF1}},
    {0x1105, {0x0FEE799B, 0xD4BB9F98}}, {0x1106, {0xB4BA67E1, 0xD7C41551}},
    {0x1107, {0xA135244E, 0xB00E067E}}, {0x1108, {0x1E0C0966, 0x5981A3EF}},
    {0x1109, {0x818FAE24, 0x136E561E}}, {0x110A, {0x383E6E56, 0xED0D630C}},
    {0x110B, {0x13EAB6CB, 0xFF6AB616}}, {0x110C, {0x4298E6A5, 0x9BAFC12D}},
    {0x110D, {0xB6FFD5C7, 0x7FA227B2}}, {0x110E, {0xDCC88665, 0x122409AE}},
    {0x110F, {0x51E714AF, 0x5D38D80B}}, {0x1110, {0x44B3939F, 0x57C0CA62}},
    {0x1111, {0x9945470C, 0x13434844}}, {0x1112, {0x61BB427A, 0xB4D51586}},
    {0x0905, {0xF9EA5356, 0x61BA205B}}, {0x0906, {0x18CE6F87, 0x87FC55B9}},
    {0x0907, {0x0ECBF0FF, 0xA3A73DF4}}, {0x0908, {0xBCF07BD9, 0x5337A215}},
    {0x0909, {0x86ADA805, 0x393F87A2}}, {0x090A, {0xFF5D68AA, 0x2F885094}},
    {0x090B, {0xEF8A7BF5, 0x42E9B7DF}}, {0x090C, {0x88D20DA9, 0x6FE47989}},
    {0x090D, {0x44B28769, 0x908FE90D}}, {0x090E, {0x4CCCB8B0, 0xD6FC72BC}},
    {0x090F, {0x239C83C3, 0x769E81CE}}, {0x0910, {0x7726CB55, 0xB19C4BA8}},
    {0x0911, {0x67C2EF84, 0xA2B32C14}}, {0x0912, {0x1CD05FB1, 0x49254968}},
    {0x1C05, {0x980B16CE, 0x50DA464A}}, {0x1C06, {0x04E1A109, 0x8F5AF93E}},
    {0x1C07, {0x1BE378EF, 0x4558B220}}, {0x1C08, {0xEBDCDC41, 0x0A156D27}},
    {0x1C09, {0x89B6775A, 0x6F4139A7}}, {0x1C0A, {0xFEB4236C, 0x1F68F669}},
    {0x1C0B, {0xFC977690, 0x8EDD9FD8}}, {0x1C0C, {0xDBCE8787, 0x7A9C36E8}},
    {0x1C0D, {0x98C3F0C1, 0xA324A6C8}}, {0x1C0E, {0xD9F3EDEA, 0xA775E6F4}},
    {0x1C0F, {0x7CA5781D, 0xDDD746E2}}, {0x1C10, {0x1CE8F96D, 0x1B4E7845}},
    {0x1C11, {0xBCD523A3, 0xA8E082B9}}, {0x1C12, {0xDBEAE067, 0x07E44B4F}},
    {0x0F05, {0x703C428B, 0xD097D99A}}, {0x0F06, {0x9E741946, 0x424CF34A}},
    {0x0F07, {0xEB0B8B82, 0xCF833DA3}}, {0x0F08, {0x4CA27081, 0x6DEEB726}},
    {0x0F09, {0xA26F9B51, 0x1CD4BC1E}}, {0x0F0A, {0xB27D11C4, 0xA7DC0196}},
    {0x0F0B, {0xF442B794, 0x07C8CB14}}, {0x0F0C, {0xAE7ACEE4, 0xB0570D6F}},
    {0x0F0D, {0xC8D41C13, 0x61CDC318}}, {0x0F0E, {0x3AB03789, 0xED78A1A9}},
    {0x0F0F, {0x848ED9F6, 0x002DF185}}, {0x0F10, {0x2C5AFCB5, 0x923E0E45}},
    {0x0F11, {0x19AB956B, 0x6A806566}}, {0x0F12, {0x17F5E347, 0x7CEC3448}},
    {0x0811, {0x0D465813, 0xC169CCBF}},
};

TEST(ConversionChecksums, EveryGreyAndColourPairWritesWhatWasRecorded) {
    for (const Recorded &r : kRecorded)
        for (size_t g = 0; g < 2; ++g)
            EXPECT_EQ(checksum(r.pair >> 8, r.pair & 0xFF, kImages[g], r.pair + uint32_t(g)),
                      r.crc[g])
                << std::hex << "pair " << r.pair << ", image " << g;
}

} // namespace
