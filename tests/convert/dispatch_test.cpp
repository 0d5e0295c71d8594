// OVC_Convert as a whole: which format pairs convert (by the low byte of
// each format only), the refusals, the capacity table, the copy taken
// between identical formats, and which Bayer methods and phases reach the
// routine they name.
#include "bayer/member_table.h"
#include "support/demosaic_extent.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

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
// only whether the pair is converted; the bytes above the low one vary.
// Bayer members still write line 0 of a zero-height image, hence the room.
TEST(ConvertDispatch, EveryKeyIsConvertedExactlyWhenThePairIsSupported) {
    const auto pairs = supported_pairs();
    const uint32_t uppers[] = {0xC0022600u, 0x100u, 0x12345600u, 0xFFFFFF00u};
    for (uint32_t s = 0; s <= 0x20; ++s)
        for (uint32_t d = 0; d <= 0x20; ++d) {
            TestImage src(uppers[s % 4] | s, 2, 0, 16, 64);
            TestImage dst(uppers[(s + d) % 4] | d, 2, 2, 16, 64);
            src.set_bayer(ORV_BAYER_METHOD_DUP, ORV_BAYER_PHASE_A);
            const ORV_STATUS expected =
                pairs.count({s, d}) ? ORV_OK : ORV_ERROR_NOT_SUPPORTED;
            EXPECT_EQ(OVC_Convert(src.handle(), dst.handle()), expected)
                << std::hex << "source 0x" << s << " destination 0x" << d;
        }
}

// One parameter of the source or of the destination set to a value that is
// refused (parameter 0: the handle itself is 0), Y8 into BGR24.
struct Refusal {
    const char *what;
    bool source;
    uint32_t parameter;
    uintptr_t value;
    ORV_STATUS status;
};

const Refusal refusals[] = {
    {"source handle zero", true, 0, 0, ORV_ERROR_BAD_PARAM},
    {"destination handle zero", false, 0, 0, ORV_ERROR_BAD_PARAM},
    {"source not valid", true, OFS_BUFFER_VALID, 0, ORV_ERROR_BAD_PARAM},
    {"destination not valid", false, OFS_BUFFER_VALID, 0, ORV_ERROR_BAD_PARAM},
    {"destination format zero", false, OFS_FORMAT, 0, ORV_ERROR_BAD_PARAM},
    {"source format zero", true, OFS_FORMAT, 0, ORV_ERROR_BAD_PARAM},
    {"source address null", true, OFS_START_ADDR, 0, ORV_ERROR_BAD_PARAM},
    {"destination address null", false, OFS_START_ADDR, 0, ORV_ERROR_BAD_PARAM},
    {"unknown source format", true, OFS_FORMAT, 0xC0022604u, ORV_ERROR_NOT_SUPPORTED},
    {"destination format 04", false, OFS_FORMAT, 0xC0022604u, ORV_ERROR_NOT_SUPPORTED},
    {"destination low byte zero", false, OFS_FORMAT, 0xC0022600u, ORV_ERROR_NOT_SUPPORTED},
    {"Y32 as source", true, OFS_FORMAT, ORV_FORMAT_Y32, ORV_ERROR_NOT_SUPPORTED},
    {"destination one byte short", false, OFS_STRIDE, 11, ORV_ERROR_BAD_PARAM},
    // An empty image converts and writes nothing.
    {"zero height", true, OFS_HEIGHT, 0, ORV_OK},
    {"zero width", true, OFS_WIDTH, 0, ORV_OK},
};

TEST(ConvertDispatch, RefusalsAndEmptyImagesLeaveTheDestinationUntouched) {
    for (const Refusal &r : refusals) {
        TestImage src(ORV_FORMAT_Y8, 4, 2, 4, 8, 0x11);
        TestImage dst(ORV_FORMAT_BGR24, 4, 2, 12, 24, 0xEE);
        TestImage &spoilt = r.source ? src : dst;
        if (r.parameter == OFS_BUFFER_VALID || r.parameter == OFS_START_ADDR)
            spoilt.set_pointer(r.parameter, r.value);
        else if (r.parameter != 0)
            spoilt.set(r.parameter, uint32_t(r.value));
        const bool zero = r.parameter == 0;
        EXPECT_EQ(OVC_Convert(zero && r.source ? 0 : src.handle(),
                              zero && !r.source ? 0 : dst.handle()),
                  r.status)
            << r.what;
        EXPECT_EQ(dst.bytes(), std::vector<uint8_t>(24, 0xEE)) << r.what;
    }
}

// The capacity test: a W x H source needs W x H x k <= m x stride x height
// of the destination, each side a 32-bit product that may wrap; refused,
// nothing is written. Each form (k, m) for a 6 x 5 source: an exact fit
// converts, a byte less is refused, and for m > 1 so is a stride whose
// m-fold product wraps although the stride alone would hold the image.
struct Capacity {
    uint32_t src, dst;
    uint32_t width, height;      // source
    uint32_t stride, dst_height; // destination
    uint32_t method;             // of a Bayer source; 0 is none
    ORV_STATUS status;
};

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
};

TEST(ConvertCapacity, EveryFormFitsExactlyAndWrapsAsStated) {
    std::vector<Capacity> cases = {
        // Bayer: capacity is tested before the method (RGBX32 lacks ave).
        {0x16, 0x0D, 4, 2, 31, 1, ORV_BAYER_METHOD_AVE, ORV_ERROR_BAD_PARAM},
        {0x16, 0x0D, 4, 2, 32, 1, ORV_BAYER_METHOD_AVE, ORV_ERROR_NOT_IMPLEMENTED},
        // w x h x 6 wraps to 2, not above 2 x (1 x 1): passes, then no method.
        {0x18, 0x11, 0x2AAAAAABu, 1, 1, 1, 0, ORV_ERROR_NOT_IMPLEMENTED},
        // 2 x stride x height wraps to 0: refused although w x h x 3 fits.
        {0x18, 0x11, 2, 1, 0x80000000u, 1, 0, ORV_ERROR_BAD_PARAM},
        // w x h x 4 wraps to 0: passes even into a one-byte destination.
        {0x16, 0x08, 0x40000000u, 1, 1, 1, 0, ORV_ERROR_NOT_IMPLEMENTED},
    };
    const uint32_t dup = ORV_BAYER_METHOD_DUP;
    for (const CapacityForm &f : capacity_forms) {
        const uint32_t need = 6 * 5 * f.k / f.m;
        cases.push_back({f.src, f.dst, 6, 5, need / 5, 5, dup, ORV_OK});
        cases.push_back({f.src, f.dst, 6, 5, need - 1, 1, dup, ORV_ERROR_BAD_PARAM});
        if (f.m > 1)
            cases.push_back({f.src, f.dst, 6, 5, uint32_t(0x100000000ull / f.m) + 1, 1, dup,
                             ORV_ERROR_BAD_PARAM});
    }
    for (const Capacity &c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "0x" << c.src << " -> 0x" << c.dst
                                        << ", width 0x" << c.width << ", stride 0x" << c.stride);
        TestImage src(format(c.src), c.width, c.height, 40, 40 * 6, 0x5A);
        src.set_bayer(c.method, ORV_BAYER_PHASE_A);
        const size_t room = c.status == ORV_OK ? size_t(c.stride) * c.dst_height : 64;
        TestImage dst(format(c.dst), 1, c.dst_height, c.stride, room, 0xEE);
        EXPECT_EQ(OVC_Convert(src.handle(), dst.handle()), c.status);
        if (c.status != ORV_OK) {
            EXPECT_EQ(dst.bytes(), std::vector<uint8_t>(64, 0xEE));
        }
    }
}

// The copy: identical formats, equal strides and heights, no capacity test,
// height x stride bytes formed in 32 bits (2 x 0x80000001: two bytes).
// Otherwise each source row moves its own width of pixels, the destination
// steps by its stride and its padding stays untouched.
struct Geometry {
    uint32_t width, height, stride, bytes;
};

struct CopyCase {
    const char *what;
    uint32_t src_format, dst_format;
    Geometry src, dst;
    ORV_STATUS status;
    uint32_t rows, run, src_pitch, dst_pitch; // bytes expected to move
};

constexpr uint32_t Y8 = ORV_FORMAT_Y8, Y16 = ORV_FORMAT_Y16, Big = 0x80000001u;

const CopyCase copy_cases[] = {
    {"Y8 copy, no capacity test", Y8, Y8, {10, 3, 8, 24}, {1, 3, 8, 24}, ORV_OK, 1, 24, 0, 0},
    {"Y8 copy of a wrapped size", Y8, Y8, {1, 2, Big, 2}, {1, 2, Big, 4}, ORV_OK, 1, 2, 0, 0},
    {"Y16 copy of a wrapped size", Y16, Y16, {1, 2, Big, 2}, {1, 2, Big, 4}, ORV_OK, 1, 2, 0, 0},
    {"Y8 heights differ", Y8, Y8, {3, 2, 4, 8}, {3, 3, 4, 12}, ORV_OK, 2, 3, 4, 4},
    {"Y16 heights differ", Y16, Y16, {2, 2, 6, 12}, {2, 3, 6, 18}, ORV_OK, 2, 4, 6, 6},
    {"Y8 rows one byte short", Y8, Y8, {3, 2, 4, 8}, {3, 1, 5, 8}, ORV_ERROR_BAD_PARAM, 0, 0, 0, 0},
    // 3 + (6 - 2): Y8 steps by the destination's stride less its own width.
    {"Y8 strides differ", Y8, Y8, {3, 3, 4, 12}, {2, 3, 6, 18}, ORV_OK, 3, 3, 4, 7},
    {"Y16 rows of the source width", Y16, Y16, {2, 2, 6, 12}, {1, 2, 8, 16}, ORV_OK, 2, 4, 6, 8},
    // Y10 into Y16 is no copy: the rows' capacity test fails.
    {"Y10 into Y16", ORV_FORMAT_Y10, Y16, {8, 2, 8, 16}, {8, 2, 8, 16}, ORV_ERROR_BAD_PARAM,
     0, 0, 0, 0},
};

TEST(ConvertIdenticalFormat, CopyOnlyForEqualStridesAndHeights) {
    for (const CopyCase &c : copy_cases) {
        TestImage src(c.src_format, c.src.width, c.src.height, c.src.stride, c.src.bytes);
        const auto pattern = src.randomise(3);
        TestImage dst(c.dst_format, c.dst.width, c.dst.height, c.dst.stride, c.dst.bytes, 0xEE);
        EXPECT_EQ(OVC_Convert(src.handle(), dst.handle()), c.status) << c.what;
        std::vector<uint8_t> expected(c.dst.bytes, 0xEE);
        for (uint32_t y = 0; y < c.rows; ++y)
            std::copy_n(pattern.begin() + y * c.src_pitch, c.run,
                        expected.begin() + y * c.dst_pitch);
        EXPECT_EQ(dst.bytes(), expected) << c.what;
    }
}

// A Bayer source reaches the routine its method and phase name (known ones,
// then unknown): the same bytes as a direct call with the source's depth.
TEST(BayerRouting, EachMethodAndPhaseReachesItsRoutine) {
    const uint32_t methods[] = {ORV_BAYER_METHOD_DUP, ORV_BAYER_METHOD_AVE,
                                ORV_BAYER_METHOD_MED, 0x409, 0x0A, 0};
    const uint32_t phases[] = {ORV_BAYER_PHASE_A, ORV_BAYER_PHASE_B, ORV_BAYER_PHASE_C,
                               ORV_BAYER_PHASE_D, 0x50A, 0x109};
    const uint32_t w = 4;
    // A zero-height source passes the capacity test, and its routine still
    // reads two lines and writes one or two.
    for (uint32_t h : {4u, 0u})
    for (uint32_t src = 0x16; src <= 0x1A; ++src)
    for (uint32_t dst : {0x06u, 0x08u, 0x0Bu, 0x0Du, 0x11u})
    for (uint32_t mi = 0; mi < 6; ++mi)
    for (uint32_t pi = 0; pi < 6; ++pi) {
        if (src != 0x16 && dst == 0x0B) continue; // BGR16 from bytes only
        SCOPED_TRACE(testing::Message() << std::hex << "source 0x" << src << " dest 0x" << dst
                                        << " method 0x" << methods[mi] << " phase 0x"
                                        << phases[pi] << " height " << h);
        const uint32_t size = src == 0x16 ? 1 : 2, bpp = orv_test::demosaic_pixel_bytes(dst);
        const uint32_t lines = std::max(h, 2u);
        TestImage in(format(src), w, h, w * size, (w * lines + 1) * size);
        in.randomise(src);
        in.set_bayer(methods[mi], phases[pi]);
        TestImage out(format(dst), w, h, w * bpp, w * lines * bpp, 0xEE);
        const ORV_STATUS status = OVC_Convert(in.handle(), out.handle());
        // RGBX32 has dup only, BGR16 dup of phase A only.
        const bool offered =
            mi < 3 && pi < 4 && (dst == 0x0B ? mi + pi == 0 : dst != 0x0D || mi == 0);
        if (!offered) {
            EXPECT_EQ(status, ORV_ERROR_NOT_IMPLEMENTED);
            ASSERT_EQ(out.bytes(), std::vector<uint8_t>(out.size(), 0xEE));
            continue;
        }
        ASSERT_EQ(status, ORV_OK);
        // The routine found by its name, not by the table the route reads.
        const std::string name = std::string(src == 0x16 ? "OVC_BAY8_to_" : "OVC_BAYn_to_") +
                                 (dst == 0x06   ? "RGB16_"
                                  : dst == 0x08 ? "BGRX32_"
                                  : dst == 0x0B ? "BGR16_"
                                  : dst == 0x0D ? "RGBX32_"
                                                : "BGR24_") +
                                 (mi == 0 ? "dup_" : mi == 1 ? "ave_" : "med_") + char('A' + pi);
        const auto *m = std::find_if(std::begin(orv::bayer::kDemosaicMembers),
                                     std::end(orv::bayer::kDemosaicMembers),
                                     [&](const auto &d) { return name == d.name; });
        ASSERT_NE(m, std::end(orv::bayer::kDemosaicMembers)) << name;
        TestImage direct(format(dst), w, h, w * bpp, w * lines * bpp, 0xEE);
        const uint32_t depth = src == 0x18 ? 12 : src == 0x19 ? 14 : src == 0x1A ? 16 : 10;
        m->call(in.handle(), direct.handle(), depth);
        EXPECT_EQ(out.bytes(), direct.bytes());
    }
}

} // namespace
