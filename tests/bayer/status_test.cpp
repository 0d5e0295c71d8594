// What every demosaic routine refuses: an invalid source or destination
// and, for n-bit sources, a depth of 8. A refused call writes nothing.
#include "bayer/members.h"

#include "support/test_image.h"

#include <gtest/gtest.h>

namespace {

using bayer_test::Member;
using bayer_model::Source;
using orv_test::TestImage;

TEST(BayerStatus, RefusedCallsWriteNothing) {
    struct Case {
        const char *what;
        bool n_bit_only;
        uint32_t depth;
        void (*spoil)(TestImage &src, TestImage &dst);
    };
    const Case cases[] = {
        {"source invalid", false, 12,
         [](TestImage &s, TestImage &) { s.set_pointer(OFS_BUFFER_VALID, 0); }},
        {"destination invalid", false, 12,
         [](TestImage &, TestImage &d) { d.set_pointer(OFS_BUFFER_VALID, 0); }},
        {"depth 8", true, 8, [](TestImage &, TestImage &) {}},
    };
    ASSERT_EQ(bayer_test::members().size(), 81u);
    for (const Member &m : bayer_test::members())
        for (const Case &c : cases) {
            if (c.n_bit_only && m.kind.source != Source::BAYn) continue;
            const uint32_t size = bayer_model::sample_size(m.kind.source);
            TestImage src(ORV_FORMAT_BAY8, 4, 4, 4 * size, 16 * size, 0x40);
            TestImage dst(ORV_FORMAT_BGRX32, 4, 4, 16, 64, 0xEE);
            c.spoil(src, dst);
            EXPECT_EQ(call(m, src.handle(), dst.handle(), c.depth), ORV_ERROR_BAD_PARAM)
                << m.name << ": " << c.what;
            EXPECT_EQ(dst.bytes(), std::vector<uint8_t>(64, 0xEE)) << m.name << ": " << c.what;
        }
}

} // namespace
