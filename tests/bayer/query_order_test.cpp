// The questions every demosaic routine asks the buffer library, in order,
// and where an invalid buffer or a depth of 8 stops it with nothing
// written. Runs against the recording buffer library.
#include "bayer/member_table.h"
#include "support/trace_buffer.h"

#include <gtest/gtest.h>

namespace {

using orv::bayer::DemosaicMember;
using orv_test::FakeBuffer;
using orv_test::query_log;

const std::vector<std::string> full_order = {"src:11", "dst:11", "src:3", "src:4",
                                             "dst:4",  "dst:3",  "src:2", "src:1"};

struct Case {
    const char *what;
    bool n_bit_only;
    uint32_t depth;
    void (*spoil)(FakeBuffer &src, FakeBuffer &dst);
    ORV_STATUS status;
    size_t queries; // how many of full_order are asked
};

const Case cases[] = {
    {"success", false, 12, [](FakeBuffer &, FakeBuffer &) {}, ORV_OK, 8},
    {"source validity silent", false, 12,
     [](FakeBuffer &s, FakeBuffer &) { s.values.erase(OFS_BUFFER_VALID); }, ORV_ERROR_BAD_PARAM, 1},
    {"source invalid", false, 12,
     [](FakeBuffer &s, FakeBuffer &) { s.values[OFS_BUFFER_VALID] = 0; }, ORV_ERROR_BAD_PARAM, 1},
    {"destination validity silent", false, 12,
     [](FakeBuffer &, FakeBuffer &d) { d.values.erase(OFS_BUFFER_VALID); }, ORV_ERROR_BAD_PARAM, 2},
    {"destination invalid", false, 12,
     [](FakeBuffer &, FakeBuffer &d) { d.values[OFS_BUFFER_VALID] = 0; }, ORV_ERROR_BAD_PARAM, 2},
    {"depth 8", true, 8, [](FakeBuffer &, FakeBuffer &) {}, ORV_ERROR_BAD_PARAM, 2},
    // Only the values written count, never the query's own status; the
    // destination's width, height and format are never asked, so nonsense
    // there changes nothing.
    {"queries report failure", false, 12,
     [](FakeBuffer &s, FakeBuffer &d) { s.status = d.status = 99; }, ORV_OK, 8},
    {"destination geometry unused", false, 12,
     [](FakeBuffer &, FakeBuffer &d) {
         d.values[OFS_WIDTH] = d.values[OFS_HEIGHT] = d.values[OFS_FORMAT] = 0;
     },
     ORV_OK, 8},
};

TEST(BayerQueryOrder, EveryMemberAsksInOrderAndStopsAtARefusal) {
    ASSERT_EQ(std::size(orv::bayer::kDemosaicMembers), 81u);
    for (const DemosaicMember &m : orv::bayer::kDemosaicMembers)
        for (const Case &c : cases) {
            if (c.n_bit_only && !m.n_bit) continue;
            const uint32_t size = m.n_bit ? 2 : 1;
            std::vector<uint8_t> pixels(16 * size, 0x40), out(64, 0xEE);
            FakeBuffer src = orv_test::fake_image("src", pixels.data(), ORV_FORMAT_BAY8, 4, 4, 4 * size);
            FakeBuffer dst = orv_test::fake_image("dst", out.data(), ORV_FORMAT_BGRX32, 4, 4, 16);
            c.spoil(src, dst);
            orv_test::clear_query_log();
            EXPECT_EQ(m.call(src.handle(), dst.handle(), c.depth), c.status) << m.name << ": " << c.what;
            const std::vector<std::string> asked(full_order.begin(), full_order.begin() + c.queries);
            EXPECT_EQ(query_log(), asked) << m.name << ": " << c.what;
            // A refused call writes nothing; byte 0 of the first pixel is
            // written by every routine that runs.
            if (c.status == ORV_OK)
                EXPECT_NE(out[0], 0xEE) << m.name << ": " << c.what;
            else
                EXPECT_EQ(out, std::vector<uint8_t>(64, 0xEE)) << m.name << ": " << c.what;
        }
}

} // namespace
