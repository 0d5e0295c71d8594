// OVC_Convert with Bayer sources: which methods and phases reach a
// demosaic routine, that the routine reached is the one named by them (its
// output equals a direct call's), the depth passed for each n-bit format,
// and the capacity test that runs before anything else is looked at.
#include "bayer/member_table.h"
#include "support/demosaic_extent.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using orv_test::TestImage;

uint32_t format(uint32_t low) { return low ? 0xC0022600u | low : 0; }

// What the routing offers, independently of the routine list: per
// destination, the methods and phases (the pairs themselves are in the
// conversions' pair matrix).
bool offered(uint32_t dst, uint32_t method, uint32_t phase) {
    const bool known_method = method == ORV_BAYER_METHOD_DUP ||
                              method == ORV_BAYER_METHOD_AVE ||
                              method == ORV_BAYER_METHOD_MED;
    const bool known_phase = phase == ORV_BAYER_PHASE_A ||
                             phase == ORV_BAYER_PHASE_B ||
                             phase == ORV_BAYER_PHASE_C ||
                             phase == ORV_BAYER_PHASE_D;
    if (!known_method || !known_phase) return false;
    if (dst == 0x0B)
        return method == ORV_BAYER_METHOD_DUP && phase == ORV_BAYER_PHASE_A;
    if (dst == 0x0D) return method == ORV_BAYER_METHOD_DUP;
    return true;
}
uint32_t depth_of(uint32_t src) {
    return src == 0x18 ? 12 : src == 0x19 ? 14 : src == 0x1A ? 16 : 10;
}

TEST(BayerRouting, EachKeyMethodAndPhaseReachesItsRoutine) {
    const uint32_t methods[] = {ORV_BAYER_METHOD_DUP, ORV_BAYER_METHOD_AVE,
                                ORV_BAYER_METHOD_MED, 0x409, 0x0A, 0};
    const uint32_t phases[] = {ORV_BAYER_PHASE_A, ORV_BAYER_PHASE_B,
                               ORV_BAYER_PHASE_C, ORV_BAYER_PHASE_D, 0x50A,
                               0x109};
    const uint32_t w = 4, h = 4;
    for (uint32_t src = 0x16; src <= 0x1A; ++src) {
        const uint32_t size = src == 0x16 ? 1 : 2;
        const auto samples = orv_test::random_bytes(w * h * size, src);
        for (uint32_t dst : {0x06u, 0x08u, 0x0Bu, 0x0Du, 0x11u}) {
            if (src != 0x16 && dst == 0x0B) continue; // BGR16 from bytes only
            const uint32_t bpp = orv_test::demosaic_pixel_bytes(dst);
            for (uint32_t method : methods) {
                for (uint32_t phase : phases) {
                    SCOPED_TRACE(testing::Message()
                                 << std::hex << "source 0x" << src << " dest 0x"
                                 << dst << " method 0x" << method
                                 << " phase 0x" << phase);
                    TestImage in(format(src), w, h, w * size);
                    std::copy(samples.begin(), samples.end(), in.data());
                    in.set_bayer(method, phase);
                    TestImage out(format(dst), w, h, w * bpp, w * h * bpp,
                                  0xEE);
                    const ORV_STATUS status =
                        OVC_Convert(in.handle(), out.handle());
                    if (!offered(dst, method, phase)) {
                        EXPECT_EQ(status, ORV_ERROR_NOT_IMPLEMENTED);
                        for (uint8_t b : out.bytes()) ASSERT_EQ(b, 0xEE);
                        continue;
                    }
                    ASSERT_EQ(status, ORV_OK);
                    const orv::bayer::DemosaicMember *m =
                        orv::bayer::find_member(src != 0x16, dst, method, phase);
                    ASSERT_NE(m, nullptr);
                    TestImage direct(format(dst), w, h, w * bpp, w * h * bpp,
                                     0xEE);
                    m->call(in.handle(), direct.handle(), depth_of(src));
                    EXPECT_EQ(out.bytes(), direct.bytes());
                }
            }
        }
    }
}

// The capacity test runs before the method and phase are looked at (the
// forms themselves are held by the conversions' capacity table): a
// method that RGBX32 lacks is refused only once the destination is large
// enough, and a product that wraps lets the call through to that refusal.
TEST(BayerRouting, CapacityIsTestedBeforeTheMethod) {
    struct Case {
        uint32_t src, dst;
        uint32_t width, height;       // source
        uint32_t stride, dst_height;  // destination
        uint32_t method;
        ORV_STATUS status;
    } const cases[] = {
        {0x16, 0x0D, 4, 2, 31, 1, ORV_BAYER_METHOD_AVE, ORV_ERROR_BAD_PARAM},
        {0x16, 0x0D, 4, 2, 32, 1, ORV_BAYER_METHOD_AVE,
         ORV_ERROR_NOT_IMPLEMENTED},
        // w x h x 6 wraps to 2, not above 2 x (1 x 1): passes, then 3.
        {0x18, 0x11, 0x2AAAAAABu, 1, 1, 1, 0x0, ORV_ERROR_NOT_IMPLEMENTED},
        // 2 x stride x height wraps to 0: refused although w x h x 3 fits.
        {0x18, 0x11, 2, 1, 0x80000000u, 1, 0x0, ORV_ERROR_BAD_PARAM},
        // w x h x 4 wraps to 0: passes even into a one-byte destination.
        {0x16, 0x08, 0x40000000u, 1, 1, 1, 0x0, ORV_ERROR_NOT_IMPLEMENTED},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << "key 0x"
                                        << (c.src << 8 | c.dst) << " width 0x"
                                        << c.width << " stride 0x" << c.stride);
        const uint32_t size = c.src == 0x16 ? 1 : 2;
        TestImage in(format(c.src), c.width, c.height, c.width * size, 64, 0x21);
        in.set_bayer(c.method, ORV_BAYER_PHASE_A);
        const size_t room = c.status == ORV_OK ? size_t(c.stride) * c.dst_height
                                               : 64;
        TestImage out(format(c.dst), 1, c.dst_height, c.stride, room, 0xEE);
        EXPECT_EQ(OVC_Convert(in.handle(), out.handle()), c.status);
        if (c.status != ORV_OK)
            for (uint8_t b : out.bytes()) ASSERT_EQ(b, 0xEE);
        else
            EXPECT_NE(out[0], 0xEE);
    }
}

// A zero-height source passes every capacity test and its routine still
// runs: dup writes line 0 from lines 0 and 1 of the source memory.
TEST(BayerRouting, ZeroHeightSourceStillCallsTheRoutine) {
    TestImage in(format(0x16), 2, 0, 2, 4, 0);
    const uint8_t samples[4] = {0x00, 0x01, 0x10, 0x11};
    std::copy(samples, samples + 4, in.data());
    in.set_bayer(ORV_BAYER_METHOD_DUP, ORV_BAYER_PHASE_A);
    TestImage out(format(0x11), 2, 0, 6, 6, 0xEE);
    ASSERT_EQ(OVC_Convert(in.handle(), out.handle()), ORV_OK);
    const uint8_t want[6] = {0x11, 0x01, 0x00, 0x11, 0x01, 0x00};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(out[i], want[i]) << i;
}

} // namespace
