// Field-to-frame de-interlacing: the median of six against a sort, whole
// frames of every method against checksums recorded when they agreed with
// a byte-by-byte model of the line shapes, the worked values, and every
// refusal (nothing written).
#include "support/field_lines.h"
#include "support/guarded_bytes.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using orv_test::Shape;
using orv_test::TestImage;
using Bytes = std::vector<uint8_t>;

constexpr uint32_t Y8 = ORV_FORMAT_Y8;
constexpr uint32_t kDup = OVC_FIELD_LINEDUP, kAve = OVC_FIELD_LINEAVE;
constexpr uint32_t kBilinear = OVC_FIELD_BILINEAR, kMedian = OVC_FIELD_MEDIAN;

// Every assignment of six levels to the six arguments (every order and
// every tie pattern, from all equal to all distinct), then random values,
// whose bits above the low byte are ignored.
TEST(Median6, MatchesASort) {
    const uint32_t levels[6] = {0, 1, 2, 100, 254, 255};
    std::mt19937 random(6);
    for (uint32_t code = 0; code < 46656 + 200000; ++code) {
        uint32_t x[6], sorted[6];
        for (uint32_t i = 0, rest = code; i < 6; ++i, rest /= 6) {
            x[i] = code < 46656 ? levels[rest % 6] : uint32_t(random());
            sorted[i] = x[i] & 0xFF;
        }
        std::sort(sorted, sorted + 6);
        ASSERT_EQ(ORV_median6(x[0], x[1], x[2], x[3], x[4], x[5]),
                  (sorted[2] + sorted[3]) >> 1)
            << x[0] << " " << x[1] << " " << x[2] << " " << x[3] << " " << x[4] << " " << x[5];
    }
}

// Field layouts: short, odd and misaligned strides (24-bit lines of 4 and
// 7, 32-bit ones of 14, YUV ones of 9 and 11), then lines of several vectors
// padded by odd strides and by a 32-bit one that is not a multiple of 4. Y16
// lines are plain bytes to LineDup and LineAve and refused by the others.
struct Layout {
    uint32_t format, width, stride;
    uint32_t crc[4]; // LineDup, LineAve, Bilinear, Median (0: refused)
};

const Layout kLayouts[] = {
    {ORV_FORMAT_Y8, 2, 2, {0x87767AB3, 0xA95AE1C0, 0xA95AE1C0, 0xA95AE1C0}},
    {ORV_FORMAT_Y8, 3, 3, {0xEF37E798, 0xF52FA82C, 0x27E311A7, 0xC7373FFE}},
    {ORV_FORMAT_Y8, 17, 20, {0xD8F5515A, 0xF1E7F99F, 0x23CC366B, 0xA4474228}},
    {ORV_FORMAT_BGR24, 1, 4, {0x77281D9A, 0x5A6D9B68, 0x5A6D9B68, 0x5A6D9B68}},
    {ORV_FORMAT_BGR24, 1, 6, {0x450D3C5C, 0xDDB9E387, 0xDDB9E387, 0xDDB9E387}},
    {ORV_FORMAT_RGB24, 2, 7, {0x67AC56C2, 0xE7CA9CEB, 0x5F334ABF, 0xF0443B39}},
    {ORV_FORMAT_RGB24, 3, 9, {0x2E5DEF99, 0x7EB997EB, 0xE49D4755, 0xD277E4D5}},
    {ORV_FORMAT_BGR24, 5, 16, {0xA2628D5E, 0xA5F6913A, 0xDB2A36ED, 0x12B1A27F}},
    {ORV_FORMAT_BGRX32, 2, 8, {0x3030A6BD, 0x731A0C72, 0x731A0C72, 0x731A0C72}},
    {ORV_FORMAT_XBGR32, 3, 12, {0x09C4BC3E, 0x54C7D3E8, 0x9EF41056, 0x82F393AB}},
    {ORV_FORMAT_RGBX32, 3, 14, {0x9B5AD3CB, 0xF693C524, 0xD78E7668, 0xC99E4C54}},
    {ORV_FORMAT_BGRX32, 5, 20, {0xD8F5515A, 0xF1E7F99F, 0xC1782A16, 0x46264D15}},
    {ORV_FORMAT_RGBX32, 6, 24, {0x74927012, 0x9E1E5529, 0xC66AE142, 0x07B6E022}},
    {ORV_FORMAT_XRGB32, 9, 40, {0xABBB880D, 0xDA37633A, 0x55FB9276, 0x6C22B539}},
    {ORV_FORMAT_YUV422, 4, 8, {0x3030A6BD, 0x731A0C72, 0x29321CC7, 0x97AE8204}},
    {ORV_FORMAT_YUV422, 4, 9, {0x2E5DEF99, 0x7EB997EB, 0xA0B0DCDA, 0x393F9118}},
    {ORV_FORMAT_YUV422, 5, 11, {0x29BD94A6, 0x2CAD4A0D, 0x1E57B437, 0x4631C95F}},
    {ORV_FORMAT_YUV422, 6, 12, {0x09C4BC3E, 0x54C7D3E8, 0x863B5525, 0xF6DF30B5}},
    {ORV_FORMAT_YUV422, 10, 24, {0x74927012, 0x9E1E5529, 0x9CCDEBAC, 0x7A4C958A}},
    {ORV_FORMAT_Y8, 130, 135, {0x8FCDB518, 0x949101D0, 0xBACD7196, 0xB7DA89EB}},
    {ORV_FORMAT_RGB24, 64, 192, {0x9FF3C238, 0x8F100A10, 0x4FC246CD, 0xCE13FD6F}},
    {ORV_FORMAT_BGR24, 64, 199, {0x8CC355F0, 0x1EAFEB6B, 0xAED4D3F2, 0x2B6A8D87}},
    {ORV_FORMAT_XRGB32, 50, 200, {0x7A584804, 0x8BC9684A, 0x84867D57, 0xB05C3FD6}},
    {ORV_FORMAT_RGBX32, 50, 206, {0x63EC35E3, 0x30F26AB1, 0xDD57323A, 0xB7EA6559}},
    {ORV_FORMAT_YUV422, 64, 128, {0x4502DD99, 0x24F1BEDB, 0x94C89DAE, 0xFEB39F2B}},
    {ORV_FORMAT_YUV422, 64, 131, {0xAE426D44, 0xFF24977D, 0xC98F57A3, 0xC705879D}},
    {ORV_FORMAT_Y16, 5, 11, {0x29BD94A6, 0x2CAD4A0D, 0x00000000, 0x00000000}},
};

// The CRC-32 of every frame a method makes of random fields of 1 to 9
// lines and of 40, with each parity, one after another. The field and the
// frame end at an inaccessible page where the frame's lines stop; the
// frame starts as 0xA5. Its own stride, which does not place the lines, is
// its width: the capacity test counts pixels against bytes, and passes.
TEST(FieldToFrame, FramesMatchTheirRecordedChecksums) {
    orv_test::GuardedBytes field_memory(1 << 16), frame_memory(1 << 16);
    for (const Layout &layout : kLayouts)
        for (uint32_t method = 0; method < 4; ++method) {
            const Shape shape = orv_test::shape_of(method, layout.format);
            const orv_test::Filled line =
                orv_test::filled_line(shape, method == kMedian, layout.stride);
            Bytes frames;
            for (uint32_t height : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 40u})
                for (uint32_t parity : {0u, 1u, 0x80000000u}) {
                    const orv_test::Reach reach =
                        orv_test::frame_reach(height, layout.stride, parity != 0, line);
                    const Bytes pixels = orv_test::random_bytes(reach.field, height + parity);
                    // Images whose pixels are moved to the guarded memory.
                    TestImage field(layout.format, layout.width, height, layout.stride, 1);
                    TestImage frame(layout.format, layout.width, 2 * height, layout.width, 1);
                    field.set_pointer(OFS_START_ADDR, uintptr_t(field_memory.place(pixels)));
                    frame.set_pointer(OFS_START_ADDR,
                                      uintptr_t(frame_memory.place(Bytes(reach.frame, 0xA5))));
                    EXPECT_EQ(OVC_FieldToFrame(field.handle(), frame.handle(), method, parity),
                              shape == Shape::unhandled ? ORV_ERROR_NOT_SUPPORTED : ORV_OK);
                    const Bytes written = frame_memory.last(reach.frame);
                    frames.insert(frames.end(), written.begin(), written.end());
                }
            EXPECT_EQ(shape == Shape::unhandled ? 0 : orv_test::crc32(frames),
                      layout.crc[method])
                << "method " << method << std::hex << ", format 0x" << layout.format
                << std::dec << ", stride " << layout.stride;
        }
}

// Frame line 1 of a two-line field, parity non-zero: the filled line
// between `above` and `below`, a line each.
TEST(FieldToFrame, WorkedValues) {
    struct Case {
        uint32_t method, format;
        Bytes above, below, expected;
    };
    const Case cases[] = {
        // LineAve: each byte's mean, no carry between bytes.
        {kAve, Y8, {0xFF, 3, 0}, {0x00, 4, 1}, {0x7F, 3, 0}},
        // The weights (105, 75 a side) sum to 510: a flat 200 comes out one
        // darker, but at the ends (means).
        {kBilinear, Y8, Bytes(5, 200), Bytes(5, 200), {200, 199, 199, 199, 200}},
        {kBilinear, Y8, {0, 0, 0}, {0, 255, 0}, {0, 52, 0}},
        // A 32-bit stride of 8 and a 24-bit one of 6: two pixels of means.
        {kBilinear, ORV_FORMAT_BGRX32, Bytes(8, 9), {1, 2, 3, 4, 5, 6, 7, 8},
         {5, 5, 6, 6, 7, 7, 8, 8}},
        {kMedian, ORV_FORMAT_BGR24, Bytes(6, 0), {2, 4, 6, 8, 10, 12}, {1, 2, 3, 4, 5, 6}},
        // Six 32-bit pixels: the median line is three pixels (12 bytes)
        // long, and the next field line is read and written 12 bytes early.
        {kMedian, ORV_FORMAT_BGRX32,
         {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, Bytes(24, 8),
         {4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
        // A one-byte Y8 stride: a mean (its second byte is overwritten).
        {kMedian, Y8, {8}, {4}, {6}},
        // Luma bytes 2 and 4 weigh neighbours two bytes away; chroma would
        // weigh them four away but every chroma byte here is an edge.
        {kBilinear, ORV_FORMAT_YUV422, {10, 20, 30, 40, 50, 60, 70, 80},
         {12, 22, 32, 42, 52, 62, 72, 82}, {11, 21, 30, 41, 50, 61, 71, 81}},
    };
    for (const auto &c : cases) {
        const uint32_t stride = uint32_t(c.above.size());
        // Room past the field: a one-byte median line reads a byte beyond it.
        TestImage field(c.format, 1, 2, stride, 2 * stride + 1, 0);
        std::copy(c.above.begin(), c.above.end(), field.data());
        std::copy(c.below.begin(), c.below.end(), field.data() + stride);
        TestImage frame(c.format, 1, 4, stride);
        EXPECT_EQ(OVC_FieldToFrame(field.handle(), frame.handle(), c.method, 1), ORV_OK);
        EXPECT_EQ(Bytes(frame.data() + stride, frame.data() + 2 * stride), c.expected)
            << "method " << c.method << ", format " << std::hex << c.format;
    }
}

// OVC_FieldToFrame's refusals, through each method: the frame keeps its bytes.
TEST(FieldToFrame, RefusalsWriteNothing) {
    enum Spoil { keep, field_invalid, frame_invalid, field_null, frame_null };
    constexpr ORV_STATUS kBad = ORV_ERROR_BAD_PARAM, kNo = ORV_ERROR_NOT_SUPPORTED;
    struct Refusal {
        const char *what;
        uint32_t method, format, width, height, stride, frame_height, frame_stride;
        Spoil spoil;
        ORV_STATUS status;
    };
    const Refusal refusals[] = {
        {"field invalid", kDup, Y8, 4, 2, 4, 4, 4, field_invalid, kBad},
        {"frame invalid", kAve, Y8, 4, 2, 4, 4, 4, frame_invalid, kBad},
        {"unknown method", 4, Y8, 4, 2, 4, 4, 4, keep, kNo},
        {"field address null", kBilinear, Y8, 4, 2, 4, 4, 4, field_null, kBad},
        {"frame address null", kMedian, Y8, 4, 2, 4, 4, 4, frame_null, kBad},
        {"format zero", kBilinear, 0, 4, 2, 4, 4, 4, keep, kBad},
        {"frame too small", kDup, Y8, 4, 3, 4, 5, 4, keep, kBad},
        {"RGB16 not laid out", kMedian, ORV_FORMAT_RGB16, 4, 2, 8, 4, 8, keep, kNo},
        {"Y8 code with other upper bits", kMedian, 0x00022601u, 4, 2, 4, 4, 4, keep, kNo},
        {"field height 0", kAve, Y8, 4, 0, 4, 4, 4, keep, kBad},
        {"Y8 stride 1, kernel", kBilinear, Y8, 1, 2, 1, 4, 1, keep, kBad},
        {"Y8 stride 0, median", kMedian, Y8, 0, 2, 0, 4, 4, keep, kBad},
        {"24-bit stride 2", kBilinear, ORV_FORMAT_BGR24, 0, 2, 2, 4, 4, keep, kBad},
        {"32-bit stride 7", kMedian, ORV_FORMAT_BGRX32, 1, 2, 7, 4, 8, keep, kBad},
        {"YUV stride 4", kBilinear, ORV_FORMAT_YUV422, 2, 2, 4, 4, 4, keep, kBad},
        // 2 x 2^16 x 2^16 wraps to 0 and holds nothing.
        {"frame capacity wraps to 0", kDup, Y8, 1, 1, 4, 0x10000u, 0x10000u, keep, kBad},
    };
    for (const auto &r : refusals) {
        TestImage field(r.format, r.width, r.height, r.stride, 64, 0x11);
        TestImage frame(r.format, r.width, r.frame_height, r.frame_stride, 64, 0x5A);
        if (r.spoil == field_invalid) field.set_pointer(OFS_BUFFER_VALID, 0);
        if (r.spoil == frame_invalid) frame.set_pointer(OFS_BUFFER_VALID, 0);
        if (r.spoil == field_null) field.set_pointer(OFS_START_ADDR, 0);
        if (r.spoil == frame_null) frame.set_pointer(OFS_START_ADDR, 0);
        EXPECT_EQ(OVC_FieldToFrame(field.handle(), frame.handle(), r.method, 0), r.status)
            << r.what;
        EXPECT_EQ(frame.bytes(), Bytes(64, 0x5A)) << r.what;
    }
}

TEST(FieldToFrame, CapacityWrapsAndRoutinesLeaveTheFramesValidityToTheDispatcher) {
    // 2 x 2^31 x 1 pixels wrap to 0 and fit any frame; the method routines
    // leave testing the frame's validity to OVC_FieldToFrame (LineDup here,
    // Bilinear, which reads the format, in query_order_test).
    TestImage wide(Y8, 0x80000000u, 1, 4, 4, 0x11);
    TestImage small(Y8, 1, 2, 4, 8, 0x5A);
    small.set_pointer(OFS_BUFFER_VALID, 0);
    EXPECT_EQ(OVC_FieldToFrame_LineDup(wide.handle(), small.handle(), 0), ORV_OK);
    EXPECT_EQ(small.bytes(), Bytes(8, 0x11)); // F0 twice
}

} // namespace
