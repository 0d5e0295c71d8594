// OVC_Convert as a whole: which format pairs convert, the validation
// statuses, the capacity tests and the identical-format copy.
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using orv_test::TestImage;

uint32_t format(uint32_t low_byte) { return 0xC0022600u | low_byte; }

// Every pair that converts, as (source low byte, destination low byte).
std::set<std::pair<uint32_t, uint32_t>> supported_pairs() {
    std::set<std::pair<uint32_t, uint32_t>> pairs;
    auto add = [&](std::initializer_list<uint32_t> sources,
                   std::initializer_list<uint32_t> destinations) {
        for (uint32_t s : sources)
            for (uint32_t d : destinations) pairs.insert({s, d});
    };
    const auto fourteen = {0x05u, 0x06u, 0x07u, 0x08u, 0x09u, 0x0Au, 0x0Bu,
                           0x0Cu, 0x0Du, 0x0Eu, 0x0Fu, 0x10u, 0x11u, 0x12u};
    add({0x01}, {0x01, 0x02, 0x03, 0x13, 0x14, 0x15, 0x1C, 0x1D});
    add({0x01, 0x02, 0x13, 0x14, 0x15}, fourteen);
    add({0x02, 0x13, 0x14, 0x15}, {0x01, 0x02, 0x03});
    add({0x1B}, {0x06, 0x07, 0x08, 0x0B, 0x0C, 0x0D, 0x11, 0x12});
    add({0x08}, {0x11});
    add({0x09, 0x0F, 0x11, 0x1C}, fourteen);
    add({0x1E}, {0x07, 0x08, 0x0C, 0x0D, 0x11, 0x12});
    add({0x16}, {0x06, 0x08, 0x0B, 0x0D, 0x11});
    add({0x17, 0x18, 0x19, 0x1A}, {0x06, 0x08, 0x0D, 0x11});
    return pairs;
}

// A zero-height source passes every capacity test, so the status tells
// only whether the pair is converted. Bayer members still write line 0 of
// a zero-height image, hence the room in both buffers.
TEST(ConvertDispatch, EveryKeyIsConvertedExactlyWhenThePairIsSupported) {
    const auto pairs = supported_pairs();
    for (uint32_t s = 0; s <= 0x20; ++s) {
        for (uint32_t d = 0; d <= 0x20; ++d) {
            TestImage src(format(s), 2, 0, 16, 64);
            TestImage dst(format(d), 2, 2, 16, 64);
            src.set_bayer(ORV_BAYER_METHOD_DUP, ORV_BAYER_PHASE_A);
            const ORV_STATUS expected =
                pairs.count({s, d}) ? ORV_OK : ORV_ERROR_NOT_SUPPORTED;
            EXPECT_EQ(OVC_Convert(src.handle(), dst.handle()), expected)
                << std::hex << "source 0x" << s << " destination 0x" << d;
        }
    }
}

TEST(ConvertDispatch, OnlyTheLowByteOfEachFormatCounts) {
    const uint8_t grey[4] = {1, 2, 3, 4};
    for (uint32_t upper : {0x00000000u, 0x12345600u, 0xFFFFFF00u}) {
        TestImage src(upper | 0x01, 4, 1, 4);
        std::copy(grey, grey + 4, src.data());
        TestImage dst(0xABCDEF00u | 0x11, 4, 1, 12);
        ASSERT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_OK);
        for (int i = 0; i < 12; ++i) EXPECT_EQ(dst[i], grey[i / 3]);
    }
}

struct Refusal {
    const char *what;
    void (*spoil)(TestImage &src, TestImage &dst);
    ORV_STATUS status;
};

const Refusal refusals[] = {
    {"source not valid", [](TestImage &s, TestImage &) { s.set_pointer(OFS_BUFFER_VALID, 0); }, ORV_ERROR_BAD_PARAM},
    {"destination not valid", [](TestImage &, TestImage &d) { d.set_pointer(OFS_BUFFER_VALID, 0); }, ORV_ERROR_BAD_PARAM},
    {"destination format zero", [](TestImage &, TestImage &d) { d.set(OFS_FORMAT, 0); }, ORV_ERROR_BAD_PARAM},
    {"source format zero", [](TestImage &s, TestImage &) { s.set(OFS_FORMAT, 0); }, ORV_ERROR_BAD_PARAM},
    {"source address null", [](TestImage &s, TestImage &) { s.set_pointer(OFS_START_ADDR, 0); }, ORV_ERROR_BAD_PARAM},
    {"destination address null", [](TestImage &, TestImage &d) { d.set_pointer(OFS_START_ADDR, 0); }, ORV_ERROR_BAD_PARAM},
    {"unknown source format", [](TestImage &s, TestImage &) { s.set(OFS_FORMAT, format(0x04)); }, ORV_ERROR_NOT_SUPPORTED},
    {"destination format 04", [](TestImage &, TestImage &d) { d.set(OFS_FORMAT, format(0x04)); }, ORV_ERROR_NOT_SUPPORTED},
    {"destination low byte zero", [](TestImage &, TestImage &d) { d.set(OFS_FORMAT, 0xC0022600u); }, ORV_ERROR_NOT_SUPPORTED},
    {"Y32 as source", [](TestImage &s, TestImage &) { s.set(OFS_FORMAT, ORV_FORMAT_Y32); }, ORV_ERROR_NOT_SUPPORTED},
    {"destination one byte short", [](TestImage &, TestImage &d) { d.set(OFS_STRIDE, 11); }, ORV_ERROR_BAD_PARAM},
    // An empty image converts and writes nothing.
    {"zero height", [](TestImage &s, TestImage &) { s.set(OFS_HEIGHT, 0); }, ORV_OK},
    {"zero width", [](TestImage &s, TestImage &) { s.set(OFS_WIDTH, 0); }, ORV_OK},
};

TEST(ConvertDispatch, RefusalsAndEmptyImagesLeaveTheDestinationUntouched) {
    for (const Refusal &r : refusals) {
        TestImage src(ORV_FORMAT_Y8, 4, 2, 4, 8, 0x11);
        TestImage dst(ORV_FORMAT_BGR24, 4, 2, 12, 24, 0xEE);
        r.spoil(src, dst);
        EXPECT_EQ(OVC_Convert(src.handle(), dst.handle()), r.status) << r.what;
        EXPECT_EQ(dst.bytes(), std::vector<uint8_t>(24, 0xEE)) << r.what;
    }
}

TEST(ConvertDispatch, ZeroHandlesAreRefused) {
    TestImage img(ORV_FORMAT_Y8, 1, 1, 1);
    EXPECT_EQ(OVC_Convert(0, img.handle()), ORV_ERROR_BAD_PARAM);
    EXPECT_EQ(OVC_Convert(img.handle(), 0), ORV_ERROR_BAD_PARAM);
}

// Every capacity form of every family, as (k, m): a W x H source needs
// W x H x k <= m x stride x height, each side a 32-bit product. An exact
// fit converts; one byte less is refused with nothing written; and where
// m > 1, a stride whose m-fold product wraps to a few bytes is refused
// although the stride alone would hold the image.
struct CapacityForm {
    uint32_t src, dst, k, m;
};

const CapacityForm capacity_forms[] = {
    // Y8, 16-bit grey, Y12P
    {0x01, 0x02, 2, 1}, {0x01, 0x03, 4, 1}, {0x01, 0x05, 2, 1}, {0x01, 0x07, 4, 1},
    {0x01, 0x1D, 6, 1}, {0x01, 0x10, 4, 1}, {0x01, 0x12, 3, 1}, {0x02, 0x01, 2, 2},
    {0x13, 0x02, 2, 1}, {0x14, 0x03, 4, 1}, {0x15, 0x06, 2, 1}, {0x02, 0x0D, 4, 1},
    {0x02, 0x0E, 6, 1}, {0x14, 0x0F, 4, 1}, {0x13, 0x11, 6, 2}, {0x02, 0x02, 2, 1},
    {0x1B, 0x06, 6, 3}, {0x1B, 0x08, 12, 3}, {0x1B, 0x11, 3, 1},
    // colour: BGR24, BGR48, BGR36, RGB30, BGRX32
    {0x11, 0x05, 6, 3}, {0x11, 0x0F, 12, 3}, {0x11, 0x09, 6, 1}, {0x11, 0x12, 3, 1},
    {0x09, 0x06, 6, 3}, {0x09, 0x0D, 12, 3}, {0x09, 0x0E, 6, 1}, {0x09, 0x11, 6, 2},
    {0x1C, 0x0A, 6, 3}, {0x1C, 0x10, 12, 3}, {0x1C, 0x09, 6, 1}, {0x1C, 0x12, 6, 2},
    {0x0F, 0x05, 4, 2}, {0x0F, 0x07, 4, 1}, {0x0F, 0x0E, 12, 2}, {0x0F, 0x11, 12, 4},
    {0x08, 0x11, 12, 4},
    // YUV 4:2:2 and Bayer (dup, phase A)
    {0x1E, 0x0C, 4, 1}, {0x1E, 0x12, 6, 2}, {0x16, 0x06, 2, 1}, {0x16, 0x08, 4, 1},
    {0x16, 0x0D, 4, 1}, {0x16, 0x0B, 2, 1}, {0x16, 0x11, 3, 1}, {0x17, 0x11, 6, 2},
    {0x1A, 0x0D, 4, 1},
};

TEST(ConvertCapacity, EveryFormFitsExactlyAndWrapsAsStated) {
    const uint32_t w = 6, h = 5;
    for (const CapacityForm &f : capacity_forms) {
        const uint32_t need = w * h * f.k / f.m;
        struct Destination {
            uint32_t stride, height;
            ORV_STATUS status;
        };
        std::vector<Destination> cases = {{need / h, h, ORV_OK}, {need - 1, 1, ORV_ERROR_BAD_PARAM}};
        if (f.m > 1)
            cases.push_back({uint32_t(0x100000000ull / f.m) + 1, 1, ORV_ERROR_BAD_PARAM});
        for (const Destination &c : cases) {
            TestImage src(format(f.src), w, h, 40, 40 * (h + 1), 0x5A);
            src.set_bayer(ORV_BAYER_METHOD_DUP, ORV_BAYER_PHASE_A);
            TestImage dst(format(f.dst), 1, c.height, c.stride, need, 0xEE);
            EXPECT_EQ(OVC_Convert(src.handle(), dst.handle()), c.status)
                << std::hex << f.src << " -> " << f.dst << std::dec << ", stride " << c.stride;
            if (c.status != ORV_OK) {
                EXPECT_EQ(dst.bytes(), std::vector<uint8_t>(need, 0xEE));
            }
        }
    }
}

// When the copy is taken and when the rows run instead. The copy needs
// equal strides and equal heights, skips the capacity test (a source wider
// than its stride still copies) and copies height x stride bytes formed in
// 32 bits, so 2 x 0x80000001 copies two bytes. Otherwise each of the
// source's rows moves its own pixels and the padding stays untouched.
struct Geometry {
    uint32_t width, height, stride, bytes;
};

struct CopyCase {
    const char *what;
    uint32_t format;
    Geometry src, dst;
    ORV_STATUS status;
    uint32_t rows, run, src_pitch, dst_pitch; // bytes expected to move
};

const CopyCase copy_cases[] = {
    {"Y8 copy without capacity test", ORV_FORMAT_Y8, {10, 3, 8, 24}, {1, 3, 8, 24}, ORV_OK, 1, 24, 0, 0},
    {"Y16 copy without capacity test", ORV_FORMAT_Y16, {10, 3, 8, 24}, {1, 3, 8, 24}, ORV_OK, 1, 24, 0, 0},
    {"Y8 copy of a wrapped size", ORV_FORMAT_Y8, {1, 2, 0x80000001u, 2}, {1, 2, 0x80000001u, 4}, ORV_OK, 1, 2, 0, 0},
    {"Y16 copy of a wrapped size", ORV_FORMAT_Y16, {1, 2, 0x80000001u, 2}, {1, 2, 0x80000001u, 4}, ORV_OK, 1, 2, 0, 0},
    {"Y8 heights differ", ORV_FORMAT_Y8, {3, 2, 4, 8}, {3, 3, 4, 12}, ORV_OK, 2, 3, 4, 4},
    {"Y16 heights differ", ORV_FORMAT_Y16, {2, 2, 6, 12}, {2, 3, 6, 18}, ORV_OK, 2, 4, 6, 6},
    {"Y8 rows one byte short", ORV_FORMAT_Y8, {3, 2, 4, 8}, {3, 1, 5, 8}, ORV_ERROR_BAD_PARAM, 0, 0, 0, 0},
};

TEST(ConvertIdenticalFormat, CopyOnlyForEqualStridesAndHeights) {
    for (const CopyCase &c : copy_cases) {
        TestImage src(c.format, c.src.width, c.src.height, c.src.stride,
                      c.src.bytes);
        const auto pattern = orv_test::random_bytes(c.src.bytes, 3);
        std::copy(pattern.begin(), pattern.end(), src.data());
        TestImage dst(c.format, c.dst.width, c.dst.height, c.dst.stride,
                      c.dst.bytes, 0xEE);
        EXPECT_EQ(OVC_Convert(src.handle(), dst.handle()), c.status) << c.what;
        std::vector<uint8_t> expected(c.dst.bytes, 0xEE);
        for (uint32_t y = 0; y < c.rows; ++y)
            std::copy_n(pattern.begin() + y * c.src_pitch, c.run,
                        expected.begin() + y * c.dst_pitch);
        EXPECT_EQ(dst.bytes(), expected) << c.what;
    }
}

TEST(ConvertIdenticalFormat, OtherSixteenBitGreyPairsAreNotCopies) {
    // Y10 into Y16 with equal layouts goes through the row loop and its
    // capacity test, which a width of 8 u16 pixels in 8-byte lines fails.
    TestImage src(ORV_FORMAT_Y10, 8, 2, 8);
    TestImage dst(ORV_FORMAT_Y16, 8, 2, 8, 16, 0xEE);
    EXPECT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_ERROR_BAD_PARAM);
    TestImage src16(ORV_FORMAT_Y16, 8, 2, 8);
    EXPECT_EQ(OVC_Convert(src16.handle(), dst.handle()), ORV_OK);
}

// Y8 into Y8 off the copy path steps the destination by its stride minus
// its own width, not the source's.
TEST(ConvertIdenticalFormat, Y8RowsStepByTheDestinationWidth) {
    TestImage src(ORV_FORMAT_Y8, 3, 3, 4);
    for (size_t i = 0; i < src.size(); ++i) src[i] = uint8_t(i + 1);
    TestImage dst(ORV_FORMAT_Y8, 2, 3, 6, 18, 0xEE); // steps 3 + (6 - 2)
    ASSERT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_OK);
    const std::vector<uint8_t> expected = {1,    2,    3,    0xEE, 0xEE, 0xEE,
                                           0xEE, 5,    6,    7,    0xEE, 0xEE,
                                           0xEE, 0xEE, 9,    10,   11,   0xEE};
    EXPECT_EQ(dst.bytes(), expected);
}

TEST(ConvertIdenticalFormat, Y16RowsUseTheSourceWidth) {
    TestImage src(ORV_FORMAT_Y16, 2, 2, 6);
    for (size_t i = 0; i < src.size(); ++i) src[i] = uint8_t(i + 1);
    TestImage dst(ORV_FORMAT_Y16, 1, 2, 8, 16, 0xEE);
    ASSERT_EQ(OVC_Convert(src.handle(), dst.handle()), ORV_OK);
    const std::vector<uint8_t> expected = {1,  2,  3,  4,  0xEE, 0xEE, 0xEE, 0xEE,
                                           7,  8,  9,  10, 0xEE, 0xEE, 0xEE, 0xEE};
    EXPECT_EQ(dst.bytes(), expected);
}

} // namespace
