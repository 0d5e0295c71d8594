// OVC_Convert with Bayer sources: which methods and phases it offers, and
// that it reaches the routine they name (the same bytes as a direct call
// with the source format's depth), zero-height sources included. The pairs
// are in the conversions' pair matrix, the capacity forms in their table.
#include "bayer/member_table.h"
#include "support/demosaic_extent.h"
#include "support/test_image.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_test::TestImage;

uint32_t format(uint32_t low) { return 0xC0022600u | low; }

TEST(BayerRouting, EachMethodAndPhaseReachesItsRoutine) {
    // The known methods and phases first, then unknown ones.
    const uint32_t methods[] = {ORV_BAYER_METHOD_DUP, ORV_BAYER_METHOD_AVE,
                                ORV_BAYER_METHOD_MED, 0x409, 0x0A, 0};
    const uint32_t phases[] = {ORV_BAYER_PHASE_A, ORV_BAYER_PHASE_B, ORV_BAYER_PHASE_C,
                               ORV_BAYER_PHASE_D, 0x50A, 0x109};
    const uint32_t w = 4;
    for (uint32_t src = 0x16; src <= 0x1A; ++src) {
        const uint32_t size = src == 0x16 ? 1 : 2;
        const uint32_t depth = src == 0x18 ? 12 : src == 0x19 ? 14 : src == 0x1A ? 16 : 10;
        for (uint32_t dst : {0x06u, 0x08u, 0x0Bu, 0x0Du, 0x11u}) {
            if (src != 0x16 && dst == 0x0B) continue; // BGR16 from bytes only
            const uint32_t bpp = orv_test::demosaic_pixel_bytes(dst);
            for (uint32_t mi = 0; mi < 6; ++mi)
                for (uint32_t pi = 0; pi < 6; ++pi)
                    // A zero-height source passes the capacity test, and its
                    // routine still reads two lines and writes one or two.
                    for (uint32_t h : {4u, 0u}) {
                        SCOPED_TRACE(testing::Message()
                                     << std::hex << "source 0x" << src << " dest 0x" << dst
                                     << " method 0x" << methods[mi] << " phase 0x"
                                     << phases[pi] << " height " << h);
                        const uint32_t lines = std::max(h, 2u);
                        TestImage in(format(src), w, h, w * size, (w * lines + 1) * size);
                        const auto samples = orv_test::random_bytes(in.size(), src);
                        std::copy(samples.begin(), samples.end(), in.data());
                        in.set_bayer(methods[mi], phases[pi]);
                        TestImage out(format(dst), w, h, w * bpp, w * lines * bpp, 0xEE);
                        const ORV_STATUS status = OVC_Convert(in.handle(), out.handle());
                        // RGBX32 has dup only, BGR16 dup of phase A only.
                        const bool offered = mi < 3 && pi < 4 &&
                                             (dst == 0x0B ? mi + pi == 0 : dst != 0x0D || mi == 0);
                        if (!offered) {
                            EXPECT_EQ(status, ORV_ERROR_NOT_IMPLEMENTED);
                            ASSERT_EQ(out.bytes(), std::vector<uint8_t>(out.size(), 0xEE));
                            continue;
                        }
                        ASSERT_EQ(status, ORV_OK);
                        const orv::bayer::DemosaicMember *m = orv::bayer::find_member(
                            src != 0x16, dst, methods[mi], phases[pi]);
                        ASSERT_NE(m, nullptr);
                        TestImage direct(format(dst), w, h, w * bpp, w * lines * bpp, 0xEE);
                        m->call(in.handle(), direct.handle(), depth);
                        EXPECT_EQ(out.bytes(), direct.bytes());
                    }
        }
    }
}

} // namespace
